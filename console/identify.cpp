#include <iostream>

#include "console/unit_session.h"
#include "core/number_picture.h"

namespace chanplan {

void AddIdentifyCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("identify", "Print model and firmware version of a unit");
  const auto arguments = std::make_shared<PortArguments>();
  arguments->AddTo(*command);
  const auto json = AddFormatOption(*command);
  command->callback([arguments, json] {
    UnitSession session(*arguments);
    const bool accepted = session.Identify();
    if (*json) {
      std::cout << R"({"model": )" << JsonString(PrintedText(session.Link().UnitModel)) << R"(, "firmware": ")"
                << FormatNumber(session.Link().UnitFirmwareVersion, "#0.00") << R"(", "accepted": )"
                << (accepted ? "true" : "false") << "}\n";
      return;
    }
    std::cout << "Model:    " << PrintedText(session.Link().UnitModel) << '\n'
              << "Firmware: " << FormatNumber(session.Link().UnitFirmwareVersion, "#0.00") << '\n'
              << "Accepted: " << (accepted ? "yes" : "no") << '\n';
  });
}

}  // namespace chanplan
