#include <iostream>

#include "console/command.h"
#include "console/interruption.h"
#include "console/qt_application.h"
#include "core/number_picture.h"
#include "settings/user_settings.h"
#include "unit/qt_serial_port.h"
#include "unit/unit_connection.h"

namespace chanplan {
namespace {

// A unit answers at once; a port without one must not hold up the search.
constexpr int SearchTimeoutMs = 2000;

// Whether a unit answered; says why a port could not be asked.
bool PrintUnit(const std::string& device) {
  QtSerialPort port(device);
  UnitLink link(port, SystemTiming());
  link.StopRequested = [] { return Interruptions() > 0; };
  std::string reply;
  const bool answered = link.OpenCommPort(1) == 1 && link.ReadUnitIdentity(SearchTimeoutMs, reply) == LinkTrue;
  if (answered)
    std::cout << device << '\t' << PrintedText(link.UnitModel) << '\t'
              << FormatNumber(link.UnitFirmwareVersion, "#0.00") << '\t'
              << (IsCompatibleUnit(link.UnitModel, link.UnitFirmwareVersion) ? "accepted" : "not accepted")
              << std::endl;
  else if (const auto failure = link.PortFailure())
    Note(failure->what());
  link.CloseCommPort();
  EndIfInterrupted();
  return answered;
}

}  // namespace

void AddUnitsCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("units", "Try the machine's serial ports and list the units that answer");
  command->footer(
      "A line per unit: device, model, firmware version, whether the editor accepts it. Ports that could not be "
      "opened are named on standard error.");
  command->callback([] {
    const auto application = MakePortApplication();
    CountInterruptions();
    const auto devices = SerialDevices(CommDevice);
    int answered = 0;
    for (const std::string& device : devices) answered += PrintUnit(device) ? 1 : 0;
    if (answered == 0) Note("no unit answered on " + std::to_string(devices.size()) + " serial ports");
  });
}

}  // namespace chanplan
