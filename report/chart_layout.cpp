#include "report/chart_layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "core/number_picture.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr double Edge = 16;
constexpr double RightEdge = 32;  // half of the last tick's label stands behind the plot
constexpr double LabelGap = 8;
constexpr double CaptionBaseline = 34;
constexpr double CaptionHeight = 46;
constexpr double LegendTop = 8;  // below the caption
constexpr double LegendHeight = 22;
constexpr double AxisHeight = 22;
constexpr double MarkTop = 1;  // marks and bands: of uplinks from the lane's top, of downlinks from its bottom
constexpr double MarkHeight = 2;
constexpr double BandTop = 5.25;
constexpr double BandHeight = 6.5;
constexpr double OutlineDistance = 1.25;  // around bands
constexpr double NarrowestBand = 2;

constexpr double RoomForATick = 51.2;
constexpr long FewestTicks = 20;  // with coarser ones, the stretches between breaks grow wide
constexpr double TickLabelWidth = 34;
constexpr double BreakWidth = 44;      // room for the ticks' labels on either side
constexpr double MostForBreaks = 0.4;  // of the plot
constexpr double NarrowestBreak = 10;  // a gap in the spectrum is left out from this part of the whole on
constexpr std::size_t MostNamesTold = 5;

constexpr double PairLineHeight = 18;
constexpr std::size_t MostPairLines = 1000;  // there are viewers that cannot draw what is 32768 pixels high

std::string Utf8FromUtf32(std::u32string_view text) {
  std::string utf8;
  for (const char32_t code : text) AppendUtf8(utf8, code);
  return utf8;
}

// The names of standards, as there is room for them, by table index. Measuring takes long, so it is done once.
std::vector<std::string> LabelsOf(const SignalStandardTable& table, const std::vector<Lane>& lanes,
                                  const ChartShape& shape) {
  const auto fits = [&](std::u32string_view text) { return shape.WidthOf(text, ChartFontSize) <= shape.RoomForALabel; };
  std::vector<std::string> labels(static_cast<std::size_t>(table.Count));
  for (const Lane& lane : lanes)
    labels[static_cast<std::size_t>(lane.Standard)] =
        Utf8FromUtf32(StartThatFits(Utf32FromUtf8(NameText(table, lane.Standard)), fits));
  return labels;
}

std::string CaptionText(std::string_view caption, const ChartShape& shape) {
  const auto fits = [&](std::u32string_view text) {
    return shape.WidthOf(text, ChartCaptionFontSize) <= shape.Width - 2 * Edge;
  };
  return Utf8FromUtf32(EndThatFits(Utf32FromUtf8(caption), fits));
}

// 1, 2 or 5 times a power of ten, so that `span` has at most `most` of it.
double TickStep(double span, double most) {
  const double power = std::pow(10, std::floor(std::log10(span / most)));
  for (const double factor : {1, 2, 5})
    if (span / (factor * power) <= most) return factor * power;
  return 10 * power;
}

// The spectrum shown: the stretches that bands lie in, all to one scale.
struct Axis {
  double Left = 0;  // in pixels, as Right
  double Right = 0;
  double Step = 1;                        // MHz from tick to tick
  std::vector<FrequencyRange> Stretches;  // ascending, apart, from a tick to a tick
  double PixelsPerMegahertz = 1;

  double X(double megahertz) const {
    double left = Left;
    for (const FrequencyRange& stretch : Stretches) {
      if (megahertz <= stretch.High) return left + (megahertz - stretch.Low) * PixelsPerMegahertz;
      left += (stretch.High - stretch.Low) * PixelsPerMegahertz + BreakWidth;
    }
    return Right;
  }
};

double TotalOf(std::span<const FrequencyRange> ranges) {
  double total = 0;
  for (const FrequencyRange& range : ranges) total += range.High - range.Low;
  return total;
}

// Plans reach over thousands of megahertz with bands of ten: the widest gaps are left out, as many as there is
// room for breaks. Returns the widest one that is not, of `ranges` that are ascending and apart.
double GapLeftIn(const std::vector<FrequencyRange>& ranges, double plot) {
  std::vector<double> gaps = {(ranges.back().High - ranges.front().Low) / NarrowestBreak};
  for (std::size_t next = 1; next < ranges.size(); ++next) gaps.push_back(ranges[next].Low - ranges[next - 1].High);
  const double narrowest = gaps.front();
  std::ranges::sort(gaps, std::greater());
  const auto breaks = static_cast<std::size_t>(std::max(plot * MostForBreaks / BreakWidth, 0.0));
  return std::max(narrowest, gaps[std::min(breaks, gaps.size() - 1)]);
}

