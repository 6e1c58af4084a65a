#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <csignal>
#include <string>
#include <vector>

#include "core/file_descriptor.h"
#include "core/file_system.h"
#include "core/folder_content.h"
#include "core/in_place_save_posix.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view FreshFilePrefix = ".chanplan-";
constexpr char AccessList[] = "system.posix_acl_access";

// What follows a link by name alone would lose: the file behind it may have no name, or another one.
bool IsOpenDescriptor(const fs::path& link) {
  constexpr auto procFileSystem = 0x9fa0;
  struct statfs facts {};
  return statfs(link.parent_path().c_str(), &facts) == 0 && facts.f_type == procFileSystem &&
         link.filename().string().find_first_not_of("0123456789") == std::string::npos;
}

// The file that a chain of symbolic links ends at, which need not exist yet, or the link that stands
// for an open descriptor.
fs::path FollowLinks(fs::path file) {
  constexpr int longestChain = 40;
  std::error_code ignored;
  for (int link = 0; link < longestChain && fs::is_symlink(file, ignored) && !IsOpenDescriptor(file); ++link)
    file = file.parent_path() / fs::read_symlink(file, ignored);
  return file;
}

std::error_code WriteDevice(const fs::path& device, std::string_view bytes) {
  FileDescriptor file(open(device.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close()) return LastError();
  return {};
}

// One's own descriptor goes on where it stands; opened anew, it would begin at the file's start.
std::error_code WriteDescriptor(const fs::path& link, std::string_view bytes) {
  std::error_code ignored;
  if (fs::canonical(link.parent_path(), ignored) != fs::canonical("/proc/self/fd", ignored))
    return WriteDevice(link, bytes);
  const int descriptor = std::stoi(link.filename().string());
  return WriteAll(descriptor, bytes) ? std::error_code() : LastError();
}

// The end of a fresh file's name: "-" and a number.
bool IsAttempt(std::string_view text) {
  return text.size() > 1 && text.front() == '-' && text.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

// What saves that were killed left in `folder`. The process's number may be in use on another machine or
// in another container only: whoever still writes has marked the file.
void SweepFolder(const fs::path& folder) {
  std::error_code none;
  for (const fs::path& file : ContentOf(folder.empty() ? "." : folder)) {
    const std::string name = file.filename().string();
    if (!name.starts_with(FreshFilePrefix)) continue;
    int process = 0;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data() + FreshFilePrefix.size(), end, process);
    if (error != std::errc() || process <= 0 || !IsAttempt({rest, end}) || !fs::is_regular_file(file, none)) continue;
    if (ProcessLives(process)) continue;
    const FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (opened.IsOpen() && MarkInUse(opened)) unlink(file.c_str());
  }
}

// Is gone with its owner, unless its name is taken from it.
struct FreshFile {
  fs::path Name;
  FileDescriptor File;

  ~FreshFile() {
    const int error = errno;
    if (!Name.empty()) unlink(Name.c_str());
    errno = error;
  }
};

// A new file beside `target`, so that renaming it never crosses file systems. `mode` is cut by the umask.
FreshFile CreateBeside(const fs::path& target, mode_t mode) {
  for (int attempt = 0;; ++attempt) {
    fs::path name = target.parent_path() /
                    std::string(FreshFilePrefix).append(std::to_string(getpid()) + "-" + std::to_string(attempt));
    FileDescriptor file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file.IsOpen() && errno == EEXIST) continue;
    if (!file.IsOpen()) return {fs::path(), std::move(file)};
    flock(file.Get(), LOCK_EX | LOCK_NB);
    return {std::move(name), std::move(file)};
  }
}

using Attributes = std::vector<std::pair<std::string, std::string>>;

// A file's attributes that belong to its owner, the access list among them; the system's labels are its own affair.
std::optional<Attributes> ReadAttributes(const fs::path& file) {
  std::array<char, 65536> names{};  // the system's limits, as below
  const ssize_t length = listxattr(file.c_str(), names.data(), names.size());
  if (length < 0) return errno == ENOTSUP ? std::optional(Attributes()) : std::nullopt;
  Attributes attributes;
  std::string value(65536, '\0');
  for (const char* name = names.data(); name < names.data() + length; name += std::string_view(name).size() + 1) {
    if (std::string_view(name) != AccessList && !std::string_view(name).starts_with("user.")) continue;
    const ssize_t size = getxattr(file.c_str(), name, value.data(), value.size());
    if (size < 0) return std::nullopt;
    attributes.emplace_back(name, value.substr(0, static_cast<std::size_t>(size)));
  }
  return attributes;
}

