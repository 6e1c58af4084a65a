// Where the standards of a table lie in the spectrum, and where they share it.
#pragma once

#include <string_view>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// Sums of decimal numbers differ in the last digits although they mean the same carrier.
double ToWholeHertz(double megahertz);

/// From the first carrier to the last, both included, in MHz rounded to whole hertz.
struct FrequencyRange {
  double Low = 0;
  double High = 0;

  bool operator==(const FrequencyRange&) const = default;
};

/// The spectrum that `ranges` cover: ascending, apart by more than `gap` MHz, narrower gaps covered too.
std::vector<FrequencyRange> Merged(std::vector<FrequencyRange> ranges, double gap = 0);

enum class LinkDirection { Uplink, Downlink };

/// One direction of a row.
struct Band {
  int Row = 0;  ///< table index
  LinkDirection Direction = LinkDirection::Uplink;
  FrequencyRange Range;
  std::vector<FrequencyRange> Shared;  ///< parts that other standards use too; ascending, apart
};

/// A standard with the bands that it uses: those of its sub-bands or, when it has none, its own.
struct Lane {
  int Standard = 0;  ///< table index
  std::vector<Band> Bands;
  std::vector<Band> OwnBands;   ///< of a standard with sub-bands: its own row's
  std::vector<int> SharesWith;  ///< table indices of the standards that it shares carriers with, ascending
};

/// A lane for every standard, in table order. A row's bands reach from the start frequency over
/// (StopChannel - StartChannel) times the spacing, and are cut to `LowestMegahertz` and
/// `HighestMegahertz`; a start frequency of 0 is none. What standards share is told by the bands that
/// they use: the own row of a standard with sub-bands also counts the channels that its numbers jump over.
std::vector<Lane> PlanLanes(const SignalStandardTable& table);

/// What two lanes share; ascending, apart.
std::vector<FrequencyRange> SharedRanges(const Lane& one, const Lane& other);

}  // namespace chanplan
