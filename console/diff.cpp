#include <iostream>

#include "console/command.h"
#include "core/table_difference.h"
#include "core/text_encoding.h"

namespace chanplan {

void AddDiffCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("diff", "Print what differs between two tables");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  command->add_option("A", files->first, "a table")->required();
  command->add_option("B", files->second, "the table to compare it with")->required();
  command->footer("Exit status: 0 the tables are alike, 1 they differ, 2 a file could not be read.");
  command->callback([files, &exitCode] {
    const SignalStandardTable left = OpenTable(files->first);
    const auto differences = TableDifferences(left, OpenTable(files->second));
    for (const std::string& line : differences) std::cout << HarmlessText(line) << '\n';
    exitCode = differences.empty() ? ExitDone : ExitDifferent;
  });
}

}  // namespace chanplan
