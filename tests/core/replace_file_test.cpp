// What a save asks of the system, and in what order: a machine that loses its power must find the
// former file or the new one.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/file_system.h"
#include "tests/core/temp_folder.h"

namespace {

namespace fs = std::filesystem;

// Calls of the thread that has one of these, as long as it lives.
struct Recorder {
  Recorder() { Active = this; }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder() { Active = nullptr; }

  static thread_local Recorder* Active;

  std::vector<std::string> Calls;     // those whose order counts, in words
  std::vector<std::string> AllNames;  // of the functions, one for each call
  // The call that fails, counted from 1, or none; and whether all behind it fail, too.
  std::size_t FailAt = 0;
  bool AndAllBehind = false;
  std::set<std::string_view> Refused;  // the functions whose every call fails
};

thread_local Recorder* Recorder::Active = nullptr;

// Whether a call of `name` that is made now is to fail, with `errno`.
bool Fails(const char* name) {
  Recorder* const recorder = Recorder::Active;
  if (recorder == nullptr) return false;
  recorder->AllNames.emplace_back(name);
  const std::size_t call = recorder->AllNames.size();
  const bool fails = call == recorder->FailAt ||
                     (recorder->AndAllBehind && recorder->FailAt != 0 && call > recorder->FailAt) ||
                     recorder->Refused.contains(name);
  if (fails) errno = EIO;
  return fails;
}

// Takes down what `describe` says, which makes calls of its own.
template <typename Description>
void Note(const Description& describe) {
  Recorder* const recorder = std::exchange(Recorder::Active, nullptr);
  if (recorder != nullptr) recorder->Calls.push_back(describe());
  Recorder::Active = recorder;
}

template <typename Function>
Function* SystemsOwn(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string WhatIsFlushed(int descriptor) {
  struct stat facts {};
  if (fstat(descriptor, &facts) != 0) return "nothing";
  return S_ISDIR(facts.st_mode) ? "folder" : "file of " + std::to_string(facts.st_size) + " bytes";
}

std::string Mode(int descriptor) {
  struct stat facts {};
  fstat(descriptor, &facts);
  std::ostringstream mode;
  mode << std::oct << (facts.st_mode & 07777);
  return mode.str();
}

}  // namespace

// These stand before the system's own functions of the same names.
extern "C" {

int open(const char* file, int flags, ...) {
  static const auto own = SystemsOwn<int(const char*, int, ...)>("open");
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list rest;
    va_start(rest, flags);
    mode = va_arg(rest, mode_t);
    va_end(rest);
  }
  return Fails("open") ? -1 : own(file, flags, mode);
}

ssize_t read(int descriptor, void* bytes, std::size_t size) {
  static const auto own = SystemsOwn<ssize_t(int, void*, std::size_t)>("read");
  return Fails("read") ? -1 : own(descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
  static const auto own = SystemsOwn<ssize_t(int, const void*, std::size_t)>("write");
  return Fails("write") ? -1 : own(descriptor, bytes, size);
}

int close(int descriptor) {
  static const auto own = SystemsOwn<int(int)>("close");
  const bool fails = Fails("close");
  const int closed = own(descriptor);  // it is closed all the same
  return fails ? (errno = EIO, -1) : closed;
}

int fsync(int descriptor) {
  static const auto own = SystemsOwn<int(int)>("fsync");
  if (Fails("fsync")) return -1;
  Note([=] { return "flush " + WhatIsFlushed(descriptor); });
  return own(descriptor);
}

int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
  static const auto own = SystemsOwn<int(int, uid_t, gid_t)>("fchown");
  if (Fails("fchown")) return -1;
  Note([=] { return "give away with mode " + Mode(descriptor); });
  return own(descriptor, owner, group);
}

int fchmod(int descriptor, mode_t mode) noexcept {
  static const auto own = SystemsOwn<int(int, mode_t)>("fchmod");
  return Fails("fchmod") ? -1 : own(descriptor, mode);
}

int rename(const char* from, const char* to) noexcept {
  static const auto own = SystemsOwn<int(const char*, const char*)>("rename");
  if (Fails("rename")) return -1;
  Note([=] { return "rename to " + fs::path(to).filename().string(); });
  return own(from, to);
}

int unlink(const char* file) noexcept {
  static const auto own = SystemsOwn<int(const char*)>("unlink");
  return Fails("unlink") ? -1 : own(file);
}

int ftruncate(int descriptor, off_t size) noexcept {
  static const auto own = SystemsOwn<int(int, off_t)>("ftruncate");
  return Fails("ftruncate") ? -1 : own(descriptor, size);
}

off_t lseek(int descriptor, off_t place, int from) noexcept {
  static const auto own = SystemsOwn<off_t(int, off_t, int)>("lseek");
  return Fails("lseek") ? -1 : own(descriptor, place, from);
}

int flock(int descriptor, int operation) noexcept {
  static const auto own = SystemsOwn<int(int, int)>("flock");
  return Fails("flock") ? -1 : own(descriptor, operation);
}

dirent* readdir(DIR* folder) {
  static const auto own = SystemsOwn<dirent*(DIR*)>("readdir");
  return Fails("readdir") ? nullptr : own(folder);
}

int mkdir(const char* folder, mode_t mode) noexcept {
  static const auto own = SystemsOwn<int(const char*, mode_t)>("mkdir");
  return Fails("mkdir") ? -1 : own(folder, mode);
}

int stat(const char* file, struct stat* facts) noexcept {
  static const auto own = SystemsOwn<int(const char*, struct stat*)>("stat");
  return Fails("stat") ? -1 : own(file, facts);
}

int fstat(int descriptor, struct stat* facts) noexcept {
  static const auto own = SystemsOwn<int(int, struct stat*)>("fstat");
  return Fails("fstat") ? -1 : own(descriptor, facts);
}

int faccessat(int folder, const char* file, int rights, int flags) noexcept {
  static const auto own = SystemsOwn<int(int, const char*, int, int)>("faccessat");
  return Fails("faccessat") ? -1 : own(folder, file, rights, flags);
}

ssize_t listxattr(const char* file, char* names, std::size_t size) noexcept {
  static const auto own = SystemsOwn<ssize_t(const char*, char*, std::size_t)>("listxattr");
  return Fails("listxattr") ? -1 : own(file, names, size);
}

int fremovexattr(int descriptor, const char* name) noexcept {
  static const auto own = SystemsOwn<int(int, const char*)>("fremovexattr");
  return Fails("fremovexattr") ? -1 : own(descriptor, name);
}

}  // extern "C"

