#include "report/plan_bands.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace chanplan {

double ToWholeHertz(double megahertz) { return std::round(megahertz * 1e6) / 1e6; }

namespace {

std::optional<FrequencyRange> Intersection(const FrequencyRange& a, const FrequencyRange& b) {
  const FrequencyRange common{std::max(a.Low, b.Low), std::min(a.High, b.High)};
  if (common.Low > common.High) return std::nullopt;
  return common;
}

std::optional<FrequencyRange> RangeOf(const SignalStandardRecord& record, double startFrequency) {
  const double channels = static_cast<double>(record.StopChannel) - record.StartChannel;
  const double stopFrequency = startFrequency + channels * record.Spacing;
  if (startFrequency == 0 || std::isnan(stopFrequency)) return std::nullopt;
  const auto [low, high] = std::minmax(startFrequency, stopFrequency);
  const auto visible = Intersection({low, high}, {LowestMegahertz, HighestMegahertz});
  if (!visible) return std::nullopt;
  return FrequencyRange{ToWholeHertz(visible->Low), ToWholeHertz(visible->High)};
}

void AppendBands(std::vector<Band>& bands, const SignalStandardTable& table, int row) {
  const SignalStandardRecord& record = table.Row(row);
  if (const auto range = RangeOf(record, record.UplinkStartFreq))
    bands.push_back({row, LinkDirection::Uplink, *range, {}});
  if (const auto range = RangeOf(record, record.DownlinkStartFreq))
    bands.push_back({row, LinkDirection::Downlink, *range, {}});
}

Lane LaneOf(const SignalStandardTable& table, int standard) {
  Lane lane;
  lane.Standard = standard;
  const int end = GroupEnd(table, standard);
  const bool hasSubbands = end > standard + 1;
  AppendBands(hasSubbands ? lane.OwnBands : lane.Bands, table, standard);
  for (int row = standard + 1; row < end; ++row) AppendBands(lane.Bands, table, row);
  return lane;
}

// Marks in `lane` what it shares with `other`.
void ShareWith(Lane& lane, const Lane& other) {
  bool shares = false;
  for (Band& band : lane.Bands) {
    for (const Band& otherBand : other.Bands) {
      const auto common = Intersection(band.Range, otherBand.Range);
      if (!common) continue;
      // Many standards may share the same: once is enough.
      if (band.Shared.empty() || band.Shared.back() != *common) band.Shared.push_back(*common);
      shares = true;
    }
  }
  if (shares) lane.SharesWith.push_back(other.Standard);
}

}  // namespace

std::vector<FrequencyRange> Merged(std::vector<FrequencyRange> ranges, double gap) {
  std::ranges::sort(ranges, {}, &FrequencyRange::Low);
  std::vector<FrequencyRange> merged;
  for (const FrequencyRange& range : ranges) {
    if (merged.empty() || range.Low - merged.back().High > gap)
      merged.push_back(range);
    else
      merged.back().High = std::max(merged.back().High, range.High);
  }
  return merged;
}

std::vector<Lane> PlanLanes(const SignalStandardTable& table) {
  std::vector<Lane> lanes;
  for (const int standard : StandardIndices(table)) lanes.push_back(LaneOf(table, standard));
  for (Lane& lane : lanes) {
    for (const Lane& other : lanes)
      if (&lane != &other) ShareWith(lane, other);
    for (Band& band : lane.Bands) band.Shared = Merged(std::move(band.Shared));
  }
  return lanes;
}

std::vector<FrequencyRange> SharedRanges(const Lane& one, const Lane& other) {
  std::vector<FrequencyRange> shared;
  for (const Band& band : one.Bands)
    for (const Band& otherBand : other.Bands)
      if (const auto common = Intersection(band.Range, otherBand.Range)) shared.push_back(*common);
  return Merged(std::move(shared));
}

}  // namespace chanplan