Axis AxisOver(const std::vector<Lane>& lanes, const ChartShape& shape) {
  Axis axis;
  axis.Left = Edge + shape.RoomForALabel + LabelGap;
  axis.Right = shape.Width - RightEdge;
  std::vector<FrequencyRange> ranges;
  for (const Lane& lane : lanes)
    for (const auto* bands : {&lane.OwnBands, &lane.Bands})
      for (const Band& band : *bands) ranges.push_back(band.Range);
  if (ranges.empty()) return axis;
  ranges = Merged(std::move(ranges));
  const double plot = axis.Right - axis.Left;
  const double gap = GapLeftIn(ranges, plot);
  axis.Stretches = Merged(std::move(ranges), gap);
  const auto mostTicks = static_cast<double>(std::max(std::lround(plot / RoomForATick), FewestTicks));
  // Ticks are a megahertz apart or more.
  axis.Step = TickStep(std::max(TotalOf(axis.Stretches), mostTicks), mostTicks);
  for (FrequencyRange& stretch : axis.Stretches) {
    const double firstTick = std::floor(stretch.Low / axis.Step);
    const double lastTick = std::max(std::ceil(stretch.High / axis.Step), firstTick + 1);
    stretch = {firstTick * axis.Step, lastTick * axis.Step};
  }
  axis.Stretches = Merged(std::move(axis.Stretches));
  const double breaks = static_cast<double>(axis.Stretches.size() - 1) * BreakWidth;
  axis.PixelsPerMegahertz = (plot - breaks) / TotalOf(axis.Stretches);
  return axis;
}

std::vector<double> Ticks(const Axis& axis) {
  std::vector<double> ticks;
  for (const FrequencyRange& stretch : axis.Stretches) {
    const long count = std::lround((stretch.High - stretch.Low) / axis.Step);
    for (long tick = 0; tick <= count; ++tick) ticks.push_back(stretch.Low + static_cast<double>(tick) * axis.Step);
  }
  return ticks;
}

ChartItem TextAt(ChartKind kind, double x, double top, std::string text) {
  return {kind, x, top + ChartTextBaseline, 0, 0, std::move(text)};
}

std::string DirectionText(const Band& band) { return band.Direction == LinkDirection::Uplink ? "uplink" : "downlink"; }

std::string LaneText(const SignalStandardTable& table, const Lane& lane, const std::vector<std::string>& labels) {
  std::string text = NameText(table, lane.Standard);
  for (const Band& band : lane.OwnBands) text += "; own " + DirectionText(band) + " " + RangeText(band.Range);
  for (const Band& band : lane.Bands) text += "; " + DirectionText(band) + " " + RangeText(band.Range);
  const std::size_t told = std::min(lane.SharesWith.size(), MostNamesTold);
  for (std::size_t index = 0; index < told; ++index)
    text += (index == 0 ? "; shares carriers with " : ", ") + labels[static_cast<std::size_t>(lane.SharesWith[index])];
  if (lane.SharesWith.size() > told) text += " and " + std::to_string(lane.SharesWith.size() - told) + " more";
  return text;
}

// In the half of a lane that `direction` has; `top` counts from the lane's edge there.
struct HalfLane {
  const Axis& Scale;
  double LaneTop;
  LinkDirection Direction;

  ChartItem Rect(ChartKind kind, const FrequencyRange& range, double top, double height, std::string title) const {
    const double left = Scale.X(range.Low);
    const double width = std::max(Scale.X(range.High) - left, NarrowestBand);
    const bool upper = Direction == LinkDirection::Uplink;
    return {kind, left, LaneTop + (upper ? top : ChartLaneHeight - top - height), width, height, std::move(title)};
  }
};

ChartLane LayOutLane(const SignalStandardTable& table, const Lane& lane, const std::vector<std::string>& labels,
                     const Axis& axis, double top) {
  ChartLane drawn{top, LaneText(table, lane, labels), {}};
  const std::string standard = NameText(table, lane.Standard);
  drawn.Items.push_back(TextAt(ChartKind::Label, Edge, top, labels[static_cast<std::size_t>(lane.Standard)]));
  if (lane.OwnBands.empty() && lane.Bands.empty())
    drawn.Items.push_back(TextAt(ChartKind::Note, axis.Left, top,
                                 "no frequencies from " + RangeText({LowestMegahertz, HighestMegahertz})));
  for (const Band& band : lane.OwnBands)
    drawn.Items.push_back(HalfLane{axis, top, band.Direction}.Rect(
        ChartKind::Own, band.Range, BandTop - OutlineDistance, BandHeight + 2 * OutlineDistance,
        standard + ": own " + DirectionText(band) + " " + RangeText(band.Range)));
  for (const Band& band : lane.Bands) {
    const HalfLane half{axis, top, band.Direction};
    const std::string name = NameText(table, band.Row) + ": ";
    const auto kind = band.Direction == LinkDirection::Uplink ? ChartKind::Uplink : ChartKind::Downlink;
    drawn.Items.push_back(
        half.Rect(kind, band.Range, BandTop, BandHeight, name + DirectionText(band) + " " + RangeText(band.Range)));
    for (const FrequencyRange& part : band.Shared)
      drawn.Items.push_back(half.Rect(ChartKind::Shared, part, MarkTop, MarkHeight,
                                      name + RangeText(part) + " shared with other standards"));
  }
  return drawn;
}

