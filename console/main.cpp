// chanplan: the editor's functions from the command line.
#include <iostream>

#include "console/command.h"
#include "console/interruption.h"

int main(int argc, char** argv) {
  using namespace chanplan;
  CLI::App app(
      "Check, convert, merge, compare, print and draw Signal Standard tables, and move them to and from handheld "
      "units.",
      "chanplan");
  app.require_subcommand(1);
  int exitCode = ExitDone;
  for (const auto addCommand :
       {AddCheckCommand, AddSaveAsCommand, AddMergeCommand, AddPropertiesCommand, AddDiffCommand, AddReportCommand,
        AddPrintCommand, AddChartCommand, AddIdentifyCommand, AddDownloadCommand, AddUploadCommand, AddUnitsCommand})
    addCommand(app, exitCode);
  try {
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {  // a request for help is one, too
      if (app.exit(error) != 0) return ExitFailed;
    }
    std::cout.flush();
    if (!std::cout) throw CommandFailure("standard output could not be written");
    return exitCode;
  } catch (const Interrupted&) {
    Note("interrupted");
    return InterruptedExitCode();
  } catch (const std::exception& error) {
    Note(error.what());
    return ExitFailed;
  }
}
