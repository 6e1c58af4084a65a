#include "core/table_edits.h"

#include <algorithm>

namespace chanplan {
namespace {

constexpr int SubbandLimit = MaxRecords - 1;

auto RowAt(SignalStandardTable& table, int index) { return table.Records.begin() + index; }

void RemoveRows(SignalStandardTable& table, int first, int end) {
  const auto freed = std::move(RowAt(table, end), RowAt(table, table.Count), RowAt(table, first));
  std::fill(freed, RowAt(table, table.Count), SignalStandardRecord());
  table.Count = static_cast<std::int16_t>(table.Count - (end - first));
}

}  // namespace

std::vector<SignalStandardRecord> CopyStandards(const SignalStandardTable& table, int first, int last) {
  std::vector<SignalStandardRecord> rows(table.Records.begin() + first, table.Records.begin() + GroupEnd(table, last));
  const std::int64_t promised = std::int64_t{last} + 1 + table.Row(last).Subbands - first;
  rows.resize(std::max(rows.size(), static_cast<std::size_t>(std::clamp<std::int64_t>(promised, 0, MaxRecords))));
  return rows;
}

void DeleteStandards(SignalStandardTable& table, int first, int last) {
  RemoveRows(table, first, GroupEnd(table, last));
}

bool PasteFillsTable(const SignalStandardTable& table, std::span<const SignalStandardRecord> records) {
  return static_cast<int>(records.size()) + table.Count >= MaxRecords;
}

void PasteStandards(SignalStandardTable& table, int at, std::span<const SignalStandardRecord> records) {
  std::vector<SignalStandardRecord> rows(table.Records.begin(), table.Records.begin() + table.Count);
  rows.insert(rows.begin() + at, records.begin(), records.end());
  rows.resize(std::min<std::size_t>(rows.size(), MaxRecords));
  table.Count = static_cast<std::int16_t>(rows.size());
  std::ranges::move(rows, table.Records.begin());
}

void PutLastCountRight(SignalStandardTable& table) {
  const std::vector<int> standards = StandardIndices(table);
  if (standards.empty()) return;
  std::int32_t& subbands = table.Row(standards.back()).Subbands;
  subbands = std::min(subbands, table.Count - standards.back() - 1);
}

bool AppendBlankStandard(SignalStandardTable& table) {
  if (table.Count >= MaxRecords) return false;
  PutLastCountRight(table);
  table.Append({.State = "0", .Name = "[New Standard]"});
  return true;
}

bool AddSubband(SignalStandardTable& table, int standard) {
  if (table.Count >= SubbandLimit) return false;
  PasteStandards(table, GroupEnd(table, standard), {{SignalStandardRecord()}});
  ++table.Row(standard).Subbands;
  return true;
}

void RemoveSubband(SignalStandardTable& table, int standard) {
  if (table.Row(standard).Subbands < 1) return;
  const int end = GroupEnd(table, standard);
  // A damaged count may promise more rows than there are.
  if (end - standard > table.Row(standard).Subbands) RemoveRows(table, end - 1, end);
  --table.Row(standard).Subbands;
}

}  // namespace chanplan