std::vector<ChartItem> TickLabels(const Axis& axis, const ChartShape& shape, double top) {
  if (axis.Stretches.empty()) return {};
  const bool hasBreaks = axis.Stretches.size() > 1;
  const bool isRoomToSaySo =
      shape.WidthOf(U"MHz (wide gaps left out)", ChartSmallFontSize) <= shape.RoomForALabel - LabelGap;
  std::vector<ChartItem> labels = {
      TextAt(ChartKind::Note, Edge, top, hasBreaks && isRoomToSaySo ? "MHz (wide gaps left out)" : "MHz")};
  double next = 0;  // where there is room for another label
  for (const double tick : Ticks(axis)) {
    const double x = axis.X(tick);
    if (x < next) continue;
    labels.push_back(TextAt(ChartKind::Tick, x, top, ShortestDecimal(tick)));
    next = x + TickLabelWidth;
  }
  return labels;
}

// Lanes with an axis above them, which stands at `top`.
ChartBlock LayOutBlock(const SignalStandardTable& table, std::span<const Lane> lanes,
                       const std::vector<std::string>& labels, const ChartShape& shape, const Axis& axis, double top) {
  ChartBlock block;
  block.Axis = TickLabels(axis, shape, top);
  block.Top = top + AxisHeight;
  const double height = static_cast<double>(lanes.size()) * ChartLaneHeight;
  block.Bottom = block.Top + height;
  for (std::size_t lane = 0; lane < lanes.size(); lane += 2)
    block.Ground.push_back(
        {ChartKind::Odd, 0, block.Top + static_cast<double>(lane) * ChartLaneHeight, shape.Width, ChartLaneHeight, {}});
  for (std::size_t next = 1; next < axis.Stretches.size(); ++next)
    block.Ground.push_back({ChartKind::Page, axis.X(axis.Stretches[next - 1].High), block.Top, BreakWidth, height, {}});
  for (const double tick : Ticks(axis))
    block.Ground.push_back({ChartKind::Grid, axis.X(tick), block.Top, 0, height, {}});
  for (double laneTop = block.Top; const Lane& lane : lanes) {
    block.Lanes.push_back(LayOutLane(table, lane, labels, axis, laneTop));
    laneTop += ChartLaneHeight;
  }
  return block;
}

struct Sample {
  ChartKind Kind;
  double Top;
  double Height;
};
constexpr std::array<Sample, 4> Samples = {{{ChartKind::Uplink, 0, BandHeight},
                                            {ChartKind::Downlink, 0, BandHeight},
                                            {ChartKind::Own, -OutlineDistance, BandHeight + 2 * OutlineDistance},
                                            {ChartKind::Shared, 2, MarkHeight}}};

void AddSample(PlanChart& chart, const Sample& sample, double left, double top, double width, std::string text) {
  chart.Head.push_back({sample.Kind, left, top + sample.Top, width, sample.Height, {}});
  chart.Head.push_back({ChartKind::Label, left + width + 8, top + BandHeight, 0, 0, std::move(text)});
}

void AddLegend(PlanChart& chart, double top) {
  constexpr std::array<double, 4> lefts = {Edge, 250, 474, 784};
  const std::array<std::string, 4> texts = {"uplink, in a lane's upper half", "downlink, in its lower half",
                                            "own range of a standard with sub-bands", chart.Summary};
  for (std::size_t place = 0; place < Samples.size(); ++place)
    AddSample(chart, Samples[place], lefts[place], top, 28, texts[place]);
}

// Where there is less room.
void AddShortLegend(PlanChart& chart, const ChartShape& shape, double top) {
  constexpr std::array<const char*, 4> texts = {"uplink", "downlink", "own range", "shared"};
  constexpr double sampleWidth = 14;
  for (double left = Edge; const Sample& sample : Samples) {
    const char* text = texts[static_cast<std::size_t>(&sample - Samples.data())];
    AddSample(chart, sample, left, top, sampleWidth, text);
    left += sampleWidth + shape.WidthOf(Utf32FromUtf8(text), ChartFontSize) + 20;
  }
}

