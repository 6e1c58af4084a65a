#include "report/plan_bands.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {

inline void PrintTo(const FrequencyRange& range, std::ostream* output) { *output << range.Low << " to " << range.High; }

namespace {

using testing::TableOf;

using Ranges = std::vector<FrequencyRange>;

constexpr auto Uplink = LinkDirection::Uplink;
constexpr auto Downlink = LinkDirection::Downlink;

// `channels` channels behind the first, 0.2 MHz apart.
SignalStandardRecord Standard(double uplink, double downlink, int channels, int subbands = 0) {
  return {"2", subbands, "S", uplink, downlink, 100, 100 + channels, 0.2, 0.2, 1};
}

Ranges RangesIn(const std::vector<Band>& bands, LinkDirection direction) {
  Ranges ranges;
  for (const Band& band : bands)
    if (band.Direction == direction) ranges.push_back(band.Range);
  return ranges;
}

Ranges RangesOf(const Lane& lane, LinkDirection direction) { return RangesIn(lane.Bands, direction); }

Ranges UplinksOf(const SignalStandardRecord& record) { return RangesOf(PlanLanes(TableOf({record})).at(0), Uplink); }

TEST(PlanLanes, AreAsManyAsStandards) {
  EXPECT_TRUE(PlanLanes({}).empty());
  const auto lanes = PlanLanes(TableOf({Standard(900, 950, 10, 1), Standard(900, 950, 10), Standard(1800, 1900, 10)}));
  ASSERT_EQ(lanes.size(), 2u);
  EXPECT_EQ(lanes[0].Standard, 0);
  EXPECT_EQ(lanes[1].Standard, 2);
}

TEST(PlanLanes, ReachFromTheFirstCarrierToTheLast) {
  const auto lanes = PlanLanes(TableOf({{"2", 0, "P-GSM 900", 890.2, 935.2, 1, 124, 0.2, 0.2, 1}}));
  EXPECT_EQ(RangesOf(lanes[0], Uplink), (Ranges{{890.2, 914.8}}));
  EXPECT_EQ(RangesOf(lanes[0], Downlink), (Ranges{{935.2, 959.8}}));
}

TEST(PlanLanes, UseTheSubbandsOfTheirStandard) {
  const auto lanes = PlanLanes(
      TableOf({Standard(890, 935, 1023, 2), Standard(890, 935, 124), Standard(880.2, 925.2, 48), Standard(1, 2, 5)}));
  ASSERT_EQ(lanes.size(), 2u);
  EXPECT_EQ(RangesOf(lanes[0], Uplink), (Ranges{{890, 914.8}, {880.2, 889.8}}));
  EXPECT_EQ(lanes[0].Bands[0].Row, 1);
  EXPECT_EQ(lanes[0].Bands[3].Row, 2);
}

TEST(PlanLanes, KeepTheOwnBandsOfAStandardWithSubbandsApart) {
  const auto lanes = PlanLanes(TableOf({Standard(890, 935, 1023, 1), Standard(880.2, 925.2, 48), Standard(890, 935, 10),
                                        Standard(0, 9999, 10, 1), Standard(890, 935, 10)}));
  ASSERT_EQ(lanes.size(), 3u);
  EXPECT_EQ(RangesIn(lanes[0].OwnBands, Uplink), (Ranges{{890, 1094.6}}));
  EXPECT_EQ(RangesIn(lanes[0].OwnBands, Downlink), (Ranges{{935, 1139.6}}));
  EXPECT_EQ(lanes[0].OwnBands[0].Row, 0);
  EXPECT_TRUE(lanes[1].OwnBands.empty());
  EXPECT_TRUE(lanes[2].OwnBands.empty()) << "the own row has no frequency that is looked at";
  EXPECT_FALSE(lanes[2].Bands.empty());
}

TEST(PlanLanes, StopAtTheTablesEnd) {
  for (const int subbands : {7, 200, std::numeric_limits<int>::max()}) {
    const auto lanes = PlanLanes(TableOf({Standard(890, 935, 10, subbands), Standard(900, 945, 10)}));
    ASSERT_EQ(lanes.size(), 1u);
    EXPECT_EQ(RangesOf(lanes[0], Uplink), (Ranges{{900, 902}}));
    EXPECT_EQ(RangesIn(lanes[0].OwnBands, Uplink), (Ranges{{890, 892}}));
  }
  // A count that nothing follows leaves the standard's own bands.
  EXPECT_EQ(UplinksOf(Standard(890, 935, 10, 7)), (Ranges{{890, 892}}));
  EXPECT_EQ(UplinksOf(Standard(890, 935, 10, -7)), (Ranges{{890, 892}}));
}

TEST(PlanLanes, KeepToTheSpectrumThatIsLookedAt) {
  constexpr int largest = std::numeric_limits<int>::max();
  constexpr int smallest = std::numeric_limits<int>::min();
  constexpr double infinite = std::numeric_limits<double>::infinity();
  constexpr double huge = std::numeric_limits<double>::max();
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    const char* Fact;
    double Start;
    int StartChannel;
    int StopChannel;
    double Spacing;
    Ranges Expected;
  };
  for (const auto& [fact, start, startChannel, stopChannel, spacing, expected] : {
           Case{"no start frequency", 0, 0, 100, 0.2, {}},
           Case{"one carrier", 900, 5, 5, 0.2, {{900, 900}}},
           Case{"no spacing", 900, 0, 100, 0, {{900, 900}}},
           Case{"channels the wrong way round", 900, 100, 0, 0.5, {{850, 900}}},
           Case{"spacing below zero", 900, 0, 100, -0.5, {{850, 900}}},
           Case{"beyond the upper end", 8990, 0, 100, 0.5, {{8990, 9000}}},
           Case{"beyond the lower end", -10, 0, 100, 0.5, {{0, 40}}},
           Case{"beyond both ends", -10, 0, largest, 1e300, {{0, 9000}}},
           Case{"all below", -500, 0, 100, 0.5, {}},
           Case{"all above", 9000.5, 0, 100, 0.5, {}},
           Case{"on the upper end", 9000, 0, 100, 0.5, {{9000, 9000}}},
           Case{"channels of all 32 bits", 4000, smallest, largest, 1e-6, {{4000, 8294.967295}}},
           Case{"the largest numbers", huge, smallest, largest, huge, {}},
           Case{"the smallest numbers", -huge, largest, smallest, huge, {}},
           Case{"infinite start", infinite, 0, 100, 0.5, {}},
           Case{"infinite spacing", 900, 0, 100, infinite, {{900, 9000}}},
           Case{"infinite spacing of one carrier", 900, 5, 5, infinite, {}},
           Case{"start that is no number", notANumber, 0, 100, 0.5, {}},
           Case{"spacing that is no number", 900, 0, 100, notANumber, {}},
           Case{"less than a hertz", 900.0000001, 0, 1, 1e-9, {{900, 900}}},
       })
    EXPECT_EQ(UplinksOf({"2", 0, "S", start, 0, startChannel, stopChannel, 0.2, spacing, 1}), expected) << fact;
}

