// The validation pass: brings sub-bands into line with their standard and lists what looks wrong.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// Runs the pass on `table` and returns the warnings text: per finding one line
/// "Warning:" TAB name TAB message CR LF, empty when there are none.
///
/// Every sub-band row gets its standard's name with "(A)", "(B)", ... behind it and its standard's
/// bandwidth, spacing and step. A second run changes nothing more.
///
/// `listNames` are the standards' names as the list view shows them at this moment, among which
/// duplicates are looked for. While a table is being loaded the list view is still empty.
///
/// The checks of step, spacing and bandwidth look at the last standard that had sub-bands (zeros
/// before the first one), not at the row itself, and are left out while that standard stands at
/// index 1 and its group is open. Both are intended.
std::string ValidateTable(SignalStandardTable& table, std::span<const std::string> listNames);

/// The lines of a warnings text, without their line ends.
std::vector<std::string_view> WarningLines(std::string_view warnings);

}  // namespace chanplan
