// A link to the unit on a port given on the command line, and transfers that fail clearly.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "console/command.h"
#include "console/qt_application.h"
#include "unit/serial_port.h"
#include "unit/tracing_port.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"

namespace chanplan {

/// The arguments that every command with a PORT takes.
struct PortArguments {
  std::string Port;  ///< a device, or the number of a port, 1 to 6
  bool Trace = false;

  void AddTo(CLI::App& command);
};

/// The link of one command. When the program is asked to end, its operations end the exchange in order
/// and throw Interrupted.
class UnitSession {
 public:
  explicit UnitSession(const PortArguments& arguments);

  /// Identifies the unit; throws CommandFailure unless it answered. Returns whether the editor accepts it.
  bool Identify();

  /// As Identify, and throws CommandFailure unless the unit is accepted.
  void Connect();

  /// The unit's table; throws CommandFailure.
  UnitTable Download();

  /// Puts the table that EncodeTable made `message` of into the unit; throws CommandFailure.
  void Upload(std::string_view message);

  const UnitLink& Link() const { return link; }
  /// The port's device.
  const std::string& PortName() const { return portName; }

 private:
  struct Moved {
    TransferOutcome Outcome;
    LinkResult Sync;
  };

  Moved Move(const std::function<TransferOutcome(TransferProgress&)>& run);
  [[noreturn]] void Fail(const std::string& reason) const;

  std::unique_ptr<QCoreApplication> application = MakePortApplication();
  std::string portName;
  SerialPort port;
  std::unique_ptr<TracingPort> tracing;
  UnitLink link;
};

}  // namespace chanplan
