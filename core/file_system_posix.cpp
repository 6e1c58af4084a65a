#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "core/file_system.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

std::error_code LastError() { return {errno, std::generic_category()}; }

class FileDescriptor {
 public:
  explicit FileDescriptor(int opened) : descriptor(opened) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  bool IsOpen() const { return descriptor >= 0; }
  int Get() const { return descriptor; }
  // Some file systems report a full disk only here.
  bool Close() { return descriptor < 0 || close(std::exchange(descriptor, -1)) == 0; }

 private:
  int descriptor;
};

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::error_code WriteDevice(const fs::path& device, std::string_view bytes) {
  FileDescriptor file(open(device.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close()) return LastError();
  return {};
}

// The file that a chain of symbolic links ends at, which need not exist yet.
fs::path FollowLinks(fs::path file) {
  constexpr int longestChain = 40;
  std::error_code ignored;
  for (int link = 0; link < longestChain && fs::is_symlink(file, ignored); ++link)
    file = file.parent_path() / fs::read_symlink(file, ignored);
  return file;
}

// A new file beside `target`, so that renaming it never crosses file systems.
fs::path CreateBeside(const fs::path& target, int& descriptor) {
  for (int attempt = 0;; ++attempt) {
    fs::path name = target.parent_path() / (".chanplan-" + std::to_string(getpid()) + "-" + std::to_string(attempt));
    descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor >= 0 || errno != EEXIST) return name;
  }
}

void SyncFolder(const fs::path& folder) {
  const FileDescriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.IsOpen()) fsync(opened.Get());
}

std::chrono::sys_seconds ToTime(const struct statx_timestamp& time) {
  return std::chrono::sys_seconds(std::chrono::seconds(time.tv_sec));
}

}  // namespace

std::error_code ReplaceFile(const fs::path& file, std::string_view bytes) {
  struct stat former {};
  const bool exists = stat(file.c_str(), &former) == 0;
  if (exists && S_ISDIR(former.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  // Before links are followed: that of /dev/stdout need not lead to a name.
  if (exists && !S_ISREG(former.st_mode)) return WriteDevice(file, bytes);
  const fs::path target = FollowLinks(file);
  std::error_code ignored;
  if (fs::is_symlink(target, ignored)) return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  // Renaming needs no right to write the file itself, but replacing a write-protected one does.
  if (exists && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return LastError();

  int descriptor = -1;
  const fs::path fresh = CreateBeside(target, descriptor);
  FileDescriptor output(descriptor);
  if (!output.IsOpen()) return LastError();
  bool done = true;
  if (exists) {
    // Another owner's file becomes one's own where the system does not let it be given back.
    [[maybe_unused]] const int owner = fchown(output.Get(), former.st_uid, former.st_gid);
    done = fchmod(output.Get(), former.st_mode & 07777) == 0;
  }
  done = done && WriteAll(output.Get(), bytes) && fsync(output.Get()) == 0 && output.Close() &&
         rename(fresh.c_str(), target.c_str()) == 0;
  if (!done) {
    const std::error_code error = LastError();
    unlink(fresh.c_str());
    return error;
  }
  SyncFolder(target.parent_path());
  return {};
}

std::optional<FileFacts> ReadFileFacts(const fs::path& file) {
  struct statx facts {};
  if (statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &facts) != 0) return std::nullopt;
  const bool hasBirth = (facts.stx_mask & STATX_BTIME) != 0;
  return FileFacts{static_cast<std::uint32_t>(facts.stx_size), ToTime(hasBirth ? facts.stx_btime : facts.stx_mtime),
                   ToTime(facts.stx_atime), ToTime(facts.stx_mtime)};
}

}  // namespace chanplan
