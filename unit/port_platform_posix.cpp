#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <thread>

#include "unit/port_platform.h"

namespace chanplan {
namespace {

std::string PermissionProblem(const std::string& device, const struct stat& facts) {
  if ((facts.st_mode & S_IRGRP) == 0 || (facts.st_mode & S_IWGRP) == 0)
    return "no permission to use " + device + ", and no group grants it: only its owner or root may use it";
  const group* const owning = getgrgid(facts.st_gid);
  const std::string name = owning != nullptr ? owning->gr_name : std::to_string(facts.st_gid);
  return "no permission to use " + device + ": the group \"" + name +
         "\" grants it; have your user added (sudo usermod -aG " + name + " USER) and log in again";
}

}  // namespace

std::string UsualDevice(int number) {
  constexpr std::array devices = {"/dev/ttyS0", "/dev/ttyS1",   "/dev/ttyS2",
                                  "/dev/ttyS3", "/dev/ttyUSB0", "/dev/ttyUSB1"};
  if (number < 1 || number > static_cast<int>(devices.size())) return {};
  return devices[static_cast<std::size_t>(number - 1)];
}

std::string DevicePath(const std::string& name) {
  const bool isPath = name.find('/') != std::string::npos || PortExists(name);
  return isPath ? std::filesystem::absolute(name).string() : "/dev/" + name;
}

bool PortExists(const std::string& device) { return access(device.c_str(), F_OK) == 0; }

std::optional<std::string> PortProblem(const std::string& device) {
  struct stat facts {};
  if (stat(device.c_str(), &facts) != 0)
    return errno == EACCES ? "no permission to reach " + device
                           : "there is no port " + device + ": check the cable and the name";
  if (faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) != 0) return PermissionProblem(device, facts);
  if (!S_ISCHR(facts.st_mode)) return device + " is not a serial port";
  const int opened = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (opened < 0) {
    if (errno == EBUSY) return device + " is in use by another program: close that first";
    return device + " cannot be opened: " + std::generic_category().message(errno);
  }
  termios settings{};
  const bool terminal = tcgetattr(opened, &settings) == 0;
  close(opened);
  if (!terminal) return device + " is not a serial port, or nothing is connected to it";
  return std::nullopt;
}

bool WriteByteAtOnce(std::intptr_t handle, char byte) { return write(static_cast<int>(handle), &byte, 1) == 1; }

bool HasHungUp(std::intptr_t handle) {
  pollfd line{static_cast<int>(handle), POLLIN, 0};
  if (poll(&line, 1, 0) != 1 || (line.revents & POLLHUP) == 0) return false;
  int waiting = 0;
  return ioctl(line.fd, FIONREAD, &waiting) != 0 || waiting == 0;
}

void ShortSleep(std::chrono::nanoseconds duration) {
#ifdef __linux__
  // Otherwise the system wakes a thread 50 us late, to do several things at once.
  thread_local const int done = prctl(PR_SET_TIMERSLACK, 1);
  static_cast<void>(done);
#endif
  std::this_thread::sleep_for(duration);
}

}  // namespace chanplan
