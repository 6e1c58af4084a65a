// A handheld unit without hardware: what it holds, what it answers, and how it can misbehave.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "core/signal_standard_table.h"

namespace chanplan {

/// Ways in which a unit, its cable or its line can fail.
enum class Fault {
  None,
  Silent,               ///< answers nothing
  SilentAfterIdentify,  ///< answers one identification and nothing after it
  TruncateReply,        ///< sends the first half of its table
  Garbage,              ///< sends noise in place of its table and of the sync byte
  WrongCount,           ///< announces one record more than it sends
  DropEveryNthByte,     ///< loses bytes in both directions
  Slow,                 ///< answers late and at half the speed
  HangUp,               ///< hangs up in the middle of the first table that is moved
};

struct FaultName {
  std::string_view Name;
  Fault Kind;
};
inline constexpr std::array<FaultName, 9> FaultNames = {{
    {"none", Fault::None},
    {"silent", Fault::Silent},
    {"silent-after-identify", Fault::SilentAfterIdentify},
    {"truncate-reply", Fault::TruncateReply},
    {"garbage", Fault::Garbage},
    {"wrong-count", Fault::WrongCount},
    {"drop-every-nth-byte", Fault::DropEveryNthByte},
    {"slow", Fault::Slow},
    {"hang-up", Fault::HangUp},
}};

struct SimulatedUnitOptions {
  std::string Model = "QX4471C";  ///< up to 7 characters
  std::string Firmware = "3.00";  ///< up to 4 characters
  SignalStandardTable Table{};    ///< what it holds at start
  Fault Misbehaviour = Fault::None;
  int DropInterval = 100;  ///< the n of DropEveryNthByte
};

/// The unit as a machine of received bytes: no time, no terminal.
class SimulatedUnit {
 public:
  using TraceWriter = std::function<void(const std::string& line)>;

  /// `traceWriter` gets a line for everything that happens. Throws WireMisfit when the table does not fit.
  SimulatedUnit(const SimulatedUnitOptions& unitOptions, TraceWriter traceWriter);

  /// Takes bytes from the line and returns the reply to them.
  std::string Receive(std::string_view bytes);

  /// Tells the unit that nothing came for a while: it forgets an upload that has not become complete.
  void LineIsQuiet();

  /// The table it holds, names as they came over the wire.
  SignalStandardTable Table() const;
  /// Uploads that arrived whole.
  int Uploads() const { return uploads; }
  /// The line is to be hung up once the reply has been sent.
  bool HangsUp() const { return hangsUp; }

 private:
  void ReceiveByte(char byte, std::string& reply);
  void ReceiveCommand(char command, std::string& reply);
  void ReceiveTableByte(char byte);
  std::string TableReply();
  std::string IdentityReply() const;
  bool LosesByte();
  void TraceBytes();
  void Trace(const std::string& event);

  SimulatedUnitOptions options;
  TraceWriter writeTrace;
  std::string memory;  // the table as it travels: header and records
  std::string upload;  // what has come of the table that is being received
  std::string untracedBytes;
  bool receivesTable = false;
  bool identified = false;
  bool hangsUp = false;
  int uploads = 0;
  int bytesOnLine = 0;
};

}  // namespace chanplan
