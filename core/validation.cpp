#include "core/validation.h"

#include <algorithm>
#include <array>

#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr int UncheckedHead = 1;

bool OutOfRange(double frequency) { return frequency < LowestMegahertz || frequency > HighestMegahertz; }

struct Check {
  bool (*Fails)(const SignalStandardRecord&);
  std::string_view Message;
  Field Doubted;
};

// "Stop frequency" names the downlink start frequency.
constexpr std::array<Check, 5> RowChecks = {{
    {[](const auto& row) { return OutOfRange(row.UplinkStartFreq); }, "Start frequency appears out of range.",
     Field::UplinkStartFreq},
    {[](const auto& row) { return OutOfRange(row.DownlinkStartFreq); }, "Stop frequency appears out of range.",
     Field::DownlinkStartFreq},
    {[](const auto& row) { return row.StartChannel > row.StopChannel; }, "Stop channel is less than start channel.",
     Field::StopChannel},
    {[](const auto& row) { return row.StartChannel < 0; }, "Start channel is less than zero.", Field::StartChannel},
    {[](const auto& row) { return row.StopChannel < 0; }, "Stop channel is less than zero.", Field::StopChannel},
}};

constexpr std::array<Check, 3> GroupChecks = {{
    {[](const auto& group) { return group.Step < 1; }, "Step size may be out of range.", Field::Step},
    {[](const auto& group) { return group.Spacing <= 0; }, "Spacing may be out of range.", Field::Spacing},
    {[](const auto& group) { return group.Bandwidth <= 0; }, "Bandwidth may be out of range.", Field::Bandwidth},
}};

// Where a row stands among the groups. A standard within an open group starts its own.
struct RowPlace {
  int Head = -1;         // the last standard so far that has sub-bands; -1 = there was none
  bool InGroup = false;  // of that standard, be it the standard itself
  int Subband = 0;       // 1 = its first; 0 = the row is a standard
};

std::vector<RowPlace> PlacesOf(const SignalStandardTable& table) {
  std::vector<RowPlace> places;
  places.reserve(MaxRecords);
  RowPlace place;
  int expected = 0;  // sub-bands still to come
  for (int index = 0; index < table.Count; ++index) {
    const std::int32_t subbands = table.Row(index).Subbands;
    if (subbands > 0) {
      place = {index, true, 0};
      expected = subbands;
    } else if (expected > 0) {
      --expected;
      ++place.Subband;
    } else {
      place.InGroup = false;
      place.Subband = 0;
    }
    places.push_back(place);
  }
  return places;
}

std::string SubbandName(const SignalStandardRecord& standard, int number) {
  return standard.Name + '(' + SubbandLetter(number) + ')';
}

void AppendFailures(std::vector<Warning>& warnings, int row, std::span<const Check> checks,
                    const SignalStandardRecord& checked) {
  for (const Check& check : checks)
    if (check.Fails(checked)) warnings.push_back({row, {}, check.Message});
}

void AppendDuplicates(std::vector<Warning>& warnings, const SignalStandardTable& table,
                      std::span<const std::string> names) {
  const std::vector<int> standards = StandardIndices(table);
  for (std::size_t listed = 0; listed < names.size(); ++listed)
    if (std::ranges::find(names.subspan(listed + 1), names[listed]) != names.end())
      warnings.push_back(
          {listed < standards.size() ? standards[listed] : -1, names[listed], "Duplicate Signal Standard name."});
}

}  // namespace

void AlignSubbands(SignalStandardTable& table) {
  table.Count = std::min<std::int16_t>(table.Count, MaxRecords);
  int index = 0;
  for (const RowPlace& place : PlacesOf(table)) {
    SignalStandardRecord& row = table.Row(index++);
    if (place.Subband == 0) continue;
    const SignalStandardRecord& standard = table.Row(place.Head);
    row.Name = SubbandName(standard, place.Subband);
    row.Bandwidth = standard.Bandwidth;
    row.Spacing = standard.Spacing;
    row.Step = standard.Step;
  }
}

std::vector<Warning> FindWarnings(const SignalStandardTable& table, std::span<const std::string> listNames) {
  std::vector<Warning> warnings;
  const SignalStandardRecord none;
  int index = 0;
  for (const RowPlace& place : PlacesOf(table)) {
    const SignalStandardRecord& row = table.Row(index);
    const SignalStandardRecord& group = place.Head < 0 ? none : table.Row(place.Head);
    const std::size_t found = warnings.size();
    AppendFailures(warnings, index, RowChecks, row);
    if (!place.InGroup || place.Head != UncheckedHead) AppendFailures(warnings, index, GroupChecks, group);
    for (Warning& warning : std::span(warnings).subspan(found))
      warning.Name = place.Subband > 0 ? SubbandName(group, place.Subband) : row.Name;
    ++index;
  }
  AppendDuplicates(warnings, table, listNames);
  return warnings;
}

Field DoubtfulField(const Warning& warning) {
  for (const std::span<const Check> checks : {std::span<const Check>(RowChecks), std::span<const Check>(GroupChecks)})
    for (const Check& check : checks)
      if (check.Message == warning.Message) return check.Doubted;
  return Field::Name;  // of a duplicate
}

std::string WarningText(const Warning& warning) {
  return "Warning:\t" + Utf8FromWindows1252(warning.Name) + "\t" + std::string(warning.Message);
}

std::string WarningsText(std::span<const Warning> warnings) {
  std::string text;
  for (const Warning& warning : warnings) text += WarningText(warning) + "\r\n";
  return text;
}

}  // namespace chanplan
