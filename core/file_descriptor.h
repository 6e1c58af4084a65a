// An open file of a POSIX system.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace chanplan {

inline std::error_code LastError() { return {errno, std::generic_category()}; }

/// Closes what it was given, unless that is -1.
class FileDescriptor {
 public:
  explicit FileDescriptor(int opened = -1) : descriptor(opened) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor, other.descriptor);
    return *this;
  }
  ~FileDescriptor() { Close(); }

  bool IsOpen() const { return descriptor >= 0; }
  int Get() const { return descriptor; }
  // Some file systems report a full disk only here.
  bool Close() { return descriptor < 0 || close(std::exchange(descriptor, -1)) == 0; }

 private:
  int descriptor;
};

inline bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// Appends what is left to read; false when that fails.
inline bool ReadAll(int descriptor, std::string& bytes) {
  char buffer[65536];
  for (ssize_t count; (count = read(descriptor, buffer, sizeof buffer)) != 0;) {
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.append(buffer, static_cast<std::size_t>(count));
  }
  return true;
}

/// What was named, renamed or removed in `folder` is so after a loss of power, too.
inline void SyncFolder(const std::filesystem::path& folder) {
  const FileDescriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.IsOpen()) fsync(opened.Get());
}

/// Marks the file as being worked on until its descriptor is closed: a process that is killed marks
/// nothing any more. False, with `errno`, when that cannot be done: EWOULDBLOCK when another one has marked it, or
/// has removed it before this one could.
inline bool MarkInUse(const FileDescriptor& file) {
  struct stat facts {};
  if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0 || fstat(file.Get(), &facts) != 0) return false;
  if (facts.st_nlink == 0) errno = EWOULDBLOCK;
  return facts.st_nlink > 0;
}

}  // namespace chanplan
