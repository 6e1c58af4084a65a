// A copy is a file of its own in the state folder: who it is of, and the former content.
// It gets its name once it is whole, and is marked as in use while its save runs.
#include "core/in_place_save_posix.h"

#include <fcntl.h>

#include <chrono>
#include <optional>
#include <sstream>
#include <string>
#include <thread>

#include "core/file_descriptor.h"
#include "core/folder_content.h"
#include "core/state_folder.h"
#include "core/unfinished_mark.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view CopyEnding = ".former";

struct Copy {
  std::string Target;
  std::uint64_t Device = 0;
  std::uint64_t Number = 0;
  timespec Modified{};  // when the former content was written
  std::string Former;
};

fs::path CopyFolder() {
  const fs::path state = StateFolder();
  return state.empty() ? state : state / "saves";
}

// Nobody else may look at a user's state.
bool MakePrivateFolder(const fs::path& folder) {
  std::error_code error;
  const bool made = fs::create_directories(folder.parent_path(), error);
  if (error) return false;
  if (made) fs::permissions(folder.parent_path(), fs::perms::owner_all, error);
  return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

std::string ToBytes(const Copy& copy) {
  std::ostringstream bytes;
  bytes << copy.Device << ' ' << copy.Number << ' ' << copy.Modified.tv_sec << ' ' << copy.Modified.tv_nsec << ' '
        << copy.Target.size() << ' ' << copy.Former.size() << '\n'
        << copy.Target << copy.Former;
  return bytes.str();
}

std::optional<Copy> FromBytes(const std::string& bytes) {
  std::istringstream input(bytes);
  Copy copy;
  std::size_t target = 0, former = 0;
  input >> copy.Device >> copy.Number >> copy.Modified.tv_sec >> copy.Modified.tv_nsec >> target >> former;
  if (!input || input.get() != '\n') return std::nullopt;
  const std::string_view rest = std::string_view(bytes).substr(static_cast<std::size_t>(input.tellg()));
  if (rest.size() < target || rest.size() - target != former) return std::nullopt;
  copy.Target = rest.substr(0, target);
  copy.Former = rest.substr(target);
  return copy;
}

bool WriteAt(int file, off_t place, std::string_view bytes) {
  return lseek(file, place, SEEK_SET) == place && WriteAll(file, bytes);
}

// The mark stands in the place of the first byte until all others are on the disk: what is cut short is not taken for
// whole, and what somebody saves then is not taken for cut short.
bool SetContent(int file, std::string_view bytes) {
  if (bytes.empty()) return ftruncate(file, 0) == 0 && fsync(file) == 0;
  return WriteAt(file, 0, {&UnfinishedMark, 1}) && fsync(file) == 0 && WriteAt(file, 1, bytes.substr(1)) &&
         ftruncate(file, static_cast<off_t>(bytes.size())) == 0 && fsync(file) == 0 &&
         WriteAt(file, 0, bytes.substr(0, 1)) && fsync(file) == 0;
}

bool PutBack(int file, const Copy& copy) {
  if (!SetContent(file, copy.Former)) return false;
  // To whoever remembers it, this is the file that it was. Its owner alone may do that.
  const timespec times[] = {{0, UTIME_OMIT}, copy.Modified};
  futimens(file, times);
  return true;
}

// What the system's reason alone does not tell: what it means for the former content, and the folder of copies.
class CopyFailures : public std::error_category {
 public:
  explicit CopyFailures(const char* meaning) : what(meaning) {}
  const char* name() const noexcept override { return "copy of the former content"; }
  std::string message(int error) const override {
    const std::string folder = CopyFolder().string();
    return what + " " + (folder.empty() ? "the home folder" : folder) + " (" + std::generic_category().message(error) +
           ")";
  }

 private:
  std::string what;
};

const CopyFailures NotKept("no copy of the former content could be kept in");
const CopyFailures NotPutBack("the file is not whole now, and the next start puts its former content back from");

// Two that change a file at once would mix what they write. Another program must not hold this one up for ever.
bool WaitForTurn(int file, int kind = LOCK_EX) {
  constexpr int attempts = 300;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    if (flock(file, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

// False when the copy is still needed.
bool Heal(const Copy& copy) {
  const FileDescriptor file(open(copy.Target.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
  struct stat facts {};
  std::string content;
  if (!file.IsOpen() || !WaitForTurn(file.Get()) || fstat(file.Get(), &facts) != 0 || !ReadAll(file.Get(), content))
    return false;
  // Somebody may have put another file there since.
  if (facts.st_dev != copy.Device || facts.st_ino != copy.Number || !content.starts_with(UnfinishedMark)) return true;
  return PutBack(file.Get(), copy);
}

void HealFrom(const fs::path& name) {
  const FileDescriptor file(open(name.c_str(), O_RDWR | O_CLOEXEC));
  std::string bytes;
  if (!file.IsOpen() || !MarkInUse(file) || !ReadAll(file.Get(), bytes)) return;
  const std::optional<Copy> copy = FromBytes(bytes);
  // One without its ending was not finished, so that nothing was changed yet.
  if (name.extension() != CopyEnding || !copy || Heal(*copy)) unlink(name.c_str());
}

// A new file in use, and the name that it gets once it is whole; both are for one copy alone.
struct UnfinishedCopy {
  FileDescriptor File;
  fs::path Name;
  fs::path Finished;
};

UnfinishedCopy BeginCopy(const fs::path& folder) {
  for (int attempt = 0;; ++attempt) {
    const fs::path name = folder / (std::to_string(getpid()) + "-" + std::to_string(attempt));
    UnfinishedCopy copy{FileDescriptor(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600)), name,
                        name.string().append(CopyEnding)};
    if (!copy.File.IsOpen() && errno != EEXIST) return copy;
    if (!copy.File.IsOpen()) continue;
    if (MarkInUse(copy.File)) {
      if (access(copy.Finished.c_str(), F_OK) != 0) return copy;
      unlink(name.c_str());
    } else if (errno != EWOULDBLOCK) {  // otherwise another one is sweeping it
      const int error = errno;
      unlink(name.c_str());
      errno = error;
      return UnfinishedCopy{FileDescriptor(), {}, {}};
    }
  }
}

// The copy's name; empty, with `errno`, when it could not be made. It is in use as long as `file` is open.
fs::path MakeCopy(const Copy& copy, FileDescriptor& file) {
  const fs::path folder = CopyFolder();
  if (folder.empty()) errno = ENOENT;
  if (folder.empty() || !MakePrivateFolder(folder)) return {};
  UnfinishedCopy made = BeginCopy(folder);
  if (!made.File.IsOpen()) return {};
  file = std::move(made.File);
  if (WriteAll(file.Get(), ToBytes(copy)) && fsync(file.Get()) == 0 &&
      rename(made.Name.c_str(), made.Finished.c_str()) == 0) {
    SyncFolder(folder);
    return made.Finished;
  }
  const int error = errno;
  unlink(made.Name.c_str());
  errno = error;
  return {};
}

}  // namespace

std::error_code OverwriteInPlace(const fs::path& target, std::string_view bytes) {
  const FileDescriptor file(open(target.c_str(), O_RDWR | O_CLOEXEC));
  struct stat facts {};
  if (!file.IsOpen()) return LastError();
  if (!WaitForTurn(file.Get())) return std::make_error_code(std::errc::device_or_resource_busy);
  Copy copy;
  copy.Target = fs::absolute(target).string();
  if (fstat(file.Get(), &facts) != 0 || !ReadAll(file.Get(), copy.Former)) return LastError();
  copy.Device = facts.st_dev;
  copy.Number = facts.st_ino;
  copy.Modified = facts.st_mtim;

  FileDescriptor copyFile;
  const fs::path copyName = MakeCopy(copy, copyFile);
  if (copyName.empty()) return {errno, NotKept};
  std::error_code error;
  if (!SetContent(file.Get(), bytes)) error = LastError();
  if (error && !PutBack(file.Get(), copy)) return {error.value(), NotPutBack};
  unlink(copyName.c_str());
  return error;
}

std::shared_ptr<void> WaitForInPlaceSaves(const fs::path& file) {
  struct stat facts {};
  if (stat(file.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return nullptr;  // opening a pipe takes from it
  auto opened = std::make_shared<FileDescriptor>(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  return opened->IsOpen() && WaitForTurn(opened->Get(), LOCK_SH) ? opened : nullptr;
}

void HealInPlaceSaves() {
  for (const fs::path& copy : ContentOf(CopyFolder())) HealFrom(copy);
}

std::string WhyNotPutBack(const fs::path& file) {
  struct stat facts {};
  if (stat(file.c_str(), &facts) != 0) return LastError().message();
  for (const fs::path& name : ContentOf(CopyFolder())) {
    const FileDescriptor opened(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    std::string bytes;
    if (!opened.IsOpen() || !ReadAll(opened.Get(), bytes)) continue;
    const std::optional<Copy> copy = FromBytes(bytes);
    if (copy && copy->Device == facts.st_dev && copy->Number == facts.st_ino && !Heal(*copy))
      return "its former content could not be put back from " + name.string() + " (" + LastError().message() + ")";
  }
  return "its former content is with the user who saved it";
}

}  // namespace chanplan
