// Which rows of a plan have a name, hold a frequency or have a channel.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// What is looked for: whatever of it a row has.
struct PlanQuery {
  std::string Name;                 ///< a part of a standard's name, in small letters (Windows-1252); empty = none
  std::optional<double> Megahertz;  ///< rounded to whole hertz
  std::optional<int> Channel;
};

/// A text as people write it (Windows-1252): "935.2" is a name or a frequency, "700" may be a channel, too;
/// "935.2 MHz" and "channel 700" say which. The decimal separator may be a comma.
PlanQuery ReadPlanQuery(std::string_view text);

/// A place in a table.
struct PlanPlace {
  int Row = 0;  ///< table index
  /// `Name`, `UplinkStartFreq` or `DownlinkStartFreq` of the range that holds the frequency, `StartChannel`.
  Field What = Field::Name;

  auto operator<=>(const PlanPlace&) const = default;
};

/// The places that answer `query`, in the order of the table's rows. Frequencies and channels are those that
/// a standard uses: of one with sub-bands, its sub-bands'.
std::vector<PlanPlace> FindInPlan(const SignalStandardTable& table, const PlanQuery& query);

/// What the place has to do with the query (Windows-1252), such as "GSM 900, uplink, channel 12" or
/// "GSM 900, Band A, channel 700: 747.2 and 777.2 MHz".
std::string PlaceText(const SignalStandardTable& table, const PlanQuery& query, const PlanPlace& place);

}  // namespace chanplan
