#define NOMINMAX
#include <windows.h>

#include <fstream>

#include "core/file_system.h"

namespace chanplan {
namespace {

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

std::chrono::sys_seconds ToTime(const FILETIME& time) {
  constexpr std::int64_t ticksPerSecond = 10'000'000;
  constexpr std::int64_t secondsFrom1601To1970 = 11'644'473'600;
  const auto ticks = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  return std::chrono::sys_seconds(std::chrono::seconds(ticks / ticksPerSecond - secondsFrom1601To1970));
}

std::error_code Replace(const std::filesystem::path& file, std::string_view bytes, DWORD writeThrough) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    return {ERROR_ACCESS_DENIED, std::system_category()};
  std::error_code linkError;
  const std::filesystem::path resolved = std::filesystem::weakly_canonical(file, linkError);
  const std::filesystem::path target = linkError ? file : resolved;
  const std::filesystem::path fresh = target.parent_path() / (L".chanplan-" + std::to_wstring(GetCurrentProcessId()));
  std::ofstream output(fresh, std::ios::binary | std::ios::trunc);
  output.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  output.close();
  if (output && MoveFileExW(fresh.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | writeThrough)) return {};
  const std::error_code error = LastError();
  DeleteFileW(fresh.c_str());
  return error;
}

}  // namespace

std::error_code ReplaceFile(const std::filesystem::path& file, std::string_view bytes) {
  return Replace(file, bytes, MOVEFILE_WRITE_THROUGH);
}

std::error_code ReplaceFileUnflushed(const std::filesystem::path& file, std::string_view bytes) {
  return Replace(file, bytes, 0);
}

void FlushFile(const std::filesystem::path& file) {
  const HANDLE opened = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return;
  FlushFileBuffers(opened);
  CloseHandle(opened);
}

std::optional<FileFacts> ReadFileFacts(const std::filesystem::path& file) {
  WIN32_FILE_ATTRIBUTE_DATA facts{};
  if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &facts)) return std::nullopt;
  return FileFacts{facts.nFileSizeLow, ToTime(facts.ftCreationTime), ToTime(facts.ftLastAccessTime),
                   ToTime(facts.ftLastWriteTime)};
}

// The system's own replacing leaves nothing to heal.
void HealInterruptedSaves() {}

std::shared_ptr<void> HoldStill(const std::filesystem::path& /*file*/) { return nullptr; }

std::optional<FileStamp> ReadFileStamp(const std::filesystem::path& file) {
  const HANDLE opened = CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION facts{};
  const bool known = GetFileInformationByHandle(opened, &facts) != 0;
  CloseHandle(opened);
  if (!known) return std::nullopt;
  const auto joined = [](DWORD high, DWORD low) { return (static_cast<std::uint64_t>(high) << 32) | low; };
  return FileStamp{
      facts.dwVolumeSerialNumber, joined(facts.nFileIndexHigh, facts.nFileIndexLow),
      static_cast<std::int64_t>(joined(facts.ftLastWriteTime.dwHighDateTime, facts.ftLastWriteTime.dwLowDateTime)),
      joined(facts.nFileSizeHigh, facts.nFileSizeLow)};
}

bool AreSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
  const auto first = ReadFileStamp(one), second = ReadFileStamp(other);
  return first && second && first->SameFile(*second);
}

}  // namespace chanplan