namespace chanplan {
namespace {

using testing::NamesIn;
using testing::ReadFile;
using testing::TempFolder;
using testing::WriteFile;

using Calls = std::vector<std::string>;
using Names = std::set<std::string>;

TEST(ReplaceFile, FlushesTheFileBeforeItGetsItsNameAndTheFolderAfterIt) {
  const TempFolder folder;
  for (const bool exists : {false, true}) {
    SCOPED_TRACE(exists);
    const Recorder recorder;
    EXPECT_FALSE(ReplaceFile(folder / "table.sig", "123456789"));
    Calls calls = {"flush file of 9 bytes", "rename to table.sig", "flush folder"};
    // Until it is its owner's again, nobody else may look into the new file.
    if (exists) calls.insert(calls.begin(), "give away with mode 600");
    EXPECT_EQ(recorder.Calls, calls);
  }
  EXPECT_EQ(ReadFile(folder / "table.sig"), "123456789");
}

TEST(ReplaceFile, LeavesTheFormerFileWhereTheNewOneCannotBeFlushed) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  Recorder recorder;
  recorder.Refused = {"fsync"};
  EXPECT_EQ(ReplaceFile(folder / "table.sig", "new"), std::errc::io_error);
  EXPECT_EQ(recorder.Calls, Calls{"give away with mode 600"});
  EXPECT_EQ(ReadFile(folder / "table.sig"), "former");
  EXPECT_EQ(NamesIn(folder.Path()), Names{"table.sig"});
}

// How a file is saved: as a new one, in the place of a former one, or into it where it cannot be replaced.
enum class Way { New, Replacing, InPlace };

constexpr const char* NameOf(Way way) {
  return way == Way::New ? "a new file" : way == Way::Replacing ? "a file that is replaced" : "a file that stays";
}

constexpr auto TeamsOwn = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;

// A save that goes `way`, while calls fail as `recorder` has it.
struct FailingSave {
  explicit FailingSave(Way way) {
    setenv("XDG_STATE_HOME", (Folder / "state").c_str(), 1);
    if (way != Way::New) WriteFile(Table, "former");
    if (way != Way::New) TempFolder::Allow(Table, TeamsOwn);
    if (way == Way::InPlace) Calls.Refused = {"fchown"};
    Recorder::Active = nullptr;
  }
  FailingSave(const FailingSave&) = delete;
  FailingSave& operator=(const FailingSave&) = delete;
  ~FailingSave() { unsetenv("XDG_STATE_HOME"); }