struct SharingCase {
  const char* Fact;
  SignalStandardRecord Other;
  Ranges OfUplink;
  Ranges OfDownlink;
};

TEST(PlanLanes, ShareCarriersWithOtherStandards) {
  const SignalStandardRecord standard = Standard(900, 950, 100);  // to 920, to 970
  for (const auto& [fact, other, ofUplink, ofDownlink] : {
           SharingCase{"nothing", Standard(800, 1000, 100), {}, {}},
           SharingCase{"the same bands", standard, {{900, 920}}, {{950, 970}}},
           SharingCase{"the upper part", Standard(910, 0, 100), {{910, 920}}, {}},
           SharingCase{"the lower part", Standard(890, 0, 100), {{900, 910}}, {}},
           SharingCase{"a part within", Standard(905, 0, 10), {{905, 907}}, {}},
           SharingCase{"one carrier at the end", Standard(920, 0, 10), {{920, 920}}, {}},
           SharingCase{"none a channel further", Standard(920.2, 0, 10), {}, {}},
           SharingCase{"uplink with downlink", Standard(0, 915, 200), {{915, 920}}, {{950, 955}}},
           SharingCase{"the downlink alone", Standard(0, 960, 5), {}, {{960, 961}}},
       }) {
    const auto lanes = PlanLanes(TableOf({standard, other}));
    EXPECT_EQ(lanes[0].Bands[0].Shared, ofUplink) << fact;
    EXPECT_EQ(lanes[0].Bands[1].Shared, ofDownlink) << fact;
    const bool shares = !ofUplink.empty() || !ofDownlink.empty();
    EXPECT_EQ(lanes[0].SharesWith, shares ? std::vector<int>{1} : std::vector<int>{}) << fact;
    EXPECT_EQ(lanes[1].SharesWith, shares ? std::vector<int>{0} : std::vector<int>{}) << fact;
  }
}

