#include <iostream>

#include "console/command.h"
#include "core/table_properties.h"
#include "core/text_encoding.h"

namespace chanplan {

void AddPropertiesCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("properties", "Print a summary of a table and its file");
  const auto file = std::make_shared<std::filesystem::path>();
  AddFileArgument(*command, "FILE", *file, "the table");
  command->callback([file, &exitCode] {
    const OpenedTable opened = OpenWithNotes(*file);
    std::cout << HarmlessText(WithLfLineEnds(TableProperties(opened.Table, CaptionOf(*file)))) << '\n';
    exitCode = ExitCodeOf(opened);
  });
}

}  // namespace chanplan
