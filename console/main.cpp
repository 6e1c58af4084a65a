// chanplan: the editor's functions from the command line.
#include <iostream>
#include <new>
#include <sstream>

#include "console/arguments.h"
#include "console/command.h"
#include "console/interruption.h"
#include "console/terminal.h"
#include "core/text_encoding.h"

int main(int argc, char** argv) {
  using namespace chanplan;
  PrepareStandardStreams();
  int exitCode = ExitDone;
  const auto commands = MakeCommands(exitCode);
  try {
    try {
      RunCommand(*commands, ProgramArguments(argc, argv));
    } catch (const CLI::ParseError& error) {  // a request for help is one, too
      std::ostringstream wrong;
      const bool failed = commands->exit(error, std::cout, wrong) != 0;
      std::cerr << HarmlessText(wrong.str());  // it repeats the arguments
      if (failed) return ExitFailed;
    }
    std::cout.flush();
    if (!std::cout) throw CommandFailure("standard output could not be written");
    return exitCode;
  } catch (const Interrupted&) {
    Note("interrupted");
    return InterruptedExitCode();
  } catch (const std::bad_alloc&) {
    Note("there is not enough memory");
    return ExitFailed;
  } catch (const std::exception& error) {
    Note(error.what());
    return ExitFailed;
  }
}
