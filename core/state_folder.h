// Where a program keeps what it has to remember on this machine, other than the user's choices.
#pragma once

#include <filesystem>

namespace chanplan {

/// The user's folder for this system's state, which need not exist yet; empty when the user has none.
std::filesystem::path StateFolder();

}  // namespace chanplan
