#include "core/signal_standard_table.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "core/lenient_number.h"

namespace chanplan {

std::int64_t StateValue(const SignalStandardRecord& record) {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  const double value = std::nearbyint(LeadingNumber(record.State));
  if (value >= limit) return std::numeric_limits<std::int64_t>::max();
  if (value < -limit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

ModulationType Modulation(const SignalStandardRecord& record) {
  return static_cast<ModulationType>(StateValue(record) & 3);
}

std::string_view ModulationText(const SignalStandardRecord& record) {
  return ModulationTexts[static_cast<std::size_t>(Modulation(record))];
}

bool ActiveDisplayMode(const SignalStandardRecord& record) { return (StateValue(record) & ActiveDisplayBit) != 0; }

void SignalStandardTable::Append(SignalStandardRecord record) {
  Row(Count) = std::move(record);
  ++Count;
}

bool SignalStandardTable::operator==(const SignalStandardTable& other) const {
  if (Count != other.Count) return false;
  for (int index = 0; index < Count; ++index)
    if (Row(index) != other.Row(index)) return false;
  return true;
}

int GroupEnd(const SignalStandardTable& table, int index) {
  const auto subbands = std::max<std::int64_t>(table.Row(index).Subbands, 0);
  return static_cast<int>(std::min<std::int64_t>(index + 1 + subbands, table.Count));
}

std::vector<int> StandardIndices(const SignalStandardTable& table) {
  std::vector<int> indices;
  for (int index = 0; index < table.Count; index = GroupEnd(table, index)) indices.push_back(index);
  return indices;
}

std::vector<std::string> ListNames(const SignalStandardTable& table) {
  std::vector<std::string> names;
  for (const int index : StandardIndices(table)) names.push_back(table.Row(index).Name);
  return names;
}

char SubbandLetter(int number) {
  constexpr int first = 'A';
  constexpr int letters = 256 - first;
  return static_cast<char>(first + (number - 1) % letters);
}

void GetTable(const SignalStandardTable& table, PassedRows& rows) {
  rows.assign(MaxRecords, {});
  for (int index = 0; index < table.Count; ++index) rows.at(static_cast<std::size_t>(index)) = table.Row(index);
}

void SetTable(const PassedRows& rows, SignalStandardTable& table) {
  const std::size_t copied = std::min(rows.size(), table.Records.size());
  std::size_t lastNamed = 0;
  for (std::size_t index = 0; index < copied; ++index) {
    table.Records[index] = rows[index];
    if (!rows[index].Name.empty()) lastNamed = index;
  }
  table.Count = static_cast<std::int16_t>(lastNamed + 1);
}

}  // namespace chanplan
