#include "core/table_difference.h"

#include <algorithm>

#include "core/sig_file.h"
#include "core/text_encoding.h"

namespace chanplan {

namespace {

using Lines = std::vector<std::string>;

void AppendLine(Lines& lines, std::string_view bytes) { lines.push_back(Utf8FromWindows1252(bytes)); }

// Appends "PREFIX: FIELD: LEFT -> RIGHT" for every field that differs.
void AppendFieldDifferences(const std::string& prefix, const SignalStandardRecord& left,
                            const SignalStandardRecord& right, Lines& lines) {
  const auto leftTexts = FieldTexts(left);
  const auto rightTexts = FieldTexts(right);
  for (std::size_t field = 0; field < FieldCount; ++field)
    if (leftTexts[field] != rightTexts[field])
      AppendLine(lines, prefix + ": " + std::string(RecordFields[field].Name) + ": " + leftTexts[field] + " -> " +
                            rightTexts[field]);
}

std::string SubbandText(int number, const std::string& standard) {
  return std::string("sub-band ") + SubbandLetter(number) + " of " + standard;
}

void AppendGroupDifferences(const SignalStandardTable& left, int leftHead, const SignalStandardTable& right,
                            int rightHead, Lines& lines) {
  const std::string& name = left.Row(leftHead).Name;
  AppendFieldDifferences("~ " + name, left.Row(leftHead), right.Row(rightHead), lines);
  const int leftCount = GroupEnd(left, leftHead) - leftHead;
  const int rightCount = GroupEnd(right, rightHead) - rightHead;
  for (int number = 1; number < std::max(leftCount, rightCount); ++number) {
    if (number >= rightCount)
      AppendLine(lines, "- " + SubbandText(number, name));
    else if (number >= leftCount)
      AppendLine(lines, "+ " + SubbandText(number, name));
    else
      AppendFieldDifferences("~ " + SubbandText(number, name), left.Row(leftHead + number),
                             right.Row(rightHead + number), lines);
  }
}

}  // namespace

Lines TableDifferences(const SignalStandardTable& left, const SignalStandardTable& right) {
  Lines lines;
  std::vector<int> unpaired = StandardIndices(right);
  int lastPaired = -1;
  bool sameOrder = true;
  for (const int leftHead : StandardIndices(left)) {
    const std::string& name = left.Row(leftHead).Name;
    const auto match = std::ranges::find(unpaired, name, [&](int head) { return right.Row(head).Name; });
    if (match == unpaired.end()) {
      AppendLine(lines, "- " + name);
      continue;
    }
    AppendGroupDifferences(left, leftHead, right, *match, lines);
    sameOrder = sameOrder && *match > lastPaired;
    lastPaired = *match;
    unpaired.erase(match);
  }
  for (const int head : unpaired) AppendLine(lines, "+ " + right.Row(head).Name);
  if (!sameOrder) AppendLine(lines, "= order differs");
  return lines;
}

Lines RowDifferences(const SignalStandardTable& left, const SignalStandardTable& right) {
  Lines lines;
  if (left.Count != right.Count)
    AppendLine(lines, "records: " + std::to_string(left.Count) + " -> " + std::to_string(right.Count));
  for (int index = 0; index < std::min(left.Count, right.Count); ++index)
    AppendFieldDifferences("row " + std::to_string(index + 1) + " (" + left.Row(index).Name + ")", left.Row(index),
                           right.Row(index), lines);
  return lines;
}

}  // namespace chanplan
