// Table files as they are written down in a test.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace chanplan::testing {

inline constexpr std::string_view SigHeader =
    "State\tSubbands\tName\tUplink Start Freq.\tDownlink Stop Freq.\tStart Channel\tStop Channel\tBandwidth\tSpacing\t"
    "Step\r\n";

/// A table file: the header line, then a line for each of `rows`, whose fields stand between "|".
inline std::string SigText(const std::vector<std::string>& rows) {
  std::string text(SigHeader);
  for (std::string row : rows) {
    std::ranges::replace(row, '|', '\t');
    text += row + "\r\n";
  }
  return text;
}

/// Rows of `count` standards without sub-bands, named "S1" and so on.
inline std::vector<std::string> NumberedRows(int count, int first = 1) {
  std::vector<std::string> rows;
  for (int number = first; number < first + count; ++number)
    rows.push_back("2|0|S" + std::to_string(number) + "|890|935|1|124|0.2|0.2|1");
  return rows;
}

}  // namespace chanplan::testing
