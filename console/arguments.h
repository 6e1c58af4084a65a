// What `chanplan` can be called with.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace chanplan {

/// All commands. What the one that is run comes to is stored in `exitCode`.
std::unique_ptr<CLI::App> MakeCommands(int& exitCode);

/// Runs the one of `commands` that `arguments` name, without the program's name among them. Throws CLI::ParseError,
/// also when help or the version is asked for, CommandFailure, and whatever the command throws.
void RunCommand(CLI::App& commands, std::vector<std::string> arguments);

}  // namespace chanplan
