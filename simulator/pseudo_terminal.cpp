#include "simulator/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace chanplan {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

void MakeRaw(int terminal) {
  termios settings{};
  tcgetattr(terminal, &settings);
  cfmakeraw(&settings);
  tcsetattr(terminal, TCSANOW, &settings);
}

// The link appears, or changes, in one step.
void MakeLink(const fs::path& target, const fs::path& link) {
  if (fs::exists(fs::symlink_status(link)) && !fs::is_symlink(link)) {
    errno = EEXIST;
    Fail(link.string());
  }
  const fs::path fresh = link.string() + "." + std::to_string(getpid());
  std::error_code error;
  fs::create_symlink(target, fresh, error);
  if (!error) fs::rename(fresh, link, error);
  if (error) throw std::system_error(error, link.string());
}

}  // namespace

PseudoTerminal::PseudoTerminal(const std::string& link) {
  unitEnd.Number = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (unitEnd.Number < 0 || grantpt(unitEnd.Number) != 0 || unlockpt(unitEnd.Number) != 0) Fail("no pseudo-terminal");
  path = ptsname(unitEnd.Number);
  programEnd.Number = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (programEnd.Number < 0) Fail(path);
  MakeRaw(programEnd.Number);
  if (!link.empty()) {
    MakeLink(path, link);
    linkPath = link;
  }
}

PseudoTerminal::Descriptor::~Descriptor() {
  if (Number >= 0) close(Number);
}

PseudoTerminal::~PseudoTerminal() {
  std::error_code ignored;
  if (!linkPath.empty() && fs::read_symlink(linkPath, ignored) == path) fs::remove(linkPath, ignored);
}

// The line is hung up for the unit's end as long as nobody has the other one open, so the own one is let go for a
// moment. What a program has for itself could not be opened again.
bool PseudoTerminal::IsUnused() {
  int exclusive = 0;
  ioctl(programEnd.Number, TIOCGEXCL, &exclusive);
  ioctl(programEnd.Number, TIOCNXCL);
  close(std::exchange(programEnd.Number, -1));
  pollfd line{unitEnd.Number, POLLIN, 0};
  const bool unused = poll(&line, 1, 0) > 0 && line.revents == POLLHUP;  // and all it sent is read
  programEnd.Number = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (!unused && exclusive != 0) ioctl(programEnd.Number, TIOCEXCL);
  return unused;
}

std::string PseudoTerminal::Read(std::chrono::milliseconds longest) {
  pollfd waiting{unitEnd.Number, POLLIN, 0};
  if (poll(&waiting, 1, static_cast<int>(longest.count())) <= 0) return {};
  std::array<char, 4096> buffer;
  const ssize_t count = read(unitEnd.Number, buffer.data(), buffer.size());
  return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

std::size_t PseudoTerminal::Write(std::string_view bytes) {
  const ssize_t count = write(unitEnd.Number, bytes.data(), bytes.size());
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace chanplan
