// What the platform knows about files beyond the standard library. One implementation a platform.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace chanplan {

/// Puts `bytes` into `file`, whole or not at all: a former file stays as it was until the new
/// content is safely on the disk, and stays for good when anything fails or the program is killed.
/// Its owner, group, mode, access list and attributes are kept, and a symbolic link stays a link.
/// Where no new file can take its place with all of them, the content is changed in place behind a
/// copy of the former one, which HealInterruptedSaves puts back when the program was killed; on Windows that is an
/// error. A device is written directly, and so is what a name such as /dev/stdout stands for.
std::error_code ReplaceFile(const std::filesystem::path& file, std::string_view bytes);

/// As ReplaceFile, for a program's own file that must survive the program's end at once and a loss of power
/// soon: it does not wait for the disk, which FlushFile does.
std::error_code ReplaceFileUnflushed(const std::filesystem::path& file, std::string_view bytes);

/// Waits until what `file` holds is on the disk. Files that cannot be opened are passed over.
void FlushFile(const std::filesystem::path& file);

/// Gives every file its former content back whose change in place was cut short by a crash. Files
/// that are being saved at the moment are left alone. Done before files are read and saved.
void HealInterruptedSaves();

/// Where the former content of `file` is that HealInterruptedSaves could not give back, and why not, in words.
std::string WhyNotHealed(const std::filesystem::path& file);

/// Keeps other programs of this system from changing `file` in place as long as the result lives: it would be read
/// half changed. Null when there is nothing to wait for, or when a change in place takes longer than some seconds.
std::shared_ptr<void> HoldStill(const std::filesystem::path& file);

struct FileFacts {
  std::uint32_t Size = 0;  ///< bytes, the low 32 bits
  std::chrono::sys_seconds Created;
  std::chrono::sys_seconds Accessed;
  std::chrono::sys_seconds Modified;
};

/// Size and times (UTC) of `file`; nothing when they cannot be had. Where the file system keeps no
/// time of creation, the last modification stands for it.
std::optional<FileFacts> ReadFileFacts(const std::filesystem::path& file);

/// Tells a file from another one, and from itself after somebody wrote to it.
struct FileStamp {
  std::uint64_t Device = 0;
  std::uint64_t Number = 0;   ///< the file's, on its device
  std::int64_t Modified = 0;  ///< in the system's own steps
  std::uint64_t Size = 0;

  bool operator==(const FileStamp&) const = default;
  /// Whether both are of one file, whatever was written to it.
  bool SameFile(const FileStamp& other) const { return Device == other.Device && Number == other.Number; }
};

/// Nothing when there is no such file. Symbolic links are followed.
std::optional<FileStamp> ReadFileStamp(const std::filesystem::path& file);

/// The name by which the system takes `file` however long it is: on Windows the ordinary ones end at 259 characters.
/// Not for the standard library's functions that look at files: they take a "?" for a wildcard there.
std::filesystem::path UnlimitedPath(const std::filesystem::path& file);

/// Whether `file` is there, and no folder.
bool IsFile(const std::filesystem::path& file);

/// Whether this system has a process of this number, whosever it is.
bool ProcessLives(std::int64_t process);

/// Whether both names lead to one file that exists.
bool AreSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

}  // namespace chanplan
