#include "console/command.h"
#include "core/file_system.h"
#include "core/sig_file.h"
#include "report/listing.h"
#include "report/pdf_surface.h"

namespace chanplan {
namespace {

struct PrintArguments {
  std::filesystem::path File;
  std::filesystem::path Out;
  PaperSize Paper = LetterPaper;
};

void Print(const PrintArguments& arguments) {
  PdfSurface surface(arguments.Paper);
  PrintListing(surface, OpenTable(arguments.File), CaptionOfFile(arguments.File));
  FailUnlessSaved(arguments.Out, ReplaceFile(arguments.Out, surface.Bytes()));
}

}  // namespace

void AddPrintCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("print", "Write a table's printed listing as PDF");
  const auto arguments = std::make_shared<PrintArguments>();
  command->add_option("FILE", arguments->File, "the table")->required();
  command->add_option("OUT", arguments->Out, "where to write the listing")->required();
  command
      ->add_option_function<std::string>(
          "--paper", [arguments](const std::string& name) { arguments->Paper = name == "a4" ? A4Paper : LetterPaper; },
          "letter (unless another is named) or a4")
      ->check(CLI::IsMember({"letter", "a4"}));
  command->callback([arguments] { Print(*arguments); });
}

}  // namespace chanplan
