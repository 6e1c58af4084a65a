#include "unit/serial_port.h"

#include <algorithm>
#include <charconv>

#include "unit/port_platform.h"

namespace chanplan {

SerialPort::SerialPort(const std::string& devicePath)
    : SerialPort([devicePath](int /*number*/) { return devicePath; }) {}

void SerialPort::SetPortNumber(int number) {
  if (IsOpen()) throw PortError(device + " is already open");
  const std::string name = deviceOf(number);
  if (name.empty()) throw PortError("there is no port " + std::to_string(number) + ": ports are numbered 1 to 6");
  device = DevicePath(name);
}

void SerialPort::SetSettings(std::string_view settings) {
  constexpr std::string_view rest = ",N,8,1";
  int baud = 0;
  const char* const end = settings.data() + settings.size();
  const auto [number, error] = std::from_chars(settings.data(), end, baud);
  const bool isKnown = error == std::errc() && std::string_view(number, end) == rest && baud > 0;
  if (!isKnown || !SetUpLine(baud)) throw PortError(device + " does not take the settings " + std::string(settings));
}

void SerialPort::SetInputLength(int /*bytes*/) {}  // always all that is waiting

void SerialPort::Open() {
  failure.reset();
  // Opening may begin with a lock file that is forced to the disk: not for a device that is not there.
  std::optional<std::string> reason = " was not there a moment ago: start again";
  if (PortExists(device)) reason = OpenLine();
  if (!reason) return;
  if (const auto problem = PortProblem(device)) throw PortError(*problem, !PortExists(device));
  throw PortError(device + *reason);
}

// Bytes go out one by one past the transmit buffer, so nothing is ever left in it. Discarding what
// the system has not put on the line yet would cut off the end of an upload.
void SerialPort::DiscardTransmitted() {}

std::optional<PortError> SerialPort::Failure() const { return failure; }

void SerialPort::SayItStoppedWorking() {
  failure.emplace(device + " stopped working: was the cable pulled? Plug it in and start again");
}

std::vector<std::string> SerialDevices(const DeviceOfNumber& deviceOf) {
  std::vector<std::string> devices;
  const auto add = [&](std::string device) {
    if (PortExists(device) && std::ranges::find(devices, device) == devices.end()) devices.push_back(std::move(device));
  };
  for (int number = 1; number <= 6; ++number) add(deviceOf(number));
  for (std::string& device : DevicesOfSystem()) add(std::move(device));
  return devices;
}

}  // namespace chanplan
