// chanplan: the editor's functions from the command line.
#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "console/command.h"
#include "console/interruption.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

// The arguments behind the program's name. One in brackets would be taken for a list of files.
std::vector<std::string> Arguments(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  for (std::string& argument : arguments)
    if (argument.starts_with('[') && argument.ends_with(']')) argument.insert(0, "./");
  return arguments;
}

void RefuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  const auto isCalled = [&](const CLI::App* command) { return command->get_name() == arguments[0]; };
  if (!arguments.empty() && !arguments[0].starts_with('-') && std::ranges::none_of(app.get_subcommands({}), isCalled))
    throw CommandFailure("there is no command \"" + arguments[0] + "\"; chanplan --help names them all");
}

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  using namespace chanplan;
  CLI::App app(
      "Check, convert, merge, compare, print and draw Signal Standard tables, and move them to and from handheld "
      "units.",
      "chanplan");
  app.require_subcommand(1);
  int exitCode = ExitDone;
  for (const auto addCommand :
       {AddCheckCommand, AddSaveAsCommand, AddMergeCommand, AddPropertiesCommand, AddDiffCommand, AddReportCommand,
        AddPrintCommand, AddChartCommand, AddIdentifyCommand, AddDownloadCommand, AddUploadCommand, AddUnitsCommand})
    addCommand(app, exitCode);
  constexpr char version[] = "Chanplan Editor " CHANPLAN_VERSION;
  app.set_version_flag("--version", version);
  for (CLI::App* command : app.get_subcommands({})) command->set_version_flag("--version", version);
  try {
    std::vector<std::string> arguments = Arguments(argc, argv);
    RefuseUnknownCommand(app, arguments);
    try {
      std::ranges::reverse(arguments);  // as the library wants them
      app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {  // a request for help is one, too
      std::ostringstream wrong;
      const bool failed = app.exit(error, std::cout, wrong) != 0;
      std::cerr << HarmlessText(wrong.str());  // it repeats the arguments
      if (failed) return ExitFailed;
    }
    std::cout.flush();
    if (!std::cout) throw CommandFailure("standard output could not be written");
    return exitCode;
  } catch (const Interrupted&) {
    Note("interrupted");
    return InterruptedExitCode();
  } catch (const std::exception& error) {
    Note(error.what());
    return ExitFailed;
  }
}
