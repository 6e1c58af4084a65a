// What a save asks of the system, and in what order: a machine that loses its power must find the
// former file or the new one.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <sstream>
#include <string>
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
  if (Recorder* const recorder = Recorder::Active)
    recorder->Calls.push_back("rename to " + fs::path(to).filename().string());
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

}  // namespace
}  // namespace chanplan
