#include <iostream>

#include "console/command.h"
#include "core/table_difference.h"
#include "core/text_encoding.h"

namespace chanplan {

void AddDiffCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("diff", "Print what differs between two tables");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  AddFileArgument(*command, "A", files->first, "a table");
  AddFileArgument(*command, "B", files->second, "the table to compare it with");
  const auto json = AddFormatOption(*command);
  command->footer(
      "Exit status: 0 the tables are alike, 1 they differ, 2 a file could not be read, 3 they are alike as far as "
      "they were read.");
  command->callback([files, json, &exitCode] {
    RefuseStandardInputTwice(files->first, files->second);
    const OpenedTable left = OpenWithNotes(files->first);
    const OpenedTable right = OpenWithNotes(files->second);
    const auto differences = TableDifferences(left.Table, right.Table);
    const bool cut = left.RowsLeftOut + right.RowsLeftOut > 0;
    if (*json) {
      const char* alike = differences.empty() && !cut ? "true" : "false";
      std::cout << "{\"alike\": " << alike << ", \"differences\": " << JsonStrings(differences) << "}\n";
    } else {
      for (const std::string& line : differences) std::cout << HarmlessText(line) << '\n';
    }
    if (cut) Note("rows beyond the 200th were not compared");
    exitCode = !differences.empty() ? ExitDifferent : cut ? ExitRowsLost : ExitDone;
  });
}

}  // namespace chanplan
