// A disk that is soon full, for a process of a test's own.
#pragma once

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace chanplan::testing {

/// What the exception's text starts with where the system allows no such thing.
inline const std::string Impossible = "impossible here: ";

inline void WriteProcFile(const char* file, const std::string& text) {
  const int descriptor = open(file, O_WRONLY | O_CLOEXEC);
  if (write(descriptor, text.data(), text.size()) < 0) throw std::runtime_error(Impossible + file);
  close(descriptor);
}

/// From now on only this process sees what it mounts, and that goes with it.
inline void MakeOwnMounts() {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  if (unshare(CLONE_NEWNS) != 0) {
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
      throw std::runtime_error(Impossible + "no mounts of one's own: " + std::strerror(errno));
    WriteProcFile("/proc/self/setgroups", "deny");
    WriteProcFile("/proc/self/uid_map", "0 " + user + " 1");
    WriteProcFile("/proc/self/gid_map", "0 " + group + " 1");
  }
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
    throw std::runtime_error(Impossible + "no mounts of one's own: " + std::strerror(errno));
}

/// Puts a disk of few kilobytes on `folder`.
inline void MountSmallDisk(const std::filesystem::path& folder) {
  MakeOwnMounts();
  if (mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0)
    throw std::runtime_error(Impossible + "no mount: " + std::strerror(errno));
}

}  // namespace chanplan::testing
