#include "console/command.h"

namespace chanplan {

void AddSaveAsCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("save-as", "Open a table, validate it and save it under another name");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  command->add_option("FILE", files->first, "the table to open")->required();
  command->add_option("OUT", files->second, "where to save it")->required();
  command->callback([files] { SaveTableAs(OpenTable(files->first), files->second); });
}

}  // namespace chanplan