// Makes `fresh`, which only its maker can read so far, the property of those that `target` belongs to. The mode
// comes last: it is what lets others in, and must not do so by the folder's access list.
bool TakeOverIdentity(int fresh, const fs::path& target, const struct stat& former) {
  const std::optional<Attributes> attributes = ReadAttributes(target);
  if (!attributes) return false;
  if (fchown(fresh, former.st_uid, former.st_gid) != 0) return false;
  if (fremovexattr(fresh, AccessList) != 0 && errno != ENODATA && errno != ENOTSUP) return false;
  for (const auto& [name, value] : *attributes)
    if (fsetxattr(fresh, name.c_str(), value.data(), value.size(), 0) != 0) return false;
  return fchmod(fresh, former.st_mode & 07777) == 0;
}

enum class Replaced { Done, Failed, Impossible };

// Impossible: no other file can take the place of `target`. `former` is null when there is none.
Replaced PutNewFile(const fs::path& target, const struct stat* former, std::string_view bytes, bool flush) {
  constexpr mode_t ownerAlone = 0600;
  FreshFile fresh = CreateBeside(target, former != nullptr ? ownerAlone : 0666);
  if (!fresh.File.IsOpen()) return Replaced::Impossible;
  if (former != nullptr && !TakeOverIdentity(fresh.File.Get(), target, *former)) return Replaced::Impossible;
  if (!WriteAll(fresh.File.Get(), bytes) || (flush && fsync(fresh.File.Get()) != 0) || !fresh.File.Close())
    return Replaced::Failed;
  if (rename(fresh.Name.c_str(), target.c_str()) != 0) return Replaced::Impossible;
  fresh.Name.clear();
  return Replaced::Done;
}

std::chrono::sys_seconds ToTime(const struct statx_timestamp& time) {
  return std::chrono::sys_seconds(std::chrono::seconds(time.tv_sec));
}

std::error_code Replace(const fs::path& file, std::string_view bytes, bool flush) {
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow so large is an error, not the program's end
  const fs::path target = FollowLinks(file);
  std::error_code ignored;
  if (fs::is_symlink(target, ignored))
    return IsOpenDescriptor(target) ? WriteDescriptor(target, bytes)
                                    : std::make_error_code(std::errc::too_many_symbolic_link_levels);
  HealInterruptedSaves();
  struct stat former {};
  const bool exists = stat(target.c_str(), &former) == 0;
  if (!exists && errno != ENOENT) return LastError();  // it may be there
  if (exists && S_ISDIR(former.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  if (exists && !S_ISREG(former.st_mode)) return WriteDevice(target, bytes);
  // Renaming needs no right to write the file itself, but replacing a write-protected one does.
  if (exists && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return LastError();
  SweepFolder(target.parent_path());
  switch (PutNewFile(target, exists ? &former : nullptr, bytes, flush)) {
    case Replaced::Done:
      if (flush) SyncFolder(target.parent_path());
      return {};
    case Replaced::Impossible:
      if (exists) return OverwriteInPlace(target, bytes);
      [[fallthrough]];
    case Replaced::Failed:
      break;
  }
  return LastError();
}

}  // namespace

std::error_code ReplaceFile(const fs::path& file, std::string_view bytes) { return Replace(file, bytes, true); }

std::error_code ReplaceFileUnflushed(const fs::path& file, std::string_view bytes) {
  return Replace(file, bytes, false);
}

void FlushFile(const fs::path& file) {
  const FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (opened.IsOpen() && fsync(opened.Get()) == 0) SyncFolder(file.parent_path());
}

void HealInterruptedSaves() { HealInPlaceSaves(); }

std::string WhyNotHealed(const fs::path& file) { return WhyNotPutBack(file); }

std::shared_ptr<void> HoldStill(const fs::path& file) { return WaitForInPlaceSaves(file); }

std::optional<FileFacts> ReadFileFacts(const fs::path& file) {
  struct statx facts {};
  if (statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &facts) != 0) return std::nullopt;
  const bool hasBirth = (facts.stx_mask & STATX_BTIME) != 0;
  return FileFacts{static_cast<std::uint32_t>(facts.stx_size), ToTime(hasBirth ? facts.stx_btime : facts.stx_mtime),
                   ToTime(facts.stx_atime), ToTime(facts.stx_mtime)};
}

std::optional<FileStamp> ReadFileStamp(const fs::path& file) {
  struct stat facts {};
  if (stat(file.c_str(), &facts) != 0) return std::nullopt;
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return FileStamp{facts.st_dev, facts.st_ino, facts.st_mtim.tv_sec * nanoseconds + facts.st_mtim.tv_nsec,
                   static_cast<std::uint64_t>(facts.st_size)};
}

fs::path UnlimitedPath(const fs::path& file) { return file; }

bool IsFile(const fs::path& file) {
  std::error_code ignored;
  return fs::exists(file, ignored) && !fs::is_directory(file, ignored);
}

bool ProcessLives(std::int64_t process) { return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH; }

bool AreSameFile(const fs::path& one, const fs::path& other) {
  const auto first = ReadFileStamp(one), second = ReadFileStamp(other);
  return first && second && first->SameFile(*second);
}

}  // namespace chanplan
