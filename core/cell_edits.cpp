#include "core/cell_edits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "core/lenient_number.h"
#include "core/table_edits.h"

namespace chanplan {
namespace {

constexpr int ModulationBits = 3;

std::optional<double> WholeTextAsNumber(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(blanks) + 1 - first);
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

CellOutcome StoreNumber(SignalStandardRecord& record, Field field, double value) {
  const auto store = ByType{[&](double& decimal) {
                              decimal = value;
                              return CellOutcome::Stored;
                            },
                            [&](std::int32_t& integer) {
                              const auto rounded = RoundToInteger(value);
                              if (rounded) integer = *rounded;
                              return rounded ? CellOutcome::Stored : CellOutcome::OutOfRange;
                            },
                            [](std::string&) { return CellOutcome::NotANumber; }};
  return VisitField(record, FieldOf(field), store);
}

}  // namespace

CellOutcome StoreDetail(SignalStandardTable& table, int standard, Field field, std::string_view text) {
  SignalStandardRecord& record = table.Row(standard);
  if (field != Field::Name) return StoreNumber(record, field, LeadingNumber(text));
  record.Name = text;
  return CellOutcome::Stored;
}

CellOutcome StoreBand(SignalStandardTable& table, int standard, int number, Field field, std::string_view text) {
  const auto value = WholeTextAsNumber(text);
  return value ? StoreNumber(table.Row(standard + number), field, *value) : CellOutcome::NotANumber;
}

CountOutcome SetSubbandCount(SignalStandardTable& table, int standard, std::int32_t count) {
  const int wanted = std::max(count, 0);
  std::int32_t& subbands = table.Row(standard).Subbands;
  subbands = GroupEnd(table, standard) - standard - 1;
  while (subbands > wanted) RemoveSubband(table, standard);
  while (subbands < wanted)
    if (!AddSubband(table, standard)) return CountOutcome::TableFull;
  return CountOutcome::Set;
}

int GetStateCode(int modulation, int displayMode) {
  return std::max(modulation, 0) + static_cast<int>(ActiveDisplayBit) * std::max(displayMode, 0);
}

void SetStateCode(SignalStandardRecord& standard, int code) {
  const std::int64_t otherBits = StateValue(standard) & ~(ActiveDisplayBit | ModulationBits);
  standard.State = std::to_string(otherBits | code);
}

}  // namespace chanplan
