#include <array>
#include <iostream>
#include <string>
#include <utility>

#include "console/command.h"
#include "core/record_fields.h"
#include "core/sig_file.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

// What standards and sub-bands both have, with the names of their JSON values.
constexpr std::array<std::pair<Field, std::string_view>, 7> PlanFields = {{
    {Field::UplinkStartFreq, "uplinkStartFreq"},
    {Field::DownlinkStartFreq, "downlinkStartFreq"},
    {Field::StartChannel, "startChannel"},
    {Field::StopChannel, "stopChannel"},
    {Field::Bandwidth, "bandwidth"},
    {Field::Spacing, "spacing"},
    {Field::Step, "step"},
}};

std::string FieldText(const SignalStandardRecord& record, Field field) {
  return FieldTexts(record)[static_cast<std::size_t>(field)];
}

std::string Line(const SignalStandardRecord& record, const std::string& number, const std::string& band) {
  std::string line = number + '\t' + band + '\t' + PrintedText(record.Name);
  const bool isStandard = band.empty();
  line.append("\t").append(isStandard ? ModulationText(record) : "");
  line.append("\t").append(isStandard && ActiveDisplayMode(record) ? "yes" : isStandard ? "no" : "");
  for (const auto& [field, name] : PlanFields) line.append("\t").append(FieldText(record, field));
  return line + '\n';
}

std::string TableText(const SignalStandardTable& table) {
  std::string text = "Number\tSub-band\tName\tModulation\tActive Display Mode";
  for (const auto& [field, name] : PlanFields) text.append("\t").append(FieldOf(field).Name);
  text += '\n';
  int number = 0;
  for (const int index : StandardIndices(table)) {
    ++number;
    for (int row = index; row < GroupEnd(table, index); ++row)
      text += Line(table.Row(row), std::to_string(number),
                   row == index ? "" : Utf8FromWindows1252(std::string(1, SubbandLetter(row - index))));
  }
  return text;
}

std::string PlanJson(const SignalStandardRecord& record) {
  std::string json;
  for (const auto& [field, name] : PlanFields)
    json.append(json.empty() ? "" : ", ").append(JsonString(name) + ": " + FieldText(record, field));
  return json;
}

std::string StandardJson(const SignalStandardTable& table, int index) {
  const SignalStandardRecord& standard = table.Row(index);
  std::string bands;
  for (int row = index + 1; row < GroupEnd(table, index); ++row)
    bands.append(bands.empty() ? "" : ",\n    ").append("{" + PlanJson(table.Row(row)) + "}");
  return "{\"name\": " + JsonString(Utf8FromWindows1252(standard.Name)) +
         ", \"modulation\": " + JsonString(ModulationText(standard)) +
         ", \"activeDisplayMode\": " + (ActiveDisplayMode(standard) ? "true" : "false") +
         ", \"state\": " + std::to_string(StateValue(standard)) + ", " + PlanJson(standard) + ", \"subbands\": [" +
         bands + "]}";
}

std::string JsonText(const SignalStandardTable& table) {
  std::string standards;
  for (const int index : StandardIndices(table))
    standards.append(standards.empty() ? "" : ",\n ").append(StandardJson(table, index));
  return "[" + standards + "]\n";
}

}  // namespace

void AddListCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("list", "Print a table's standards and sub-bands");
  const auto file = std::make_shared<std::filesystem::path>();
  AddFileArgument(*command, "FILE", *file, "the table");
  const auto json = AddFormatOption(*command, "table");
  command->footer(
      "A line per record with its values between TABs, in MHz and channels; the first line names them.\n"
      "Exit status: 0 all was listed, 2 the file could not be read, 3 it has more than 200 rows.");
  command->callback([file, json, &exitCode] {
    const OpenedTable opened = OpenWithNotes(*file);
    std::cout << (*json ? JsonText(opened.Table) : TableText(opened.Table));
    exitCode = ExitCodeOf(opened);
  });
}

}  // namespace chanplan
