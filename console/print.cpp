#include "console/command.h"
#include "console/qt_application.h"
#include "report/pdf_listing.h"

namespace chanplan {
namespace {

struct PrintArguments {
  std::filesystem::path File;
  std::filesystem::path Out;
  PaperSize Paper = PaperSize::Letter;
};

int Print(const PrintArguments& arguments) {
  RefuseOwnTable(arguments.File, arguments.Out);
  const OpenedTable opened = OpenWithNotes(arguments.File);
  const auto application = MakePrintApplication();
  SaveBytes(arguments.Out, PdfListing(opened.Table, CaptionOf(arguments.File), arguments.Paper));
  return ExitCodeOf(opened);
}

}  // namespace

void AddPrintCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("print", "Write a table's printed listing as PDF");
  const auto arguments = std::make_shared<PrintArguments>();
  AddFileArgument(*command, "FILE", arguments->File, "the table");
  AddFileArgument(*command, "OUT", arguments->Out, "where to write the listing");
  command
      ->add_option_function<std::string>(
          "--paper",
          [arguments](const std::string& name) { arguments->Paper = name == "a4" ? PaperSize::A4 : PaperSize::Letter; },
          "letter (unless another is named) or a4")
      ->transform(CLI::IsMember({"letter", "a4"}, CLI::ignore_case));
  command->callback([arguments, &exitCode] { exitCode = Print(*arguments); });
}

}  // namespace chanplan
