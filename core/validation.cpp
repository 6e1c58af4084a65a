#include "core/validation.h"

#include <algorithm>
#include <array>

namespace chanplan {
namespace {

constexpr double LowestFrequency = 0;      // MHz
constexpr double HighestFrequency = 9000;  // MHz
constexpr int UncheckedGroupIndex = 1;

bool OutOfRange(double frequency) { return frequency < LowestFrequency || frequency > HighestFrequency; }

struct Check {
  bool (*Fails)(const SignalStandardRecord&);
  std::string_view Message;
};

// "Stop frequency" names the downlink start frequency.
constexpr std::array<Check, 5> RowChecks = {{
    {[](const auto& row) { return OutOfRange(row.UplinkStartFreq); }, "Start frequency appears out of range."},
    {[](const auto& row) { return OutOfRange(row.DownlinkStartFreq); }, "Stop frequency appears out of range."},
    {[](const auto& row) { return row.StartChannel > row.StopChannel; }, "Stop channel is less than start channel."},
    {[](const auto& row) { return row.StartChannel < 0; }, "Start channel is less than zero."},
    {[](const auto& row) { return row.StopChannel < 0; }, "Stop channel is less than zero."},
}};

constexpr std::array<Check, 3> GroupChecks = {{
    {[](const auto& group) { return group.Step < 1; }, "Step size may be out of range."},
    {[](const auto& group) { return group.Spacing <= 0; }, "Spacing may be out of range."},
    {[](const auto& group) { return group.Bandwidth <= 0; }, "Bandwidth may be out of range."},
}};

void AppendWarning(std::string& warnings, std::string_view name, std::string_view message) {
  warnings.append("Warning:\t").append(name).append("\t").append(message).append("\r\n");
}

void AppendFailures(std::string& warnings, std::string_view name, std::span<const Check> checks,
                    const SignalStandardRecord& checked) {
  for (const Check& check : checks)
    if (check.Fails(checked)) AppendWarning(warnings, name, check.Message);
}

void AppendDuplicates(std::string& warnings, std::span<const std::string> names) {
  for (std::size_t row = 0; row < names.size(); ++row)
    if (std::ranges::find(names.subspan(row + 1), names[row]) != names.end())
      AppendWarning(warnings, names[row], "Duplicate Signal Standard name.");
}

}  // namespace

std::string ValidateTable(SignalStandardTable& table, std::span<const std::string> listNames) {
  table.Count = std::min<std::int16_t>(table.Count, MaxRecords);
  std::string warnings;
  SignalStandardRecord group;
  int groupIndex = -1;
  int subbandsExpected = 0;
  int subbandNumber = 0;
  for (int index = 0; index < table.Count; ++index) {
    SignalStandardRecord& row = table.Row(index);
    if (row.Subbands > 0) {
      group = row;
      groupIndex = index;
      subbandsExpected = row.Subbands;
      subbandNumber = 0;
    } else if (subbandsExpected == 0) {
      groupIndex = -1;
    } else {
      --subbandsExpected;
      row.Name = group.Name + '(' + SubbandLetter(++subbandNumber) + ')';
      row.Bandwidth = group.Bandwidth;
      row.Spacing = group.Spacing;
      row.Step = group.Step;
    }
    AppendFailures(warnings, row.Name, RowChecks, row);
    if (groupIndex != UncheckedGroupIndex) AppendFailures(warnings, row.Name, GroupChecks, group);
  }
  AppendDuplicates(warnings, listNames);
  return warnings;
}

std::vector<std::string_view> WarningLines(std::string_view warnings) {
  constexpr std::string_view lineEnd = "\r\n";
  std::vector<std::string_view> lines;
  for (std::size_t end; (end = warnings.find(lineEnd)) != std::string_view::npos;) {
    lines.push_back(warnings.substr(0, end));
    warnings.remove_prefix(end + lineEnd.size());
  }
  return lines;
}

}  // namespace chanplan
