#define NOMINMAX
#include <windows.h>

#include "unit/port_platform.h"

namespace chanplan {
namespace {

// Opens the device just to see what the system says.
DWORD OpenError(const std::string& device) {
  const HANDLE opened =
      CreateFileA(("\\\\.\\" + device).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return GetLastError();
  CloseHandle(opened);
  return ERROR_SUCCESS;
}

}  // namespace

std::string UsualDevice(int number) {
  return number >= 1 && number <= 6 ? "COM" + std::to_string(number) : std::string();
}

std::string DevicePath(const std::string& name) { return name; }

bool PortExists(const std::string& device) { return OpenError(device) != ERROR_FILE_NOT_FOUND; }

std::optional<std::string> PortProblem(const std::string& device) {
  switch (OpenError(device)) {
    case ERROR_FILE_NOT_FOUND:
      return "there is no port " + device + ": check the cable and the name";
    case ERROR_ACCESS_DENIED:
      return device + " is in use by another program: close that first";
    default:
      return std::nullopt;
  }
}

bool WriteByteAtOnce(std::intptr_t handle, char byte) {
  return TransmitCommChar(reinterpret_cast<HANDLE>(handle), byte) != 0;
}

bool HasHungUp(std::intptr_t /*handle*/) { return false; }  // the library tells

void ShortSleep(std::chrono::nanoseconds duration) {
  // The ordinary sleep lasts up to 16 ms; a high-resolution timer keeps to the duration.
  constexpr DWORD highResolution = 2;  // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, which not all headers have
  thread_local const HANDLE timer = CreateWaitableTimerExW(nullptr, nullptr, highResolution, TIMER_ALL_ACCESS);
  LARGE_INTEGER due;
  due.QuadPart = -duration.count() / 100;
  if (timer != nullptr && SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE))
    WaitForSingleObject(timer, INFINITE);
}

}  // namespace chanplan
