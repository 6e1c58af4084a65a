#include <windows.h>
#undef ReplaceFile  // which would rename ours

#include <array>
#include <charconv>
#include <string>
#include <utility>

#include "core/file_system.h"
#include "core/windows_text.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::wstring_view FreshFilePrefix = L".chanplan-";

class Handle {
 public:
  explicit Handle(HANDLE opened) : handle(opened) {}
  Handle(Handle&& other) noexcept : handle(std::exchange(other.handle, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&&) = delete;
  ~Handle() { Close(); }

  HANDLE Get() const { return handle; }
  bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }
  bool Close() { return !IsOpen() || CloseHandle(std::exchange(handle, INVALID_HANDLE_VALUE)) != 0; }

 private:
  HANDLE handle;
};

Handle OpenExisting(const fs::path& file, DWORD access) {
  // Folders are opened too.
  return Handle(
      CreateFileW(file.c_str(), access, ShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::chrono::sys_seconds ToTime(const FILETIME& time) {
  constexpr std::int64_t ticksPerSecond = 10'000'000;
  constexpr std::int64_t secondsFrom1601To1970 = 11'644'473'600;
  const auto ticks = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  return std::chrono::sys_seconds(std::chrono::seconds(ticks / ticksPerSecond - secondsFrom1601To1970));
}

// The file that symbolic links and junctions on the way to `file` end at.
fs::path FollowLinks(const fs::path& file) {
  const Handle opened = OpenExisting(file, 0);
  std::wstring name(32768, L'\0');
  const DWORD length =
      opened.IsOpen() ? GetFinalPathNameByHandleW(opened.Get(), name.data(), static_cast<DWORD>(name.size()), 0) : 0;
  return length > 0 && length < name.size() ? fs::path(name.substr(0, length)) : file;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    constexpr std::size_t most = 1 << 24;
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), most)), &written, nullptr))
      return false;
    bytes.remove_prefix(written);
  }
  return true;
}

std::error_code WriteDevice(const fs::path& device, std::string_view bytes) {
  Handle file = OpenExisting(device, GENERIC_WRITE);
  if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close()) return LastError();
  return {};
}

// The process in the name of a fresh file, 0 in others.
DWORD MakerOf(const fs::path& fresh) {
  const std::wstring name = fresh.filename().native();
  if (!name.starts_with(FreshFilePrefix)) return 0;
  const std::string rest(name.begin() + FreshFilePrefix.size(), name.end());
  DWORD process = 0;
  const char* const end = rest.data() + rest.size();
  const auto [dash, error] = std::from_chars(rest.data(), end, process);
  const std::string_view attempt(dash, end);
  const bool isAttempt = attempt.size() > 1 && attempt.front() == '-' &&
                         attempt.find_first_not_of("0123456789", 1) == std::string_view::npos;
  return error == std::errc() && isAttempt ? process : 0;
}

