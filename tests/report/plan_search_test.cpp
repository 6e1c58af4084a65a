#include "report/plan_search.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::TableOf;

using Places = std::vector<PlanPlace>;

// As the networks have them; the sub-bands of the second leave channels 125 to 974 out.
SignalStandardTable Plan() {
  return TableOf({{"2", 0, "P-GSM 900", 890.2, 935.2, 1, 124, 0.2, 0.2, 1},
                  {"2", 2, "E-GSM 900", 890, 935, 0, 1023, 0.2, 0.2, 1},
                  {"0", 0, "", 890, 935, 0, 124, 0.2, 0.2, 1},
                  {"0", 0, "", 880.2, 925.2, 975, 1023, 0.2, 0.2, 1},
                  {"2", 0, "DCS 1800", 1710.2, 1805.2, 512, 885, 0.2, 0.2, 1}});
}

Places Find(const char* text) { return FindInPlan(Plan(), ReadPlanQuery(text)); }

std::vector<std::string> Texts(const char* text) {
  std::vector<std::string> texts;
  for (const PlanPlace& place : Find(text)) texts.push_back(PlaceText(Plan(), ReadPlanQuery(text), place));
  return texts;
}

TEST(PlanQuery, TakesWhatPeopleWrite) {
  const struct {
    const char* Text;
    std::optional<double> Megahertz;
    std::optional<int> Channel;
  } cases[] = {
      {"935.2", 935.2, {}},
      {"935,2", 935.2, {}},
      {" 700 ", 700, 700},
      {"700 MHz", 700, {}},
      {"935.2mhz", 935.2, {}},
      {"channel 700", {}, 700},
      {"Channel700", {}, 700},
      {"ch 7", {}, 7},
      {"Ch. 7", {}, 7},
      {"channel 1.5", {}, {}},
      {"GSM 900", {}, {}},
      {"1.2.3", {}, {}},
      {"", {}, {}},
      {"inf", {}, {}},
      {"nan", {}, {}},
      {"-5", {}, {}},
      {"99999999999", 99999999999., {}},
      {"1e3", {}, {}},
      {"MHz", {}, {}},
      {"channel", {}, {}},
  };
  for (const auto& given : cases) {
    const PlanQuery query = ReadPlanQuery(given.Text);
    EXPECT_EQ(query.Megahertz, given.Megahertz) << given.Text;
    EXPECT_EQ(query.Channel, given.Channel) << given.Text;
  }
}

TEST(FindInPlan, FindsPartsOfNamesInWhateverCase) {
  EXPECT_EQ(Find("gsm"), (Places{{0}, {1}}));
  EXPECT_EQ(Find(" DCS 1800 "), Places{{4}});
  EXPECT_EQ(Find("UMTS"), Places());
  EXPECT_EQ(Find(" "), Places());
  EXPECT_EQ(FindInPlan(TableOf({NamedRow("\xC4RGER")}), ReadPlanQuery("\xE4rg")), Places{{0}});
  EXPECT_EQ(FindInPlan(TableOf({NamedRow("2\xD7"), NamedRow("2\xF7")}), ReadPlanQuery("\xF7")), Places{{1}})
      << "signs have no case";
}

TEST(FindInPlan, FindsWhoHoldsAFrequencyFromTheFirstCarrierToTheLast) {
  EXPECT_EQ(Find("935.2"), (Places{{0, Field::DownlinkStartFreq}, {2, Field::DownlinkStartFreq}}));
  EXPECT_EQ(Find("1784.8"), (Places{{4, Field::UplinkStartFreq}}));
  EXPECT_EQ(Find("1784.9"), Places());
  EXPECT_EQ(Find("1710.1"), Places());
  EXPECT_EQ(Find("1710.3"), (Places{{4, Field::UplinkStartFreq}})) << "between two carriers";
}

TEST(FindInPlan, AsksSubbandsInTheirStandardsPlace) {
  EXPECT_EQ(Find("880.4"), (Places{{3, Field::UplinkStartFreq}})) << "below the standard's own start";
  EXPECT_EQ(Find("925"), Places()) << "a channel that the numbers jump over";
  EXPECT_EQ(Find("channel 500"), Places());
  EXPECT_EQ(Find("ch 1000"), (Places{{3, Field::StartChannel}}));
}

TEST(FindInPlan, TakesAWholeNumberForAllThatItMayBe) {
  EXPECT_EQ(Find("900"),
            (Places{{0, Field::Name}, {0, Field::UplinkStartFreq}, {1, Field::Name}, {2, Field::UplinkStartFreq}}));
  EXPECT_EQ(Find("512"), (Places{{4, Field::StartChannel}}));
  EXPECT_EQ(Find("0"), (Places{{0, Field::Name}, {1, Field::Name}, {2, Field::StartChannel}, {4, Field::Name}}));
}

TEST(FindInPlan, TakesChannelsThatCountDownwards) {
  SignalStandardRecord row = NamedRow("S");
  row.StartChannel = 20;
  row.StopChannel = 10;
  EXPECT_EQ(FindInPlan(TableOf({row}), ReadPlanQuery("ch 10")), (Places{{0, Field::StartChannel}}));
  EXPECT_EQ(FindInPlan(TableOf({row}), ReadPlanQuery("ch 21")), Places());
}

TEST(PlaceText, TellsChannelsAndFrequencies) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(Texts("DCS"), Lines{"DCS 1800"});
  EXPECT_EQ(Texts("935.4"), (Lines{"P-GSM 900, downlink, channel 2", "E-GSM 900, Band A, downlink, channel 2"}));
  EXPECT_EQ(Texts("1710.3"), Lines{"DCS 1800, uplink, between two channels"});
  EXPECT_EQ(Texts("channel 700"), Lines{"DCS 1800, channel 700: 1747.8 and 1842.8 MHz"});
}

TEST(PlaceText, BearsRowsOfNonsense) {
  SignalStandardRecord row = NamedRow("S");
  for (const double spacing : {0., 5e-324, -1e300, std::numeric_limits<double>::infinity()}) {
    row.Spacing = spacing;
    const SignalStandardTable table = TableOf({row});
    const PlanQuery query = ReadPlanQuery("1850.2");
    for (const PlanPlace& place : FindInPlan(table, query)) EXPECT_FALSE(PlaceText(table, query, place).empty());
  }
}

}  // namespace
}  // namespace chanplan
