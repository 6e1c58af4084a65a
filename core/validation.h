// The validation pass: brings sub-bands into line with their standard and finds what looks wrong.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// A finding, which never blocks anything.
struct Warning {
  int Row = 0;               ///< table index; -1 of a duplicate whose standard is not in the table
  std::string Name;          ///< the row's, as it is or will be once sub-bands are in line
  std::string_view Message;  ///< lasts as long as the program

  bool operator==(const Warning&) const = default;
};

/// Gives every sub-band row its standard's name with "(A)", "(B)", ... behind it and its standard's
/// bandwidth, spacing and step. A second run changes nothing more. A `Count` beyond the table's room
/// is cut without a word.
void AlignSubbands(SignalStandardTable& table);

/// What looks wrong, row by row, then duplicate names. It makes no difference whether the sub-bands
/// of `table` are in line already.
///
/// `listNames` are the standards' names as the list view shows them at this moment, among which
/// duplicates are looked for; the warning is about the first of two. While a table is being loaded
/// the list view is still empty.
///
/// The checks of step, spacing and bandwidth look at the last standard that had sub-bands (zeros
/// before the first one), not at the row itself, and are left out while that standard stands at
/// index 1 and its group is open. Both are intended.
///
/// Throws std::out_of_range when `Count` is beyond the table's room.
std::vector<Warning> FindWarnings(const SignalStandardTable& table, std::span<const std::string> listNames);

/// The value that the warning is about, of its row.
Field DoubtfulField(const Warning& warning);

/// "Warning:" TAB name TAB message, in UTF-8.
std::string WarningText(const Warning& warning);

/// The texts of all, each ended by CR LF; empty when there are none.
std::string WarningsText(std::span<const Warning> warnings);

}  // namespace chanplan
