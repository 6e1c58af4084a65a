// What the platform knows about files beyond the standard library. One implementation a platform.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace chanplan {

/// Puts `bytes` into `file`, whole or not at all: a former file stays as it was until the new
/// content is safely on the disk, and stays for good when anything fails or the program is killed.
/// Its permissions are kept, and a symbolic link stays a link. A device is written directly.
std::error_code ReplaceFile(const std::filesystem::path& file, std::string_view bytes);

struct FileFacts {
  std::uint32_t Size = 0;  ///< bytes, the low 32 bits
  std::chrono::sys_seconds Created;
  std::chrono::sys_seconds Accessed;
  std::chrono::sys_seconds Modified;
};

/// Size and times (UTC) of `file`; nothing when they cannot be had. Where the file system keeps no
/// time of creation, the last modification stands for it.
std::optional<FileFacts> ReadFileFacts(const std::filesystem::path& file);

}  // namespace chanplan
