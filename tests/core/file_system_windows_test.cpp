// What saves promise where files are those of Windows.
#include <windows.h>
#undef ReplaceFile

#include <gtest/gtest.h>

#include <thread>

#include "core/file_system.h"
#include "core/state_folder.h"
#include "core/windows_text.h"
#include "tests/core/temp_folder.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

bool IsWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

// A file that somebody else has open, and shares with nobody.
class HeldFile {
 public:
  explicit HeldFile(const fs::path& file)
      : handle(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, 0, nullptr)) {}
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  ~HeldFile() { Release(); }
  void Release() {
    if (handle != nullptr) CloseHandle(handle);
    handle = nullptr;
  }

 private:
  HANDLE handle;
};

// The number of a process that has ended.
std::string DeadProcess() {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  wchar_t command[] = L"cmd.exe /c exit";
  EXPECT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process));
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return std::to_string(process.dwProcessId);
}

const std::set<std::string> OnlyTheTable = {"table.sig"};

TEST(ReplaceFile, MakesAndReplacesAFileAndLeavesNothingElse) {
  const TempFolder folder;
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "first\n"));
  EXPECT_EQ(ReadFile(folder / "table.sig"), "first\n");
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "second\r\n"));
  EXPECT_EQ(ReadFile(folder / "table.sig"), "second\r\n");
  EXPECT_FALSE(ReplaceFileUnflushed(folder / "table.sig", "third"));
  EXPECT_EQ(ReadFile(folder / "table.sig"), "third");
  EXPECT_EQ(NamesIn(folder.Path()), OnlyTheTable);
}

TEST(ReplaceFile, KeepsTheAttributesOfAFile) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  ASSERT_TRUE(SetFileAttributesW((folder / "table.sig").c_str(), FILE_ATTRIBUTE_HIDDEN));
  if (IsWine()) GTEST_SKIP() << "Wine replaces files without their attributes";
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "new"));
  EXPECT_EQ(ReadFile(folder / "table.sig"), "new");
  EXPECT_TRUE(GetFileAttributesW((folder / "table.sig").c_str()) & FILE_ATTRIBUTE_HIDDEN);
}

TEST(ReplaceFile, RefusesAFileThatIsReadOnly) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  ASSERT_TRUE(SetFileAttributesW((folder / "table.sig").c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(ReplaceFile(folder / "table.sig", "new"), std::errc::permission_denied);
  EXPECT_EQ(ReadFile(folder / "table.sig"), "former");
  EXPECT_EQ(NamesIn(folder.Path()), OnlyTheTable);
  SetFileAttributesW((folder / "table.sig").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(ReplaceFile, RefusesAFolderAndAPlaceThatIsNotThere) {
  const TempFolder folder;
  EXPECT_EQ(ReplaceFile(folder.Path(), "new"), std::errc::is_a_directory);
  EXPECT_EQ(ReplaceFile(folder / "missing" / "table.sig", "new"), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(ReplaceFile, LeavesAFileThatAnotherProgramHoldsAndSaysSo) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  {
    const HeldFile held(folder / "table.sig");
    const std::error_code error = ReplaceFile(folder / "table.sig", "new");
    EXPECT_EQ(error, WindowsError(ERROR_SHARING_VIOLATION)) << error.message();
  }
  EXPECT_EQ(ReadFile(folder / "table.sig"), "former");
  EXPECT_EQ(NamesIn(folder.Path()), OnlyTheTable);
}

TEST(ReplaceFile, WaitsForAFileThatIsHeldForAMoment) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  HeldFile held(folder / "table.sig");
  std::thread scanner([&held] {
    Sleep(200);
    held.Release();
  });
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "new"));
  scanner.join();
  EXPECT_EQ(ReadFile(folder / "table.sig"), "new");
}

TEST(ReplaceFile, SweepsWhatDeadProcessesLeftInTheFolder) {
  const TempFolder folder;
  const std::string running = ".chanplan-" + std::to_string(GetCurrentProcessId()) + "-7";
  WriteFile(folder / (".chanplan-" + DeadProcess() + "-0"), "left");
  WriteFile(folder / running, "being written");
  WriteFile(folder / ".chanplan-notes", "not ours");
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "new"));
  EXPECT_EQ(NamesIn(folder.Path()), (std::set<std::string>{running, ".chanplan-notes", "table.sig"}));
}

