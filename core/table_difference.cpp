#include "core/table_difference.h"

#include <algorithm>
#include <utility>

#include "core/sig_file.h"
#include "core/text_encoding.h"

namespace chanplan {

namespace {

using Lines = std::vector<std::string>;
using Differences = std::vector<TableDifference>;

// Two standards, by their table indices; -1 where one side has none.
struct Pair {
  int Left = -1;
  int Right = -1;
};

std::vector<Field> DifferingFields(const SignalStandardRecord& left, const SignalStandardRecord& right) {
  const auto leftTexts = FieldTexts(left);
  const auto rightTexts = FieldTexts(right);
  std::vector<Field> fields;
  for (const RecordField& field : RecordFields)
    if (leftTexts[static_cast<std::size_t>(field.Id)] != rightTexts[static_cast<std::size_t>(field.Id)])
      fields.push_back(field.Id);
  return fields;
}

// All that is said in a group but names; sub-bands have theirs from their standard.
std::string TextsButNames(const SignalStandardTable& table, int head) {
  std::string all;
  for (int row = head; row < GroupEnd(table, head); ++row) {
    auto texts = FieldTexts(table.Row(row));
    texts[static_cast<std::size_t>(Field::Name)].clear();
    for (const std::string& text : texts) all += text + '\t';
  }
  return all;
}

std::vector<Pair> PairByName(const SignalStandardTable& left, const SignalStandardTable& right) {
  std::vector<Pair> pairs;
  std::vector<int> unpaired = StandardIndices(right);
  for (const int head : StandardIndices(left)) {
    const auto match =
        std::ranges::find(unpaired, left.Row(head).Name, [&](int other) { return right.Row(other).Name; });
    pairs.push_back({head, match == unpaired.end() ? -1 : *match});
    if (match != unpaired.end()) unpaired.erase(match);
  }
  for (const int head : unpaired) pairs.push_back({-1, head});
  return pairs;
}

void PairRenamed(std::vector<Pair>& pairs, const SignalStandardTable& left, const SignalStandardTable& right) {
  std::vector<std::pair<std::string, Pair*>> added;
  for (Pair& pair : pairs)
    if (pair.Left < 0) added.emplace_back(TextsButNames(right, pair.Right), &pair);
  for (Pair& pair : pairs) {
    if (pair.Right >= 0 || pair.Left < 0) continue;
    const auto match =
        std::ranges::find(added, TextsButNames(left, pair.Left), [](const auto& one) { return one.first; });
    if (match == added.end()) continue;
    pair.Right = std::exchange(match->second->Right, -1);
    added.erase(match);
  }
}

void AppendFields(const SignalStandardTable& left, const SignalStandardTable& right, TableDifference row,
                  Differences& found) {
  for (const Field field : DifferingFields(left.Row(row.Left), right.Row(row.Right))) {
    row.What = field;
    found.push_back(row);
  }
}

void AppendGroup(const SignalStandardTable& left, const SignalStandardTable& right, const Pair& pair,
                 Differences& found) {
  const int leftCount = GroupEnd(left, pair.Left) - pair.Left;
  const int rightCount = GroupEnd(right, pair.Right) - pair.Right;
  for (int number = 0; number < std::max(leftCount, rightCount); ++number) {
    if (number >= rightCount)
      found.push_back({DifferenceKind::OnlyLeft, pair.Left + number, -1, number});
    else if (number >= leftCount)
      found.push_back({DifferenceKind::OnlyRight, -1, pair.Right + number, number});
    else
      AppendFields(left, right, {DifferenceKind::Field, pair.Left + number, pair.Right + number, number}, found);
  }
}

bool SameOrder(const std::vector<Pair>& pairs) {
  int last = -1;
  for (const Pair& pair : pairs)
    if (pair.Left >= 0 && pair.Right >= 0 && std::exchange(last, pair.Right) > pair.Right) return false;
  return true;
}

Differences DifferencesOf(const SignalStandardTable& left, const SignalStandardTable& right,
                          const std::vector<Pair>& pairs) {
  Differences found;
  for (const Pair& pair : pairs) {
    if (pair.Left >= 0 && pair.Right < 0)
      found.push_back({DifferenceKind::OnlyLeft, pair.Left});
    else if (pair.Left < 0 && pair.Right >= 0)
      found.push_back({DifferenceKind::OnlyRight, -1, pair.Right});
    else if (pair.Left >= 0 && left.Row(pair.Left).Name != right.Row(pair.Right).Name)
      found.push_back({DifferenceKind::Renamed, pair.Left, pair.Right});
    else if (pair.Left >= 0)
      AppendGroup(left, right, pair, found);
  }
  if (!SameOrder(pairs)) found.push_back({DifferenceKind::Order});
  return found;
}

std::string FieldChange(const SignalStandardRecord& left, const SignalStandardRecord& right, Field field) {
  const auto index = static_cast<std::size_t>(field);
  return ": " + std::string(FieldOf(field).Name) + ": " + FieldTexts(left)[index] + " -> " + FieldTexts(right)[index];
}

// In Windows-1252, as the tables' texts are.
std::string LineOf(const TableDifference& difference, const SignalStandardTable& left,
                   const SignalStandardTable& right) {
  if (difference.Kind == DifferenceKind::Order) return "= order differs";
  const bool onLeft = difference.Left >= 0;
  const int row = onLeft ? difference.Left : difference.Right;
  std::string name = (onLeft ? left : right).Row(row - difference.Subband).Name;
  if (difference.Subband > 0) name = std::string("sub-band ") + SubbandLetter(difference.Subband) + " of " + name;
  if (difference.Kind == DifferenceKind::OnlyLeft) return "- " + name;
  if (difference.Kind == DifferenceKind::OnlyRight) return "+ " + name;
  return "~ " + name + FieldChange(left.Row(difference.Left), right.Row(difference.Right), difference.What);
}

}  // namespace

Differences FindDifferences(const SignalStandardTable& left, const SignalStandardTable& right) {
  std::vector<Pair> pairs = PairByName(left, right);
  PairRenamed(pairs, left, right);
  return DifferencesOf(left, right, pairs);
}

Lines TableDifferences(const SignalStandardTable& left, const SignalStandardTable& right) {
  Lines lines;
  for (const TableDifference& difference : DifferencesOf(left, right, PairByName(left, right)))
    lines.push_back(Utf8FromWindows1252(LineOf(difference, left, right)));
  return lines;
}

Lines RowDifferences(const SignalStandardTable& left, const SignalStandardTable& right) {
  Lines lines;
  if (left.Count != right.Count)
    lines.push_back("records: " + std::to_string(left.Count) + " -> " + std::to_string(right.Count));
  for (int index = 0; index < std::min(left.Count, right.Count); ++index)
    for (const Field field : DifferingFields(left.Row(index), right.Row(index)))
      lines.push_back(Utf8FromWindows1252("row " + std::to_string(index + 1) + " (" + left.Row(index).Name + ")" +
                                          FieldChange(left.Row(index), right.Row(index), field)));
  return lines;
}

}  // namespace chanplan
