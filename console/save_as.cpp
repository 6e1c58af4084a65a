#include "console/command.h"

namespace chanplan {

void AddSaveAsCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("save-as", "Open a table, validate it and save it under another name");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  AddFileArgument(*command, "FILE", files->first, "the table to open");
  AddFileArgument(*command, "OUT", files->second, "where to save it");
  command->footer("Exit status: 0 saved, 2 failed, 3 saved, but rows were lost.");
  command->callback([files, &exitCode] {
    const OpenedTable opened = OpenWithNotes(files->first);
    SaveTableAs(opened.Table, files->second);
    exitCode = ExitCodeAfterLoss(opened.RowsLeftOut);
  });
}

}  // namespace chanplan
