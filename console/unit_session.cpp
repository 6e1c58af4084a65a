#include "console/unit_session.h"

#include <iostream>

#include "console/progress_bar.h"
#include "core/number_picture.h"
#include "settings/user_settings.h"
#include "unit/unit_connection.h"

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

bool NeverAborted() { return false; }

}  // namespace

void PortArguments::AddTo(CLI::App& command) {
  command.add_option("PORT", Port, "the unit's serial port: a device, or a number from 1 to 6")->required();
  command.add_flag("--trace", Trace, "print the conversation with its times on standard error");
}

UnitSession::UnitSession(const PortArguments& arguments)
    : portName(arguments.Port),
      port(DevicesOf(arguments.Port)),
      tracing(arguments.Trace
                  ? std::make_unique<TracingPort>(port, SystemTiming().Now,
                                                  [](const std::string& line) { std::cerr << line << '\n'; })
                  : nullptr),
      link(tracing ? static_cast<PortObject&>(*tracing) : port, SystemTiming()) {
  link.CommPort = static_cast<std::int16_t>(PortNumber(arguments.Port));
  if (IsPortNumber(arguments.Port)) portName = CommDevice(link.CommPort);
}

bool UnitSession::Identify() {
  const ConnectOutcome outcome = ConnectToUnit(link);
  if (outcome.Refusal == ConnectRefusal::PortNotOpened || outcome.Refusal == ConnectRefusal::NoProperResponse)
    Fail("no unit answered on " + portName + " within 10 s: check that it is switched on and that the cable sits");
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
  ProgressBar progress(tracing == nullptr);  // both would fight for the line
  const TransferOutcome outcome = RunDownload(link, held, progress, NeverAborted);
  FinishTransfer(link, outcome);
  progress.Finish();
  if (!outcome.Message.empty()) Fail(outcome.Message);
  if (outcome.Result == LinkFalse)
    throw CommandFailure("the unit announces more than 200 records, which no table can hold");
  if (outcome.Result != LinkTrue)
    Fail("the unit's table did not arrive whole within 30 s: check the cable and start again");
  return held;
}

void UnitSession::Upload(std::string_view message) {
  ProgressBar progress(tracing == nullptr);  // both would fight for the line
  const TransferOutcome outcome = RunUpload(link, message, progress, NeverAborted);
  const LinkResult sync = FinishTransfer(link, outcome);
  progress.Finish();
  if (!outcome.Message.empty()) Fail(outcome.Message);
  if (outcome.Result != LinkTrue || sync != LinkAck)
    Fail(
        "the unit did not confirm the end of the upload, its table may be incomplete: check the cable and upload "
        "again");
}

void UnitSession::Fail(const std::string& reason) const {
  const auto failure = link.PortFailure();
  throw CommandFailure(failure ? failure->what() : reason);
}

}  // namespace chanplan