std::string Summary(const std::vector<Lane>& lanes) {
  std::size_t sharing = 0;
  for (const Lane& lane : lanes) sharing += lane.SharesWith.size();
  const std::size_t pairs = sharing / 2;
  return "shared with another standard: " + std::to_string(pairs) + (pairs == 1 ? " pair" : " pairs") + " among " +
         std::to_string(lanes.size()) + (lanes.size() == 1 ? " standard" : " standards");
}

// As many texts a line as there is room for.
std::vector<std::string> Lines(const std::vector<FrequencyRange>& ranges, double room, const ChartShape& shape) {
  std::vector<std::string> lines;
  for (const FrequencyRange& range : ranges) {
    const std::string longer = lines.empty() ? std::string() : lines.back() + ", " + RangeText(range);
    if (lines.empty() || shape.WidthOf(Utf32FromUtf8(longer), ChartFontSize) > room)
      lines.push_back(RangeText(range));
    else
      lines.back() = longer;
  }
  return lines;
}

}  // namespace

std::string RangeText(const FrequencyRange& range) {
  return ShortestDecimal(range.Low) + " to " + ShortestDecimal(range.High) + " MHz";
}

std::string NameText(const SignalStandardTable& table, int row) { return Utf8FromWindows1252(table.Row(row).Name); }

PlanChart LayOutChart(const SignalStandardTable& table, const std::vector<Lane>& lanes, const ChartShape& shape,
                      std::string_view caption) {
  PlanChart chart;
  chart.Width = shape.Width;
  chart.Summary = Summary(lanes);
  const Axis axis = AxisOver(lanes, shape);
  const std::vector<std::string> labels = LabelsOf(table, lanes, shape);
  double top = LegendTop;
  if (shape.HasCaption) {
    chart.Head.push_back({ChartKind::Caption, Edge, CaptionBaseline, 0, 0, CaptionText(caption, shape)});
    top += CaptionHeight;
    AddLegend(chart, top);
  } else {
    AddShortLegend(chart, shape, top);
  }
  top += LegendHeight;
  const std::size_t blocks = (lanes.size() + shape.MostLanesInABlock - 1) / shape.MostLanesInABlock;
  for (std::size_t block = 0; block < blocks; ++block) {
    const std::size_t first = lanes.size() * block / blocks;
    const std::size_t end = lanes.size() * (block + 1) / blocks;
    chart.Blocks.push_back(LayOutBlock(table, std::span(lanes).subspan(first, end - first), labels, shape, axis, top));
    top = chart.Blocks.back().Bottom;
  }
  chart.Foot = TickLabels(axis, shape, top);
  chart.Height = top + AxisHeight + Edge;
  return chart;
}

void AddSharedPairs(PlanChart& chart, const SignalStandardTable& table, const std::vector<Lane>& lanes,
                    const ChartShape& shape) {
  std::vector<std::pair<const Lane*, const Lane*>> pairs;
  for (const Lane& one : lanes)
    for (const Lane& other : lanes)
      if (one.Standard < other.Standard && std::ranges::binary_search(one.SharesWith, other.Standard))
        pairs.emplace_back(&one, &other);
  if (pairs.empty()) return;
  const std::vector<std::string> labels = LabelsOf(table, lanes, shape);
  const double column = shape.RoomForALabel + LabelGap;
  const double room = shape.Width - 2 * Edge - 2 * column;
  double top = chart.Height - Edge;
  const auto add = [&](double x, std::string text) {
    chart.Foot.push_back(TextAt(ChartKind::Pair, x, top, std::move(text)));
  };
  add(Edge, "Standards that share carriers, and where");
  top += PairLineHeight;
  std::size_t lines = 0;
  std::size_t told = 0;
  for (; told < pairs.size() && lines < MostPairLines; ++told) {
    const auto [one, other] = pairs[told];
    add(Edge, labels[static_cast<std::size_t>(one->Standard)]);
    add(Edge + column, labels[static_cast<std::size_t>(other->Standard)]);
    for (const std::string& line : Lines(SharedRanges(*one, *other), room, shape)) {
      add(Edge + 2 * column, line);
      top += PairLineHeight;
      ++lines;
    }
  }
  if (told < pairs.size()) {
    const std::size_t left = pairs.size() - told;
    add(Edge, "and " + std::to_string(left) + (left == 1 ? " more pair" : " more pairs"));
    top += PairLineHeight;
  }
  chart.Height = top + Edge;
}

}  // namespace chanplan
