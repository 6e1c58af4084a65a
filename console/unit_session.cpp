#include "console/unit_session.h"

#include <functional>
#include <iostream>

#include "console/interruption.h"
#include "console/progress_bar.h"
#include "core/number_picture.h"
#include "core/text_encoding.h"
#include "settings/user_settings.h"
#include "unit/system_timing.h"

namespace chanplan {
namespace {

bool IsPortNumber(const std::string& port) { return port.find_first_not_of("0123456789") == std::string::npos; }

int PortNumber(const std::string& port) {
  if (!IsPortNumber(port)) return 1;
  if (port.size() == 1 && port >= "1" && port <= "6") return port.front() - '0';
  throw CommandFailure("there is no port " + port + ": give a number from 1 to 6, or a device");
}

DeviceOfNumber DevicesOf(const std::string& port) {
  if (IsPortNumber(port)) return CommDevice;
  return [port](int /*number*/) { return port; };
}

bool IsInterrupted() { return Interruptions() > 0; }

// A transfer that has begun is finished, unless it is interrupted twice.
class SessionProgress : public ProgressBar {
 public:
  using ProgressBar::ProgressBar;

  void SetValue(int value) override {
    ProgressBar::SetValue(value);
    EndIfInterrupted(2);
  }
};

}  // namespace

void PortArguments::AddTo(CLI::App& command) {
  command.add_option("PORT", Port, "the unit's serial port: a device, or a number from 1 to 6")->required();
  command.add_flag("--trace", Trace, "print the conversation with its times on standard error");
}

UnitSession::UnitSession(const PortArguments& arguments)
    : portName(arguments.Port),
      port(DevicesOf(arguments.Port)),
      tracing(arguments.Trace ? std::make_unique<TracingPort>(
                                    port, SystemTiming().Now,
                                    [](const std::string& line) { std::cerr << HarmlessText(line) << '\n'; })
                              : nullptr),
      link(tracing ? static_cast<PortObject&>(*tracing) : port, SystemTiming()) {
  link.CommPort = static_cast<std::int16_t>(PortNumber(arguments.Port));
  if (IsPortNumber(arguments.Port)) portName = CommDevice(link.CommPort);
  CountInterruptions();
  link.StopRequested = IsInterrupted;
}

bool UnitSession::Identify() {
  const ConnectOutcome outcome = ConnectToUnit(link);
  EndIfInterrupted();
  if (!outcome.Accepted() && outcome.Refusal != ConnectRefusal::NotCompatible) Fail(portName + ": " + outcome.Reason);
  return outcome.Accepted();
}

void UnitSession::Connect() {
  if (!Identify())
    throw CommandFailure("the unit " + PrintedText(link.UnitModel) + " with firmware " +
                         FormatNumber(link.UnitFirmwareVersion, "#0.00") +
                         " is not compatible: it takes a model that ends in D, with firmware 3.00 or later");
}

UnitTable UnitSession::Download() {
  UnitTable held;
  const Moved moved =
      Move([&](TransferProgress& progress) { return RunDownload(link, held, progress, IsInterrupted); });
  EndIfInterrupted();
  if (!moved.Outcome.Message.empty()) Fail(moved.Outcome.Message);
  if (!moved.Outcome.Done()) Fail("the unit's table did not arrive whole within 30 s: check the cable and start again");
  return held;
}

void UnitSession::Upload(std::string_view message) {
  const Moved moved =
      Move([&](TransferProgress& progress) { return RunUpload(link, message, progress, IsInterrupted); });
  if (moved.Outcome.Aborted) throw Interrupted();
  if (!moved.Outcome.Message.empty()) Fail(moved.Outcome.Message);
  if (!moved.Outcome.Done() || moved.Sync != LinkAck)
    Fail(
        "the unit did not confirm the end of the upload, its table may be incomplete: check the cable and upload "
        "again");
  if (!IsInterrupted()) return;
  Note("the upload was finished first");
  throw Interrupted();
}

// However it ends, the unit gets the sync byte, and the port is closed.
UnitSession::Moved UnitSession::Move(const std::function<TransferOutcome(TransferProgress&)>& run) {
  SessionProgress progress(tracing == nullptr);  // both would fight for the line
  try {
    Moved moved{run(progress), LinkTimeout};
    moved.Sync = FinishTransfer(link, moved.Outcome);
    progress.Finish();
    return moved;
  } catch (const Interrupted&) {
    link.CloseCommPort();
    progress.Finish();
    Note(
        "the transfer was broken off: a unit that waits for the rest of an upload needs some seconds, or to be "
        "switched off and on");
    throw;
  }
}

void UnitSession::Fail(const std::string& reason) const {
  const auto failure = link.PortFailure();
  throw CommandFailure(failure ? failure->what() : reason);
}

}  // namespace chanplan