// What saves that were killed left in `folder`. The process's number may be in use on another machine only: whoever
// still writes lets nobody delete the file.
void SweepFolder(const fs::path& folder) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW((folder / L".chanplan-*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const DWORD maker = MakerOf(found.cFileName);
    if (maker != 0 && !ProcessLives(maker)) DeleteFileW((folder / found.cFileName).c_str());
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

// Is gone with its owner, unless its name is taken from it.
struct FreshFile {
  fs::path Name;
  Handle File;

  FreshFile(fs::path name, Handle file) : Name(std::move(name)), File(std::move(file)) {}
  FreshFile(FreshFile&& other) noexcept : Name(std::exchange(other.Name, {})), File(std::move(other.File)) {}
  FreshFile& operator=(FreshFile&&) = delete;
  ~FreshFile() {
    const DWORD error = GetLastError();
    File.Close();
    if (!Name.empty()) DeleteFileW(Name.c_str());
    SetLastError(error);
  }
};

// A new file beside `target`, which nobody else can open as long as it is written.
FreshFile CreateBeside(const fs::path& target) {
  for (int attempt = 0;; ++attempt) {
    fs::path name = target.parent_path() / (std::wstring(FreshFilePrefix) + std::to_wstring(GetCurrentProcessId()) +
                                            L"-" + std::to_wstring(attempt));
    Handle file(CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.IsOpen()) return {std::move(name), std::move(file)};
    if (GetLastError() != ERROR_FILE_EXISTS) return {fs::path(), std::move(file)};
  }
}

// Virus scanners and indexers open what is new or changed for a moment.
template <typename Call>
bool Repeated(const Call& call) {
  constexpr int attempts = 20;
  constexpr DWORD pause = 50;  // ms
  for (int attempt = 1; !call(); ++attempt) {
    const DWORD error = GetLastError();
    if (error != ERROR_SHARING_VIOLATION || attempt == attempts) return false;
    Sleep(pause);
    SetLastError(error);
  }
  return true;
}

// Lets `fresh` take the place of `target`, with the access list, attributes and streams of the former file.
bool TakePlace(FreshFile& fresh, const fs::path& target, bool exists, bool flush) {
  const auto move = [&] {
    return MoveFileExW(fresh.Name.c_str(), target.c_str(), flush ? MOVEFILE_WRITE_THROUGH : 0) != 0;
  };
  const auto replace = [&] {
    return ReplaceFileW(target.c_str(), fresh.Name.c_str(), nullptr, 0, nullptr, nullptr) != 0;
  };
  if (exists && !Repeated([&] { return OpenExisting(target, DELETE).IsOpen(); })) return false;
  // The former file may be gone then, and the new one still have its own name.
  if (exists && !replace() && (GetLastError() != ERROR_UNABLE_TO_MOVE_REPLACEMENT || !move())) return false;
  if (!exists && !move()) return false;
  fresh.Name.clear();
  return true;
}

std::error_code Replace(const fs::path& file, std::string_view bytes, bool flush) {
  const fs::path named = UnlimitedPath(file);
  if (named.native().starts_with(L"\\\\.\\")) return WriteDevice(named, bytes);
  const fs::path target = FollowLinks(named);
  const DWORD attributes = GetFileAttributesW(target.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (!exists && GetLastError() != ERROR_FILE_NOT_FOUND) return LastError();  // it may be there
  if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return std::make_error_code(std::errc::is_a_directory);
  if (exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0) return WindowsError(ERROR_ACCESS_DENIED);
  SweepFolder(target.parent_path());
  FreshFile fresh = CreateBeside(target);
  if (!fresh.File.IsOpen() || !WriteAll(fresh.File.Get(), bytes) || (flush && !FlushFileBuffers(fresh.File.Get())) ||
      !fresh.File.Close() || !TakePlace(fresh, target, exists, flush))
    return LastError();
  return {};
}

}  // namespace

fs::path UnlimitedPath(const fs::path& file) {
  std::wstring whole(32768, L'\0');
  whole.resize(GetFullPathNameW(file.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  if (whole.empty()) return file;
  if (whole.starts_with(L"\\\\?\\") || whole.starts_with(L"\\\\.\\")) return whole;  // unlimited, or a device
  return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC" + whole.substr(1) : L"\\\\?\\" + whole;
}

std::error_code ReplaceFile(const fs::path& file, std::string_view bytes) { return Replace(file, bytes, true); }

std::error_code ReplaceFileUnflushed(const fs::path& file, std::string_view bytes) {
  return Replace(file, bytes, false);
}

void FlushFile(const fs::path& file) {
  if (const Handle opened = OpenExisting(UnlimitedPath(file), GENERIC_WRITE); opened.IsOpen())
    FlushFileBuffers(opened.Get());
}

// What cannot be replaced is not changed in place, which leaves nothing to heal.
void HealInterruptedSaves() {}

std::string WhyNotHealed(const std::filesystem::path& /*file*/) { return {}; }

std::shared_ptr<void> HoldStill(const fs::path& /*file*/) { return nullptr; }

std::optional<FileFacts> ReadFileFacts(const fs::path& file) {
  WIN32_FILE_ATTRIBUTE_DATA facts{};
  if (!GetFileAttributesExW(UnlimitedPath(file).c_str(), GetFileExInfoStandard, &facts)) return std::nullopt;
  return FileFacts{facts.nFileSizeLow, ToTime(facts.ftCreationTime), ToTime(facts.ftLastAccessTime),
                   ToTime(facts.ftLastWriteTime)};
}

std::optional<FileStamp> ReadFileStamp(const fs::path& file) {
  const Handle opened = OpenExisting(UnlimitedPath(file), 0);
  BY_HANDLE_FILE_INFORMATION facts{};
  if (!opened.IsOpen() || !GetFileInformationByHandle(opened.Get(), &facts)) return std::nullopt;
  const auto joined = [](DWORD high, DWORD low) { return (static_cast<std::uint64_t>(high) << 32) | low; };
  return FileStamp{
      facts.dwVolumeSerialNumber, joined(facts.nFileIndexHigh, facts.nFileIndexLow),
      static_cast<std::int64_t>(joined(facts.ftLastWriteTime.dwHighDateTime, facts.ftLastWriteTime.dwLowDateTime)),
      joined(facts.nFileSizeHigh, facts.nFileSizeLow)};
}

bool IsFile(const fs::path& file) {
  const DWORD attributes = GetFileAttributesW(UnlimitedPath(file).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool ProcessLives(std::int64_t process) {
  const HANDLE opened = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(process));
  if (opened == nullptr) return GetLastError() != ERROR_INVALID_PARAMETER;  // somebody else's may not be opened
  const bool lives = WaitForSingleObject(opened, 0) == WAIT_TIMEOUT;
  CloseHandle(opened);
  return lives;
}

bool AreSameFile(const fs::path& one, const fs::path& other) {
  const auto first = ReadFileStamp(one), second = ReadFileStamp(other);
  return first && second && first->SameFile(*second);
}

}  // namespace chanplan
