#include "console/arguments.h"

#include <algorithm>
#include <string_view>

#include "console/command.h"

namespace chanplan {
namespace {

constexpr std::string_view Shield = "./";

// The library takes what stands in brackets for a list, and "++" for a command's end; behind a shield it is a name.
std::string Shielded(const std::string& argument) {
  std::string_view bare = argument;
  while (bare.starts_with(Shield)) bare.remove_prefix(Shield.size());
  const bool isTaken = (bare.starts_with('[') && bare.ends_with(']')) || bare == "++";
  return isTaken ? std::string(Shield) + argument : argument;
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

std::unique_ptr<CLI::App> MakeCommands(int& exitCode) {
  auto app = std::make_unique<CLI::App>(
      "Check, list, convert, merge, compare, print and draw Signal Standard tables, and move them to and from handheld "
      "units.",
      "chanplan");
  app->require_subcommand(1);
  for (const auto addCommand :
       {AddCheckCommand, AddListCommand, AddSaveAsCommand, AddMergeCommand, AddPropertiesCommand, AddDiffCommand,
        AddReportCommand, AddPrintCommand, AddChartCommand, AddIdentifyCommand, AddDownloadCommand, AddUploadCommand,
        AddUnitsCommand})
    addCommand(*app, exitCode);
  constexpr char version[] = "Chanplan Editor " CHANPLAN_VERSION;
  app->set_version_flag("--version", version);
  for (CLI::App* command : app->get_subcommands({})) {
    command->set_version_flag("--version", version);
    command->allow_windows_style_options(false);  // "/" begins names there, too
    TakeShieldsOff(*command);
  }
  return app;
}

void RunCommand(CLI::App& commands, std::vector<std::string> arguments) {
  RefuseUnknownCommand(commands, arguments);
  std::ranges::transform(arguments, arguments.begin(), Shielded);
  std::ranges::reverse(arguments);  // as the library wants them
  commands.parse(std::move(arguments));
}

}  // namespace chanplan
