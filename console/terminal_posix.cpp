#include <unistd.h>

#include "console/terminal.h"

namespace chanplan {

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

void PrepareStandardStreams() {}  // they do nothing else

bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }
bool StandardOutputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

std::filesystem::path FileOfStandardInput() { return "/dev/stdin"; }
std::filesystem::path FileOfStandardOutput() { return "/dev/stdout"; }

}  // namespace chanplan