  std::error_code Run(std::size_t failAt, bool andAllBehind) {
    Calls.FailAt = failAt;
    Calls.AndAllBehind = andAllBehind;
    Recorder::Active = &Calls;
    const std::error_code error = ReplaceFile(Table, "new");
    Recorder::Active = nullptr;
    return error;
  }
  std::string Content() const { return fs::exists(Table) ? ReadFile(Table) : "none"; }

  TempFolder Folder;
  fs::path Table = Folder / "table.sig";
  Recorder Calls;
};

TEST(ReplaceFile, KeepsTheFormerContentWhicheverCallOfItFails) {
  for (const Way way : {Way::New, Way::Replacing, Way::InPlace})
    for (const bool andAllBehind : {false, true})
      for (std::size_t failAt = 1;; ++failAt) {
        FailingSave save(way);
        const auto stamp = ReadFileStamp(save.Table);
        const std::error_code error = save.Run(failAt, andAllBehind);
        if (save.Calls.AllNames.size() < failAt) {
          EXPECT_FALSE(error) << error.message();
          EXPECT_GE(failAt, way == Way::New ? 8u : 14u) << "a save asks more of the system";
          break;
        }
        const std::string failed = save.Calls.AllNames[failAt - 1];
        SCOPED_TRACE(std::string(NameOf(way)) + ": call " + std::to_string(failAt) + ", " + failed +
                     (andAllBehind ? ", and all behind it" : ""));
        const std::string before = way == Way::New ? "none" : "former";
        const bool told =
            error.message().find("the next start puts its former content back from ") != std::string::npos;
        EXPECT_TRUE(told || save.Content() == before || save.Content() == "new") << error.message();
        HealInterruptedSaves();
        const bool former = save.Content() == before || (way == Way::InPlace && save.Content() == "new");
        EXPECT_TRUE(error ? former : save.Content() == "new") << error.message() << ": " << save.Content();
        EXPECT_TRUE(save.Content() != "former" || ReadFileStamp(save.Table) == stamp)
            << "it would be taken for changed";
        EXPECT_TRUE(way == Way::New || fs::status(save.Table).permissions() == TeamsOwn);
        // The next one is not hindered by what this one could not clear away.
        const std::error_code next = ReplaceFile(save.Table, "later");
        EXPECT_FALSE(next) << next.message();
        EXPECT_EQ(save.Content(), "later");
        Names left = NamesIn(save.Folder.Path());
        left.erase("state");
        const bool nothingCouldBeRemoved = failed == "unlink" || andAllBehind;
        EXPECT_TRUE(nothingCouldBeRemoved || left == Names{"table.sig"}) << *left.begin();
      }
}

// A file system may know no locks.
TEST(ReplaceFile, EndsWhereFilesCannotBeMarked) {
  for (const Way way : {Way::New, Way::Replacing, Way::InPlace}) {
    FailingSave save(way);
    save.Calls.Refused.insert("flock");
    EXPECT_EQ(!save.Run(0, false), way != Way::InPlace) << NameOf(way);
    EXPECT_EQ(save.Content(), way == Way::InPlace ? "former" : "new");
  }
}

TEST(ReplaceFile, FlushesACopyOfTheFormerContentBeforeItIsChangedInPlace) {
  FailingSave save(Way::InPlace);
  EXPECT_FALSE(save.Run(0, false));
  Calls calls = save.Calls.Calls;
  ASSERT_EQ(calls.size(), 6u);
  // The copy's size and name have numbers in them that are others each time.
  EXPECT_TRUE(std::exchange(calls[0], "flush copy").starts_with("flush file of "));
  EXPECT_TRUE(std::exchange(calls[1], "rename to copy").ends_with(".former"));
  // Then "former" with the mark, all but the first byte of "new", and that.
  EXPECT_EQ(calls, (Calls{"flush copy", "rename to copy", "flush folder", "flush file of 6 bytes",
                          "flush file of 3 bytes", "flush file of 3 bytes"}));
}

TEST(ReplaceFile, KeepsCopiesFromEverybodyElse) {
  for (const bool exists : {false, true}) {
    SCOPED_TRACE(exists);
    FailingSave save(Way::InPlace);
    const fs::path state = save.Folder / "state" / "chanplans";
    if (exists) fs::create_directories(state);
    const fs::perms former = fs::status(state).permissions();
    EXPECT_FALSE(save.Run(0, false));
    EXPECT_EQ(fs::status(state / "saves").permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(state).permissions(), exists ? former : fs::perms::owner_all);
  }
}

}  // namespace
}  // namespace chanplan