TEST(ReplaceFile, TakesPathsOfAnyLengthAndLetters) {
  const TempFolder folder;
  fs::path deep = UnlimitedPath(folder.Path());
  for (int level = 0; level < 3; ++level) fs::create_directory(deep /= std::wstring(100, L'd'));
  const fs::path file = deep / L"\u017Bubr \u0434.sig";
  const fs::path plain = file.native().substr(4);  // without the prefix of unlimited names
  ASSERT_GT(plain.native().size(), 300u);
  EXPECT_FALSE(ReplaceFile(plain, "first"));
  EXPECT_FALSE(ReplaceFile(plain, "second"));
  EXPECT_EQ(ReadFile(file), "second");
  EXPECT_EQ(ReadFileFacts(plain).value_or(FileFacts{}).Size, 6u);
  EXPECT_TRUE(AreSameFile(plain, file));
  EXPECT_TRUE(IsFile(plain));
  EXPECT_FALSE(IsFile(deep));
  // The library's own way to remove folders ends at the ordinary length.
  EXPECT_TRUE(DeleteFileW(file.c_str()));
  for (; deep != UnlimitedPath(folder.Path()); deep = deep.parent_path()) EXPECT_TRUE(RemoveDirectoryW(deep.c_str()));
}

TEST(ReplaceFile, WritesADeviceDirectly) { EXPECT_FALSE(ReplaceFile("NUL", "gone")); }

TEST(UnlimitedPath, KnowsDrivesSharesAndDevices) {
  EXPECT_EQ(UnlimitedPath("C:/folder/../table.sig"), fs::path(LR"(\\?\C:\table.sig)"));
  EXPECT_EQ(UnlimitedPath("//server/share/table.sig"), fs::path(LR"(\\?\UNC\server\share\table.sig)"));
  EXPECT_EQ(UnlimitedPath(LR"(\\?\C:\table.sig)"), fs::path(LR"(\\?\C:\table.sig)"));
  EXPECT_EQ(UnlimitedPath("NUL"), fs::path(LR"(\\.\NUL)"));
}

TEST(FileStamp, TellsAFileFromItselfAfterAWrite) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  const auto former = ReadFileStamp(folder / "table.sig");
  WriteFile(folder / "table.sig", "longer than before");
  const auto now = ReadFileStamp(folder / "table.sig");
  ASSERT_TRUE(former && now);
  EXPECT_NE(*former, *now);
  EXPECT_TRUE(former->SameFile(*now));
  EXPECT_FALSE(ReadFileStamp(folder / "missing.sig"));
}

TEST(StateFolder, IsAmongTheUsersLocalData) {
  EXPECT_TRUE(StateFolder().is_absolute());
  EXPECT_EQ(StateFolder().filename(), "Chanplans");
}

TEST(WindowsText, GoesToUtf8AndBack) {
  EXPECT_EQ(Utf8FromWide(L"\u00E4\u0434"), "\xC3\xA4\xD0\xB4");
  EXPECT_EQ(WideFromUtf8("\xC3\xA4\xD0\xB4"), L"\u00E4\u0434");
  EXPECT_EQ(Utf8FromWide(L""), "");
}

TEST(WindowsError, SaysWhatTheSystemSaysAndIsComparedAsUsual) {
  EXPECT_FALSE(WindowsError(ERROR_ACCESS_DENIED).message().empty());
  EXPECT_EQ(WindowsError(ERROR_ACCESS_DENIED), std::errc::permission_denied);
  EXPECT_EQ(WindowsError(0xFFFFFF).message(), "error 16777215");
}

}  // namespace
}  // namespace chanplan::testing
