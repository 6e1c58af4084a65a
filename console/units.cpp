#include <iostream>
#include <optional>

#include "console/command.h"
#include "console/interruption.h"
#include "console/qt_application.h"
#include "core/number_picture.h"
#include "core/text_encoding.h"
#include "settings/user_settings.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"
#include "unit/unit_connection.h"

namespace chanplan {
namespace {

// A unit answers at once; a port without one must not hold up the search.
constexpr int SearchTimeoutMs = 2000;

struct FoundUnit {
  std::string Device;
  std::string Model;
  std::string Firmware;
  bool Accepted = false;
};

// The unit that answered; says why a port could not be asked.
std::optional<FoundUnit> FindUnit(const std::string& device) {
  SerialPort port(device);
  UnitLink link(port, SystemTiming());
  link.StopRequested = [] { return Interruptions() > 0; };
  std::string reply;
  const bool answered = link.OpenCommPort(1) == 1 && link.ReadUnitIdentity(SearchTimeoutMs, reply) == LinkTrue;
  std::optional<FoundUnit> unit;
  if (IsSentBack(reply))
    Note(device + ": " + std::string(SentBackText));
  else if (answered)
    unit = {device, PrintedText(link.UnitModel), FormatNumber(link.UnitFirmwareVersion, "#0.00"),
            IsCompatibleUnit(link.UnitModel, link.UnitFirmwareVersion)};
  else if (const auto failure = link.PortFailure())
    Note(failure->what());
  link.CloseCommPort();
  EndIfInterrupted();
  return unit;
}

// A search takes seconds: each unit is told at once.
void PrintText(const FoundUnit& unit) {
  std::cout << HarmlessText(unit.Device) << '\t' << unit.Model << '\t' << unit.Firmware << '\t'
            << (unit.Accepted ? "accepted" : "not accepted") << std::endl;
}

void PrintJson(const FoundUnit& unit, bool first) {
  std::cout << (first ? "" : ",\n ") << "{\"device\": " << JsonString(unit.Device)
            << ", \"model\": " << JsonString(unit.Model) << ", \"firmware\": " << JsonString(unit.Firmware)
            << ", \"accepted\": " << (unit.Accepted ? "true" : "false") << '}' << std::flush;
}

}  // namespace

void AddUnitsCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("units", "Try the machine's serial ports and list the units that answer");
  command->footer(
      "A line per unit: device, model, firmware version, whether the editor accepts it. Ports that could not be "
      "opened are named on standard error.");
  const auto json = AddFormatOption(*command);
  command->callback([json] {
    const auto application = MakePortApplication();
    CountInterruptions();
    const auto devices = SerialDevices(CommDevice);
    int answered = 0;
    if (*json) std::cout << '[';
    for (const std::string& device : devices) {
      const std::optional<FoundUnit> unit = FindUnit(device);
      if (!unit) continue;
      if (*json)
        PrintJson(*unit, answered == 0);
      else
        PrintText(*unit);
      ++answered;
    }
    if (*json) std::cout << "]\n";
    if (answered == 0)
      Note("no unit answered on " + std::to_string(devices.size()) +
           (devices.size() == 1 ? " serial port" : " serial ports"));
  });
}

}  // namespace chanplan
