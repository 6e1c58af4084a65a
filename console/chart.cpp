#include "console/command.h"
#include "report/plan_chart.h"

namespace chanplan {

void AddChartCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("chart", "Draw a table's bands along the spectrum, as SVG");
  const auto files = std::make_shared<std::pair<std::filesystem::path, std::filesystem::path>>();
  AddFileArgument(*command, "FILE", files->first, "the table");
  AddFileArgument(*command, "OUT", files->second, "where to write the chart");
  const auto open = AddOpenOption(*command);
  command->callback([files, open, &exitCode] {
    const auto& [file, out] = *files;
    RefuseOwnTable(file, out);
    if (*open) RefuseToShow(out);
    const OpenedTable opened = OpenWithNotes(file);
    SaveBytes(out, ChartSvg(opened.Table, CaptionOf(file)));
    exitCode = ExitCodeOf(opened);
    if (*open) ShowFile(out);
  });
}

}  // namespace chanplan
