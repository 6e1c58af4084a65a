#include <iostream>
#include <vector>

#include "console/command.h"
#include "core/text_encoding.h"
#include "core/validation.h"

namespace chanplan {
namespace {

// Prints the findings as the warnings pane holds them once an edit has been committed: by then the
// list view is filled, so that duplicate names are found. Returns whether there are any.
bool CheckFile(const std::filesystem::path& file, const std::string& prefix) {
  const SignalStandardTable table = OpenTable(file);
  const std::vector<Warning> warnings = FindWarnings(table, ListNames(table));
  for (const Warning& warning : warnings) std::cout << prefix << HarmlessText(WarningText(warning)) << '\n';
  return !warnings.empty();
}

int CheckFiles(const std::vector<std::filesystem::path>& files) {
  int exitCode = ExitDone;
  for (const auto& file : files) {
    try {
      if (CheckFile(file, files.size() > 1 ? file.string() + ": " : "")) exitCode = std::max(exitCode, ExitDifferent);
    } catch (const CommandFailure& failure) {
      Note(failure.what());
      exitCode = ExitFailed;
    }
  }
  return exitCode;
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("check", "Print the warnings about tables");
  const auto files = std::make_shared<std::vector<std::filesystem::path>>();
  command->add_option("FILE", *files, "tables to check")->required();
  command->footer("Exit status: 0 no warnings, 1 warnings, 2 a file could not be read.");
  command->callback([files, &exitCode] { exitCode = CheckFiles(*files); });
}

}  // namespace chanplan
