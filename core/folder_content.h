// What folders hold.
#pragma once

#include <filesystem>
#include <vector>

namespace chanplan {

/// What is in `folder`, as far as the system tells.
std::vector<std::filesystem::path> ContentOf(const std::filesystem::path& folder);

}  // namespace chanplan
