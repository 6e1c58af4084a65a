#include "report/chart_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text_encoding.h"
#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::TableOf;

PlanChart Chart(const std::vector<SignalStandardRecord>& rows, const ChartShape& shape) {
  const SignalStandardTable table = TableOf(rows);
  return LayOutChart(table, PlanLanes(table), shape);
}

// Bands all over the spectrum, with nine wide gaps.
std::vector<SignalStandardRecord> FarApart() {
  std::vector<SignalStandardRecord> rows;
  for (int place = 1; place <= 9; ++place)
    rows.push_back({"2", 0, std::string(30, 'W'), place * 990.0, place * 990.0 + 9, 0, 30, 0.2, 0.2, 1});
  return rows;
}

TEST(ChartLayout, KeepsBandsInThePlotHoweverNarrowItIs) {
  for (const double width : {240.0, 320.0, 500.0, 800.0, 1280.0, 4000.0}) {
    const ChartShape shape = {.Width = width, .RoomForALabel = 80, .HasCaption = false, .MostLanesInABlock = 200};
    const PlanChart chart = Chart(FarApart(), shape);
    ASSERT_EQ(chart.Blocks.size(), 1u);
    ASSERT_EQ(chart.Blocks[0].Lanes.size(), 9u);
    double before = 80 + 16;
    for (const ChartLane& lane : chart.Blocks[0].Lanes) {
      const ChartItem& uplink = lane.Items.at(1);
      EXPECT_EQ(uplink.Kind, ChartKind::Uplink);
      EXPECT_GT(uplink.X, before) << width << ": the further up, the further right";
      EXPECT_LT(uplink.X + uplink.Width, width);
      EXPECT_GT(uplink.Width, 0);
      before = uplink.X;
    }
    const ChartItem& unit = chart.Blocks[0].Axis.at(0);
    double next = unit.X + TextWidth(Utf32FromUtf8(unit.Text), ChartSmallFontSize) + 4;
    for (const ChartItem& label : chart.Blocks[0].Axis) {
      if (label.Kind != ChartKind::Tick) continue;
      EXPECT_GE(label.X, next) << width << ": labels would touch";
      next = label.X + 34;
    }
    EXPECT_GT(next, 0);
  }
}

TEST(ChartLayout, LeavesTheWidestGapsOutWhereThereIsRoomForFewBreaks) {
  const std::vector<SignalStandardRecord> rows = {{"2", 0, "A", 450, 0, 0, 50, 0.2, 0.2, 1},
                                                  {"2", 0, "B", 900, 0, 0, 50, 0.2, 0.2, 1},
                                                  {"2", 0, "C", 2600, 0, 0, 50, 0.2, 0.2, 1}};
  // How many pixels of a chart of `width` lie between the uplinks of two standards that follow each other.
  const auto between = [&](double width, std::size_t first) {
    const PlanChart chart = Chart(rows, {.Width = width, .RoomForALabel = 80, .HasCaption = false});
    const ChartItem& lower = chart.Blocks.at(0).Lanes.at(first).Items.at(1);
    const ChartItem& upper = chart.Blocks.at(0).Lanes.at(first + 1).Items.at(1);
    return upper.X - (lower.X + lower.Width);
  };
  EXPECT_LT(between(1280, 0), 150);
  EXPECT_LT(between(1280, 1), 150);
  EXPECT_GT(between(300, 0), 80) << "one break is all that there is room for, and it is the other one";
  EXPECT_LT(between(300, 1), 60);
}

TEST(ChartLayout, MeasuresLettersAsItIsTold) {
  ChartShape shape;
  shape.WidthOf = [](std::u32string_view text, double) { return 50.0 * static_cast<double>(text.size()); };
  EXPECT_EQ(Chart(FarApart(), shape).Blocks[0].Lanes[0].Items[0].Text, "WWW\u2026");
}

TEST(ChartLayout, PutsLanesBelowEachOtherWhereTheySayTheyAre) {
  for (const bool hasCaption : {true, false}) {
    const PlanChart chart = Chart(FarApart(), {.HasCaption = hasCaption, .MostLanesInABlock = 4});
    EXPECT_EQ(chart.Blocks.size(), 3u);
    double bottom = 0;
    for (const ChartBlock& block : chart.Blocks) {
      EXPECT_GT(block.Top, bottom) << "room for an axis";
      bottom = block.Top;
      for (const ChartLane& lane : block.Lanes) {
        EXPECT_EQ(lane.Top, bottom);
        bottom += ChartLaneHeight;
        for (const ChartItem& item : lane.Items) {
          EXPECT_GE(item.Y, lane.Top);
          EXPECT_LE(item.Y + item.Height, bottom);
        }
      }
      EXPECT_EQ(block.Bottom, bottom);
    }
    EXPECT_GT(chart.Height, bottom);
  }
}

}  // namespace
}  // namespace chanplan
