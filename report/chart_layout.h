// What stands where in the picture of a plan, whoever draws it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/signal_standard_table.h"
#include "report/plan_bands.h"
#include "report/text_width.h"

namespace chanplan {

inline constexpr double ChartFontSize = 12;
inline constexpr double ChartSmallFontSize = 11;
inline constexpr double ChartCaptionFontSize = 18;

/// What the picture has to fit into. Lengths are pixels where texts are `ChartFontSize` of them high.
struct ChartShape {
  double Width = 1280;
  double RoomForALabel = 200;  ///< names of standards, at the left
  bool HasCaption = true;
  std::size_t MostLanesInABlock = 30;  ///< an axis is in sight wherever a long chart is scrolled to
  std::function<double(std::u32string_view text, double fontSize)> WidthOf = TextWidth;
};

enum class ChartKind { Page, Odd, Grid, Uplink, Downlink, Own, Shared, Caption, Label, Note, Tick, Pair };

/// A rectangle with its title, a vertical line (`Grid`), or a text that starts at `X`, `Tick` in the middle,
/// with its baseline at `Y`. Texts are UTF-8.
struct ChartItem {
  ChartKind Kind = ChartKind::Page;
  double X = 0;
  double Y = 0;
  double Width = 0;
  double Height = 0;
  std::string Text;
};

struct ChartLane {
  double Top = 0;
  std::string Words;  ///< "NAME; uplink 890 to 915 MHz; shares carriers with OTHER"
  std::vector<ChartItem> Items;
};

/// Lanes below an axis of their own.
struct ChartBlock {
  double Top = 0;  ///< of the first lane
  double Bottom = 0;
  std::vector<ChartItem> Axis;
  std::vector<ChartItem> Ground;  ///< behind the lanes
  std::vector<ChartLane> Lanes;
};

/// In the order in which it is drawn.
struct PlanChart {
  double Width = 0;
  double Height = 0;
  std::string Summary;
  std::vector<ChartItem> Head;  ///< caption and legend
  std::vector<ChartBlock> Blocks;
  std::vector<ChartItem> Foot;
};

inline constexpr double ChartLaneHeight = 28;
inline constexpr double ChartTextBaseline = 17;  ///< in an axis or a lane

/// A lane for every standard, its uplink bands above its downlink bands, with the parts that other standards
/// use too marked; a standard with sub-bands has them in outlines of its own bands. `lanes` are the table's
/// `PlanLanes`, `caption` is UTF-8.
PlanChart LayOutChart(const SignalStandardTable& table, const std::vector<Lane>& lanes, const ChartShape& shape,
                      std::string_view caption = {});

/// Adds the pairs of standards that share carriers to the chart's foot, with what they share: as many
/// as a drawing can be high, then how many are left.
void AddSharedPairs(PlanChart& chart, const SignalStandardTable& table, const std::vector<Lane>& lanes,
                    const ChartShape& shape);

/// "890 to 915 MHz"
std::string RangeText(const FrequencyRange& range);
/// A record's name as UTF-8.
std::string NameText(const SignalStandardTable& table, int row);

}  // namespace chanplan
