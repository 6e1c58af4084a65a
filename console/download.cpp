#include "console/unit_session.h"

namespace chanplan {

void AddDownloadCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("download", "Save the table of a unit to a file");
  const auto port = std::make_shared<PortArguments>();
  const auto out = std::make_shared<std::filesystem::path>();
  port->AddTo(*command);
  command->add_option("OUT", *out, "where to save the table")->required();
  command->callback([port, out] {
    UnitSession session(*port);
    session.Connect();
    SaveTableAs(session.Download().Table, *out);
  });
}

}  // namespace chanplan
