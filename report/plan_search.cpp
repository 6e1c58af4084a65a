#include "report/plan_search.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/number_picture.h"
#include "report/plan_bands.h"

namespace chanplan {
namespace {

constexpr std::string_view Blanks = " \t\xA0";

// The accented capitals of the code page stand 32 before their small letters, as those of ASCII do.
char SmallLetter(char letter) {
  const auto code = static_cast<unsigned char>(letter);
  const bool capital = (code >= 'A' && code <= 'Z') || (code >= 0xC0 && code <= 0xDE && code != 0xD7);
  return capital ? static_cast<char>(code + 32) : letter;
}

std::string SmallLetters(std::string_view text) {
  std::string small(text);
  std::ranges::transform(small, small.begin(), SmallLetter);
  return small;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(Blanks);
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

// The whole text as a number; nothing when it is none.
template <typename Number>
std::optional<Number> NumberIn(std::string_view text) {
  std::string digits(Trimmed(text));
  std::ranges::replace(digits, ',', '.');
  if (digits.find_first_not_of("0123456789.") != digits.npos) return std::nullopt;
  Number number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

std::optional<double> MegahertzIn(std::string_view text) {
  const std::optional<double> number = NumberIn<double>(text);
  return number ? std::optional(ToWholeHertz(*number)) : std::nullopt;
}

// The rows whose ranges count for the standard at `head`.
std::pair<int, int> UsedRows(const SignalStandardTable& table, int head) {
  const int end = GroupEnd(table, head);
  return {end > head + 1 ? head + 1 : head, end};
}

bool HasChannel(const SignalStandardRecord& row, int channel) {
  const auto [low, high] = std::minmax(row.StartChannel, row.StopChannel);
  return low <= channel && channel <= high;
}

bool IsFrequency(Field field) { return field == Field::UplinkStartFreq || field == Field::DownlinkStartFreq; }

double FrequencyOf(const SignalStandardRecord& row, double start, int channel) {
  return ToWholeHertz(start + (static_cast<double>(channel) - row.StartChannel) * row.Spacing);
}

std::string ChannelText(const SignalStandardRecord& row, int channel) {
  std::string text = ", channel " + std::to_string(channel);
  std::string frequencies;
  for (const double start : {row.UplinkStartFreq, row.DownlinkStartFreq})
    if (start != 0)
      frequencies += (frequencies.empty() ? ": " : " and ") + ShortestDecimal(FrequencyOf(row, start, channel));
  return text + (frequencies.empty() ? "" : frequencies + " MHz");
}

// The channel on the frequency; nothing between two of them.
std::string CarrierText(const SignalStandardRecord& row, double start, double megahertz) {
  if (row.Spacing == 0) return {};
  const auto [low, high] = std::minmax(row.StartChannel, row.StopChannel);
  const double nearest = row.StartChannel + std::round((megahertz - start) / row.Spacing);
  const int channel = static_cast<int>(std::clamp<double>(nearest, low, high));
  if (FrequencyOf(row, start, channel) != megahertz) return ", between two channels";
  return ", channel " + std::to_string(channel);
}

}  // namespace

PlanQuery ReadPlanQuery(std::string_view text) {
  PlanQuery query;
  query.Name = SmallLetters(Trimmed(text));
  const std::string_view all = query.Name;
  for (const std::string_view word : {"channel", "ch.", "ch"}) {
    if (!all.starts_with(word)) continue;
    query.Channel = NumberIn<int>(all.substr(word.size()));
    return query;
  }
  const bool megahertz = all.ends_with("mhz");
  query.Megahertz = MegahertzIn(megahertz ? all.substr(0, all.size() - 3) : all);
  if (!megahertz) query.Channel = NumberIn<int>(all);
  return query;
}

std::vector<PlanPlace> FindInPlan(const SignalStandardTable& table, const PlanQuery& query) {
  std::vector<PlanPlace> places;
  if (query.Name.empty()) return places;
  for (const Lane& lane : PlanLanes(table)) {
    if (SmallLetters(table.Row(lane.Standard).Name).find(query.Name) != std::string::npos)
      places.push_back({lane.Standard, Field::Name});
    for (const Band& band : lane.Bands)
      if (query.Megahertz && band.Range.Low <= *query.Megahertz && *query.Megahertz <= band.Range.High)
        places.push_back(
            {band.Row, band.Direction == LinkDirection::Uplink ? Field::UplinkStartFreq : Field::DownlinkStartFreq});
    const auto [first, end] = UsedRows(table, lane.Standard);
    for (int row = first; query.Channel && row < end; ++row)
      if (HasChannel(table.Row(row), *query.Channel)) places.push_back({row, Field::StartChannel});
  }
  std::ranges::sort(places);
  return places;
}

std::string PlaceText(const SignalStandardTable& table, const PlanQuery& query, const PlanPlace& place) {
  const SignalStandardRecord& row = table.Row(place.Row);
  const std::vector<int> standards = StandardIndices(table);
  const int head = *std::prev(std::ranges::upper_bound(standards, place.Row));
  std::string text = table.Row(head).Name;
  if (place.Row > head) text += std::string(", Band ") + SubbandLetter(place.Row - head);
  if (place.What == Field::StartChannel && query.Channel) return text + ChannelText(row, *query.Channel);
  if (!IsFrequency(place.What) || !query.Megahertz) return text;
  const bool uplink = place.What == Field::UplinkStartFreq;
  return text + (uplink ? ", uplink" : ", downlink") +
         CarrierText(row, uplink ? row.UplinkStartFreq : row.DownlinkStartFreq, *query.Megahertz);
}

}  // namespace chanplan
