#include "console/command.h"
#include "report/html_report.h"

namespace chanplan {

void AddReportCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("report", "Write a table as an HTML report");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  AddFileArgument(*command, "FILE", files->first, "the table");
  AddFileArgument(*command, "OUT", files->second, "where to write the report");
  const auto open = AddOpenOption(*command);
  command->callback([files, open, &exitCode] {
    const auto& [file, out] = *files;
    RefuseOwnTable(file, out);
    if (*open) RefuseToShow(out);
    const OpenedTable opened = OpenWithNotes(file);
    SaveBytes(out, ReportText(opened.Table, CaptionOf(file)));
    exitCode = ExitCodeOf(opened);
    if (*open) ShowFile(out);
  });
}

}  // namespace chanplan
