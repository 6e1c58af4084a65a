#include <iostream>
#include <vector>

#include "console/command.h"
#include "core/text_encoding.h"
#include "core/validation.h"

namespace chanplan {
namespace {

struct Checked {
  std::filesystem::path File;
  std::vector<std::string> Notes;
  std::vector<Warning> Warnings;
};

// Finds what the warnings pane holds once an edit has been committed: by then the list view is filled, so
// that duplicate names are found.
Checked CheckFile(const std::filesystem::path& file) {
  OpenedTable opened = OpenQuietly(file);
  std::vector<Warning> warnings = FindWarnings(opened.Table, ListNames(opened.Table));
  return {file, std::move(opened.Notes), std::move(warnings)};
}

void PrintText(const Checked& checked, bool named) {
  for (const std::string& note : checked.Notes) Note(PrintedName(checked.File) + ": " + note);
  const std::string prefix = named ? HarmlessText(PrintedName(checked.File) + ": ") : "";
  for (const Warning& warning : checked.Warnings) std::cout << prefix << HarmlessText(WarningText(warning)) << '\n';
}

std::string JsonOf(const Checked& checked) {
  std::string warnings;
  for (const Warning& warning : checked.Warnings)
    warnings.append(warnings.empty() ? "" : ", ")
        .append("{\"name\": " + JsonString(Utf8FromWindows1252(warning.Name)) +
                ", \"message\": " + JsonString(warning.Message) + "}");
  return "{\"file\": " + JsonString(PrintedName(checked.File)) + ", \"notes\": " + JsonStrings(checked.Notes) +
         ", \"warnings\": [" + warnings + "]}";
}

int CheckFiles(const std::vector<std::filesystem::path>& files, bool json) {
  int exitCode = ExitDone;
  std::string objects;
  for (const auto& file : files) {
    try {
      const Checked checked = CheckFile(file);
      if (json)
        objects.append(objects.empty() ? "" : ",\n ").append(JsonOf(checked));
      else
        PrintText(checked, files.size() > 1);
      if (!checked.Warnings.empty()) exitCode = std::max(exitCode, ExitDifferent);
    } catch (const CommandFailure& failure) {
      Note(failure.what());
      exitCode = ExitFailed;
    }
  }
  if (json) std::cout << '[' << objects << "]\n";
  return exitCode;
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("check", "Print the warnings about tables");
  const auto files = std::make_shared<std::vector<std::filesystem::path>>();
  AddFilesArgument(*command, "FILE", *files, "tables to check");
  const auto json = AddFormatOption(*command);
  command->footer("Exit status: 0 no warnings, 1 warnings, 2 a file could not be read.");
  command->callback([files, json, &exitCode] { exitCode = CheckFiles(*files, *json); });
}

}  // namespace chanplan
