// chanplan: the editor's functions from the command line.
#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "console/command.h"
#include "console/interruption.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr std::string_view Shield = "./";

// The library takes what stands in brackets for a list; behind a shield it is a name.
std::string Shielded(const std::string& argument) {
  std::string_view bare = argument;
  while (bare.starts_with(Shield)) bare.remove_prefix(Shield.size());
  return bare.starts_with('[') && bare.ends_with(']') ? std::string(Shield) + argument : argument;
}

std::string Unshielded(const std::string& argument) {
  const bool shielded = argument.starts_with(Shield) && Shielded(argument) != argument;
  return shielded ? argument.substr(Shield.size()) : argument;
}

void TakeShieldsOff(CLI::App& command) {
  for (CLI::Option* option : command.get_options([](CLI::Option*) { return true; })) option->transform(Unshielded, "");
}

void RefuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  const auto isCalled = [&](const CLI::App* command) { return command->get_name() == arguments[0]; };
  if (arguments.empty()) return;
  if (arguments[0].starts_with("-") && app.get_option_no_throw(arguments[0]) == nullptr)
    throw CommandFailure("there is no option \"" + arguments[0] + "\"; chanplan --help names them all");
  if (!arguments[0].starts_with('-') && std::ranges::none_of(app.get_subcommands({}), isCalled))
    throw CommandFailure("there is no command \"" + arguments[0] + "\"; chanplan --help names them all");
}

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  using namespace chanplan;
  CLI::App app(
      "Check, list, convert, merge, compare, print and draw Signal Standard tables, and move them to and from handheld "
      "units.",
      "chanplan");
  app.require_subcommand(1);
  int exitCode = ExitDone;
  for (const auto addCommand :
       {AddCheckCommand, AddListCommand, AddSaveAsCommand, AddMergeCommand, AddPropertiesCommand, AddDiffCommand,
        AddReportCommand, AddPrintCommand, AddChartCommand, AddIdentifyCommand, AddDownloadCommand, AddUploadCommand,
        AddUnitsCommand})
    addCommand(app, exitCode);
  constexpr char version[] = "Chanplan Editor " CHANPLAN_VERSION;
  app.set_version_flag("--version", version);
  for (CLI::App* command : app.get_subcommands({})) {
    command->set_version_flag("--version", version);
    TakeShieldsOff(*command);
  }
  try {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    RefuseUnknownCommand(app, arguments);
    try {
      std::ranges::transform(arguments, arguments.begin(), Shielded);
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