TEST(PlanLanes, ShareNothingWithThemselves) {
  const auto lanes = PlanLanes(TableOf({Standard(900, 910, 100, 2), Standard(900, 910, 100), Standard(905, 915, 100)}));
  ASSERT_EQ(lanes.size(), 1u);
  for (const Band& band : lanes[0].Bands) EXPECT_EQ(band.Shared, Ranges());
  EXPECT_TRUE(lanes[0].SharesWith.empty());
}

TEST(PlanLanes, ShareWhatTheirSubbandsShare) {
  const SignalStandardRecord jumping = Standard(890, 935, 1023, 2);  // its own row reaches to 1094.6 and 1139.6
  const auto lanes =
      PlanLanes(TableOf({jumping, Standard(890, 935, 124), Standard(880.2, 925.2, 48), Standard(1000, 1100, 50),
                         Standard(885, 0, 10), jumping, Standard(700, 750, 10), Standard(720, 770, 10)}));
  ASSERT_EQ(lanes.size(), 4u);
  EXPECT_EQ(lanes[0].SharesWith, (std::vector<int>{4})) << "not the standard in its own row's empty part";
  EXPECT_EQ(lanes[1].SharesWith, std::vector<int>());
  EXPECT_EQ(lanes[2].SharesWith, (std::vector<int>{0}));
  EXPECT_EQ(lanes[3].SharesWith, std::vector<int>()) << "not by equal own rows";
  EXPECT_EQ(lanes[0].Bands[0].Shared, Ranges());
  EXPECT_EQ(lanes[0].Bands[2].Shared, (Ranges{{885, 887}}));
  for (const Lane& lane : lanes)
    for (const Band& band : lane.OwnBands) EXPECT_EQ(band.Shared, Ranges());
}

TEST(SharedRanges, AreThoseOfTwoLanesOnceEach) {
  const auto lanes = PlanLanes(TableOf({Standard(900, 915, 100), Standard(910, 0, 20), Standard(800, 801, 5),
                                        Standard(0, 0, 0, 2), Standard(801, 0, 1), Standard(919, 0, 5)}));
  EXPECT_EQ(SharedRanges(lanes[0], lanes[1]), (Ranges{{910, 914}})) << "the downlink begins a megahertz above";
  EXPECT_EQ(SharedRanges(lanes[0], lanes[2]), Ranges());
  EXPECT_EQ(SharedRanges(lanes[0], lanes[3]), (Ranges{{919, 920}})) << "by uplink and downlink";
  EXPECT_EQ(SharedRanges(lanes[3], lanes[0]), (Ranges{{919, 920}}));
  EXPECT_EQ(SharedRanges(lanes[2], lanes[3]), (Ranges{{801, 801.2}}));
}

TEST(PlanLanes, TellASharedPartOnce) {
  const auto lanes = PlanLanes(TableOf({Standard(900, 0, 100), Standard(901, 0, 10), Standard(902, 0, 10),
                                        Standard(910, 0, 5), Standard(800, 0, 10), Standard(903, 0, 2)}));
  EXPECT_EQ(lanes[0].Bands[0].Shared, (Ranges{{901, 904}, {910, 911}}));
  EXPECT_EQ(lanes[0].SharesWith, (std::vector<int>{1, 2, 3, 5}));
}

TEST(Merged, CoversRangesAndNarrowGaps) {
  const Ranges ranges = {{5, 6}, {1, 2}, {2, 3}, {4, 4}};
  EXPECT_EQ(Merged(ranges), (Ranges{{1, 3}, {4, 4}, {5, 6}}));
  EXPECT_EQ(Merged(ranges, 0.5), (Ranges{{1, 3}, {4, 4}, {5, 6}}));
  EXPECT_EQ(Merged(ranges, 1), (Ranges{{1, 6}}));
  EXPECT_EQ(Merged({{1, 9}, {2, 3}}), (Ranges{{1, 9}}));
  EXPECT_EQ(Merged({}), Ranges());
}

}  // namespace
}  // namespace chanplan
