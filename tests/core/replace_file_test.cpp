// What a save asks of the system, and in what order: a machine that loses its power must find the
// former file or the new one.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
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

  std::vector<std::string> Calls;
  bool FlushFails = false;
  std::string Pinned;  // the name of a file that nothing can take the place of, as of what is mounted
};

thread_local Recorder* Recorder::Active = nullptr;

template <typename Function>
Function* SystemsOwn(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string WhatIsFlushed(int descriptor) {
  struct stat facts {};
  if (fstat(descriptor, &facts) != 0) return "nothing";
  return S_ISDIR(facts.st_mode) ? "folder" : "file of " + std::to_string(facts.st_size) + " bytes";
}

}  // namespace

// These stand before the system's own functions of the same names.
extern "C" int fsync(int descriptor) {
  static const auto flush = SystemsOwn<int(int)>("fsync");
  if (Recorder* const recorder = Recorder::Active) {
    recorder->Calls.push_back("flush " + WhatIsFlushed(descriptor));
    if (recorder->FlushFails) return errno = EIO, -1;
  }
  return flush(descriptor);
}

extern "C" int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
  static const auto give = SystemsOwn<int(int, uid_t, gid_t)>("fchown");
  if (Recorder* const recorder = Recorder::Active) {
    struct stat facts {};
    fstat(descriptor, &facts);
    std::ostringstream call;
    call << "give away with mode " << std::oct << (facts.st_mode & 07777);
    recorder->Calls.push_back(call.str());
  }
  return give(descriptor, owner, group);
}

extern "C" int rename(const char* from, const char* to) noexcept {
  static const auto move = SystemsOwn<int(const char*, const char*)>("rename");
  if (Recorder* const recorder = Recorder::Active) {
    const std::string name = fs::path(to).filename().string();
    recorder->Calls.push_back("rename to " + name);
    if (name == recorder->Pinned) return errno = EBUSY, -1;
  }
  return move(from, to);
}

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
  recorder.FlushFails = true;
  EXPECT_EQ(ReplaceFile(folder / "table.sig", "new"), std::errc::io_error);
  EXPECT_EQ(recorder.Calls, (Calls{"give away with mode 600", "flush file of 3 bytes"}));
  EXPECT_EQ(ReadFile(folder / "table.sig"), "former");
  EXPECT_EQ(NamesIn(folder.Path()), Names{"table.sig"});
}

// As where nothing can take the place of the table, which can be written all the same.
void SaveInPlace(const TempFolder& folder, Recorder& recorder) {
  setenv("XDG_STATE_HOME", (folder / "state").c_str(), 1);
  WriteFile(folder / "table.sig", "former");
  recorder.Pinned = "table.sig";
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "new"));
  unsetenv("XDG_STATE_HOME");
  EXPECT_EQ(ReadFile(folder / "table.sig"), "new");
}

TEST(ReplaceFile, FlushesACopyOfTheFormerContentBeforeItIsChangedInPlace) {
  const TempFolder folder;
  Recorder recorder;
  SaveInPlace(folder, recorder);
  Calls calls = {"give away with mode 600", "flush file of 3 bytes", "rename to table.sig"};
  calls.insert(calls.end(), {"flush copy", "rename to copy", "flush folder", "flush file of 3 bytes"});
  ASSERT_EQ(recorder.Calls.size(), calls.size());
  // The copy's size and name have numbers in them that are others each time.
  EXPECT_TRUE(std::exchange(recorder.Calls[3], "flush copy").starts_with("flush file of "));
  EXPECT_TRUE(std::exchange(recorder.Calls[4], "rename to copy").ends_with(".former"));
  EXPECT_EQ(recorder.Calls, calls);
}

TEST(ReplaceFile, KeepsCopiesFromEverybodyElse) {
  for (const bool exists : {false, true}) {
    SCOPED_TRACE(exists);
    const TempFolder folder;
    const fs::path state = folder / "state" / "chanplans";
    if (exists) fs::create_directories(state);
    const fs::perms former = fs::status(state).permissions();
    Recorder recorder;
    SaveInPlace(folder, recorder);
    EXPECT_EQ(fs::status(state / "saves").permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(state).permissions(), exists ? former : fs::perms::owner_all);
  }
}

}  // namespace
}  // namespace chanplan
