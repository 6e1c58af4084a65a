// Changing a file that no other can take the place of.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace chanplan {

/// Gives the existing file `target` the content `bytes` without making it another file. A copy of the
/// former content lies in the user's state folder meanwhile. When writing fails, the former content is
/// put back and the error returned.
std::error_code OverwriteInPlace(const std::filesystem::path& target, std::string_view bytes);

/// Keeps the regular file `file` from being changed so as long as the result lives; null when there is nothing to
/// wait for, or for too long.
std::shared_ptr<void> WaitForInPlaceSaves(const std::filesystem::path& file);

/// Puts the former content back wherever that was cut short.
void HealInPlaceSaves();

/// Where the former content of `file` is that could not be put back, and why not.
std::string WhyNotPutBack(const std::filesystem::path& file);

}  // namespace chanplan
