// Merging one table into another, standard by standard.
#pragma once

#include <string_view>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The part of a name before its first "(", so that a sub-band has its standard's base name. A name
/// that begins with "(" is its own base name.
std::string_view BaseName(std::string_view name);

struct MergeOutcome {
  SignalStandardTable Table;
  bool Truncated = false;  ///< the table is full; also when nothing was lost by that
  int Dropped = 0;         ///< rows that found no room
  int Nameless = 0;        ///< rows of both tables that were left out as they have no name
};

/// Merges `source` into `base`. Where base names match (exactly), the base's group wins, or with
/// `uploadReplaceMatching` the source's group takes its place. The rest of the source is appended.
/// Rows without a name are never copied. Does not validate.
MergeOutcome MergeTables(const SignalStandardTable& base, const SignalStandardTable& source,
                         bool uploadReplaceMatching);

/// The same for tables whose last group may have been cut short: as rows will follow it, it gets the
/// count of the sub-bands that it has.
MergeOutcome MergeWholeGroups(SignalStandardTable base, SignalStandardTable source, bool uploadReplaceMatching);

/// What is said, under the title "Table Merge", when a merge was truncated.
inline constexpr std::string_view MergeTruncatedText =
    "There were too many records to merge tables.\r\n"
    "The Merged table has been truncated at 200 records.";

}  // namespace chanplan
