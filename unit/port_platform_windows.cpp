#include <windows.h>

#include <thread>

#include "core/windows_text.h"
#include "unit/port_platform.h"

namespace chanplan {

std::string UsualDevice(int number) {
  return number >= 1 && number <= 6 ? "COM" + std::to_string(number) : std::string();
}

std::string DevicePath(const std::string& name) {
  const std::string device = name.starts_with("\\\\.\\") ? name.substr(4) : name;
  return device.substr(0, device.find_last_not_of(':') + 1);  // "COM5:" is an old way to say it
}

// Without opening it, which a unit would notice.
bool PortExists(const std::string& device) {
  wchar_t target[MAX_PATH];
  return QueryDosDeviceW(WideFromUtf8(device).c_str(), target, std::size(target)) != 0 ||
         GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

std::optional<std::string> PortProblem(const std::string& device) {
  if (!PortExists(device)) return "there is no port " + device + ": check the cable and the name";
  const HANDLE opened = CreateFileW(WideFromUtf8("\\\\.\\" + device).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    if (GetLastError() == ERROR_ACCESS_DENIED) return device + " is in use by another program: close that first";
    return device + " cannot be opened: " + LastError().message();
  }
  DCB settings{};
  settings.DCBlength = sizeof settings;
  const bool isPort = GetCommState(opened, &settings) != 0;
  CloseHandle(opened);
  if (!isPort) return device + " is not a serial port, or nothing is connected to it";
  return std::nullopt;
}

void ShortSleep(std::chrono::nanoseconds duration) {
  // The ordinary sleep lasts up to 16 ms; a high-resolution timer keeps to the duration.
  constexpr DWORD highResolution = 2;  // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, which not all headers have
  thread_local const HANDLE timer = CreateWaitableTimerExW(nullptr, nullptr, highResolution, TIMER_ALL_ACCESS);
  LARGE_INTEGER due;
  due.QuadPart = -duration.count() / 100;
  if (timer != nullptr && SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE))
    WaitForSingleObject(timer, INFINITE);
  else  // before Windows 10 of 2018
    std::this_thread::sleep_for(duration);
}

}  // namespace chanplan
