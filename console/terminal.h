// What the system knows about the program's arguments and streams. One implementation a system.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace chanplan {

/// The arguments of `main`, without the program's name; UTF-8 on Windows, otherwise the bytes that were given.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// From now on standard streams carry bytes as they are, and a terminal takes them for UTF-8.
void PrepareStandardStreams();

bool StandardErrorIsTerminal();
bool StandardOutputIsTerminal();

/// Names of the files behind the streams; no file's names where there is none.
std::filesystem::path FileOfStandardInput();
std::filesystem::path FileOfStandardOutput();

}  // namespace chanplan
