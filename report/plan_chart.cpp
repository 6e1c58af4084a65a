#include "report/plan_chart.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <span>
#include <vector>

#include "core/number_picture.h"
#include "core/text_encoding.h"
#include "report/plan_bands.h"
#include "report/text_width.h"

namespace chanplan {
namespace {

// The layout, in pixels.
constexpr double ChartWidth = 1280;
constexpr double Edge = 16;
constexpr double CaptionBaseline = 34;
constexpr double LegendTop = 54;
constexpr double LanesTop = 76;
constexpr double PlotLeft = 224;
constexpr double PlotRight = ChartWidth - 32;
constexpr double AxisHeight = 22;
constexpr double LaneHeight = 28;
constexpr double TextBaseline = 17;  // in an axis or a lane
constexpr double MarkTop = 1;        // marks and bands: of uplinks from the lane's top, of downlinks from its bottom
constexpr double MarkHeight = 2;
constexpr double BandTop = 5.25;
constexpr double BandHeight = 6.5;
constexpr double OutlineDistance = 1.25;  // around bands
constexpr double NarrowestBand = 2;

constexpr std::size_t MostLanesInABlock = 30;  // an axis is in sight wherever a long chart is scrolled to
constexpr int MostTicks = 20;
constexpr double NarrowestSpectrum = MostTicks;  // MHz: ticks are a megahertz apart or more
constexpr double TickLabelWidth = 34;
constexpr double BreakWidth = 44;      // room for the ticks' labels on either side
constexpr double NarrowestBreak = 10;  // a gap in the spectrum is left out from this part of the whole on
constexpr double FontSize = 12;
constexpr double CaptionFontSize = 18;
constexpr double RoomForALabel = PlotLeft - Edge - 8;
constexpr double RoomForTheCaption = ChartWidth - 2 * Edge;
constexpr std::size_t MostNamesTold = 5;

// Renderers without media queries show the light colours on a background of their own. Browsers are told of
// both schemes, or they would put their own around a dark drawing.
constexpr std::string_view Style =
    "<style>\n"
    "svg { color-scheme: light dark }\n"
    "text { font: 12px 'Liberation Sans', Arial, Helvetica, sans-serif; fill: #1c2024 }\n"
    ".caption { font-size: 18px }\n"
    ".tick, .note { font-size: 11px; fill: #59626b }\n"
    ".tick { text-anchor: middle }\n"
    ".page { fill: #ffffff }\n"
    ".odd { fill: #f2f5f8 }\n"
    ".grid { stroke: #d5dae0 }\n"
    ".uplink { fill: #1f6fb5; stroke: #17568d; stroke-width: 0.5 }\n"
    ".downlink { fill: url(#hatch); stroke: #a14f00; stroke-width: 1 }\n"
    ".hatch-ground { fill: #fbe3c8 }\n"
    ".hatch-line { stroke: #a14f00; stroke-width: 2 }\n"
    ".own { fill: none; stroke: #7d8893 }\n"
    ".shared { fill: #c2005d }\n"
    "@media (prefers-color-scheme: dark) {\n"
    "text { fill: #e8eaed }\n"
    ".tick, .note { fill: #a6aeb7 }\n"
    ".page { fill: #16191d }\n"
    ".odd { fill: #1e2328 }\n"
    ".grid { stroke: #343b43 }\n"
    ".uplink { fill: #63a9e8; stroke: #8cc2f2 }\n"
    ".downlink { stroke: #f0a04b }\n"
    ".hatch-ground { fill: #46301a }\n"
    ".hatch-line { stroke: #f0a04b }\n"
    ".own { stroke: #87919b }\n"
    ".shared { fill: #ff6fb0 }\n"
    "}\n"
    "</style>\n"
    "<defs><pattern id=\"hatch\" width=\"5\" height=\"5\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\">"
    "<rect class=\"hatch-ground\" width=\"5\" height=\"5\"/>"
    "<line class=\"hatch-line\" x1=\"1\" y1=\"0\" x2=\"1\" y2=\"5\"/></pattern></defs>\n";

std::string XmlText(std::u32string_view codes) {
  std::string text;
  for (const char32_t code : codes) {
    const bool allowed = code >= 0x20 && code != 0xFFFE && code != 0xFFFF;
    if (code == '&')
      text += "&amp;";
    else if (code == '<')
      text += "&lt;";
    else if (code == '>')
      text += "&gt;";
    else
      AppendUtf8(text, allowed ? code : U'\uFFFD');
  }
  return text;
}

std::string NameText(std::string_view name) { return XmlText(Utf32FromUtf8(Utf8FromWindows1252(name))); }

Fits Within(double room, double fontSize) {
  return [=](std::u32string_view text) { return TextWidth(text, fontSize) <= room; };
}

// A name as there is room for it.
std::string Label(std::string_view name) {
  return XmlText(StartThatFits(Utf32FromUtf8(Utf8FromWindows1252(name)), Within(RoomForALabel, FontSize)));
}

std::string CaptionText(std::string_view caption) {
  return XmlText(EndThatFits(Utf32FromUtf8(caption), Within(RoomForTheCaption, CaptionFontSize)));
}

std::string Pixels(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, 2).ptr;
  return {buffer.data(), end};
}

// 1, 2 or 5 times a power of ten, so that `span` has at most MostTicks of it.
double TickStep(double span) {
  const double power = std::pow(10, std::floor(std::log10(span / MostTicks)));
  for (const double factor : {1, 2, 5})
    if (span / (factor * power) <= MostTicks) return factor * power;
  return 10 * power;
}

// The spectrum shown: the stretches that bands lie in, all to one scale.
struct Axis {
  double Step = 1;                        // MHz from tick to tick
  std::vector<FrequencyRange> Stretches;  // ascending, apart, from a tick to a tick
  double PixelsPerMegahertz = 1;

  double X(double megahertz) const {
    double left = PlotLeft;
    for (const FrequencyRange& stretch : Stretches) {
      if (megahertz <= stretch.High) return left + (megahertz - stretch.Low) * PixelsPerMegahertz;
      left += (stretch.High - stretch.Low) * PixelsPerMegahertz + BreakWidth;
    }
    return PlotRight;
  }
};

double TotalOf(std::span<const FrequencyRange> ranges) {
  double total = 0;
  for (const FrequencyRange& range : ranges) total += range.High - range.Low;
  return total;
}

// Plans reach over thousands of megahertz with bands of ten: what lies between them is left out.
Axis AxisOver(const std::vector<Lane>& lanes) {
  std::vector<FrequencyRange> ranges;
  for (const Lane& lane : lanes)
    for (const auto* bands : {&lane.OwnBands, &lane.Bands})
      for (const Band& band : *bands) ranges.push_back(band.Range);
  Axis axis;
  if (ranges.empty()) return axis;
  ranges = Merged(std::move(ranges));
  const double gap = (ranges.back().High - ranges.front().Low) / NarrowestBreak;
  axis.Stretches = Merged(std::move(ranges), gap);
  axis.Step = TickStep(std::max(TotalOf(axis.Stretches), NarrowestSpectrum));
  for (FrequencyRange& stretch : axis.Stretches) {
    const double firstTick = std::floor(stretch.Low / axis.Step);
    const double lastTick = std::max(std::ceil(stretch.High / axis.Step), firstTick + 1);
    stretch = {firstTick * axis.Step, lastTick * axis.Step};
  }
  axis.Stretches = Merged(std::move(axis.Stretches));
  const double breaks = static_cast<double>(axis.Stretches.size() - 1) * BreakWidth;
  axis.PixelsPerMegahertz = (PlotRight - PlotLeft - breaks) / TotalOf(axis.Stretches);
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

// Elements of the file, one a line.
struct Svg {
  std::string Text;

  void AddRect(std::string_view kind, double x, double y, double width, double height, std::string_view title = {}) {
    Text.append("<rect class=\"").append(kind).append("\" x=\"" + Pixels(x) + "\" y=\"" + Pixels(y));
    Text += "\" width=\"" + Pixels(width) + "\" height=\"" + Pixels(height) + "\"";
    Text += title.empty() ? "/>\n" : "><title>" + std::string(title) + "</title></rect>\n";
  }

  void AddText(std::string_view kind, double x, double y, std::string_view xml) {
    Text.append("<text class=\"").append(kind).append("\" x=\"" + Pixels(x) + "\" y=\"" + Pixels(y) + "\">");
    Text.append(xml).append("</text>\n");
  }

  void AddVerticalLine(std::string_view kind, double x, double top, double bottom) {
    Text.append("<line class=\"").append(kind).append("\" x1=\"" + Pixels(x) + "\" y1=\"" + Pixels(top));
    Text += "\" x2=\"" + Pixels(x) + "\" y2=\"" + Pixels(bottom) + "\"/>\n";
  }
};

std::string RangeText(const FrequencyRange& range) {
  return ShortestDecimal(range.Low) + " to " + ShortestDecimal(range.High) + " MHz";
}

std::string DirectionText(const Band& band) { return band.Direction == LinkDirection::Uplink ? "uplink" : "downlink"; }

// A lane in words: "NAME; own uplink 890 to 920 MHz; uplink 890 to 915 MHz; shares carriers with OTHER".
std::string LaneText(const SignalStandardTable& table, const Lane& lane) {
  std::string text = NameText(table.Row(lane.Standard).Name);
  for (const Band& band : lane.OwnBands) text += "; own " + DirectionText(band) + " " + RangeText(band.Range);
  for (const Band& band : lane.Bands) text += "; " + DirectionText(band) + " " + RangeText(band.Range);
  const std::size_t told = std::min(lane.SharesWith.size(), MostNamesTold);
  for (std::size_t index = 0; index < told; ++index)
    text += (index == 0 ? "; shares carriers with " : ", ") + Label(table.Row(lane.SharesWith[index]).Name);
  if (lane.SharesWith.size() > told) text += " and " + std::to_string(lane.SharesWith.size() - told) + " more";
  return text;
}

// Draws in the half of a lane that `direction` has; `top` counts from the lane's edge there.
struct HalfLane {
  Svg& File;
  const Axis& Scale;
  double LaneTop;
  LinkDirection Direction;

  void AddRect(std::string_view kind, const FrequencyRange& range, double top, double height,
               const std::string& title) const {
    const double left = Scale.X(range.Low);
    const double width = std::max(Scale.X(range.High) - left, NarrowestBand);
    const bool upper = Direction == LinkDirection::Uplink;
    File.AddRect(kind, left, LaneTop + (upper ? top : LaneHeight - top - height), width, height, title);
  }
};

void AddLane(Svg& svg, const SignalStandardTable& table, const Lane& lane, const Axis& axis, double laneTop) {
  const std::string standard = NameText(table.Row(lane.Standard).Name);
  svg.Text += "<g role=\"img\"><title>" + LaneText(table, lane) + "</title>\n";
  svg.AddText("label", Edge, laneTop + TextBaseline, Label(table.Row(lane.Standard).Name));
  if (lane.OwnBands.empty() && lane.Bands.empty())
    svg.AddText("note", PlotLeft, laneTop + TextBaseline,
                "no frequencies from " + RangeText({LowestMegahertz, HighestMegahertz}));
  for (const Band& band : lane.OwnBands)
    HalfLane{svg, axis, laneTop, band.Direction}.AddRect(
        "own", band.Range, BandTop - OutlineDistance, BandHeight + 2 * OutlineDistance,
        standard + ": own " + DirectionText(band) + " " + RangeText(band.Range));
  for (const Band& band : lane.Bands) {
    const HalfLane half{svg, axis, laneTop, band.Direction};
    const std::string name = NameText(table.Row(band.Row).Name) + ": ";
    half.AddRect(DirectionText(band), band.Range, BandTop, BandHeight,
                 name + DirectionText(band) + " " + RangeText(band.Range));
    for (const FrequencyRange& part : band.Shared)
      half.AddRect("shared", part, MarkTop, MarkHeight, name + RangeText(part) + " shared with other standards");
  }
  svg.Text += "</g>\n";
}

void AddTickLabels(Svg& svg, const Axis& axis, double top) {
  if (axis.Stretches.empty()) return;
  svg.AddText("note", Edge, top + TextBaseline, axis.Stretches.size() > 1 ? "MHz (wide gaps left out)" : "MHz");
  double next = 0;  // where there is room for another label
  for (const double tick : Ticks(axis)) {
    const double x = axis.X(tick);
    if (x < next) continue;
    svg.AddText("tick", x, top + TextBaseline, ShortestDecimal(tick));
    next = x + TickLabelWidth;
  }
}

// Lanes with an axis above them; returns where they end.
double AddBlock(Svg& svg, const SignalStandardTable& table, std::span<const Lane> lanes, const Axis& axis, double top) {
  AddTickLabels(svg, axis, top);
  top += AxisHeight;
  const double bottom = top + static_cast<double>(lanes.size()) * LaneHeight;
  for (std::size_t lane = 0; lane < lanes.size(); lane += 2)
    svg.AddRect("odd", 0, top + static_cast<double>(lane) * LaneHeight, ChartWidth, LaneHeight);
  for (std::size_t next = 1; next < axis.Stretches.size(); ++next)
    svg.AddRect("page", axis.X(axis.Stretches[next - 1].High), top, BreakWidth, bottom - top);
  for (const double tick : Ticks(axis)) svg.AddVerticalLine("grid", axis.X(tick), top, bottom);
  for (const Lane& lane : lanes) {
    AddLane(svg, table, lane, axis, top);
    top += LaneHeight;
  }
  return bottom;
}

void AddLegend(Svg& svg, std::string_view summary) {
  struct Entry {
    double Left;
    std::string_view Kind;
    double Top;
    double Height;
    std::string_view Text;
  };
  const std::array<Entry, 4> entries = {{{Edge, "uplink", 0, BandHeight, "uplink, in a lane's upper half"},
                                         {PlotLeft + 26, "downlink", 0, BandHeight, "downlink, in its lower half"},
                                         {PlotLeft + 250, "own", -OutlineDistance, BandHeight + 2 * OutlineDistance,
                                          "own range of a standard with sub-bands"},
                                         {PlotLeft + 560, "shared", 2, MarkHeight, summary}}};
  constexpr double sampleWidth = 28;
  for (const auto& [left, kind, top, height, text] : entries) {
    svg.AddRect(kind, left, LegendTop + top, sampleWidth, height);
    svg.AddText("label", left + sampleWidth + 8, LegendTop + BandHeight, text);
  }
}

std::string Summary(const std::vector<Lane>& lanes) {
  std::size_t sharing = 0;
  for (const Lane& lane : lanes) sharing += lane.SharesWith.size();
  const std::size_t pairs = sharing / 2;
  return "shared with another standard: " + std::to_string(pairs) + (pairs == 1 ? " pair" : " pairs") + " among " +
         std::to_string(lanes.size()) + (lanes.size() == 1 ? " standard" : " standards");
}

}  // namespace

std::string ChartSvg(const SignalStandardTable& table, std::string_view caption) {
  const std::vector<Lane> lanes = PlanLanes(table);
  const Axis axis = AxisOver(lanes);
  const std::size_t blocks = (lanes.size() + MostLanesInABlock - 1) / MostLanesInABlock;
  const double height = LanesTop + static_cast<double>(blocks) * AxisHeight +
                        static_cast<double>(lanes.size()) * LaneHeight + AxisHeight + Edge;
  const std::string shownCaption = CaptionText(caption);
  const std::string summary = Summary(lanes);

  Svg svg;
  svg.Text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" lang=\"en\" width=\"" +
      Pixels(ChartWidth) + "\" height=\"" + Pixels(height) + "\" viewBox=\"0 0 " + Pixels(ChartWidth) + " " +
      Pixels(height) +
      "\" role=\"group\" aria-labelledby=\"title summary\">\n<title id=\"title\">Channel plan: " + shownCaption +
      "</title>\n<desc id=\"summary\">" + summary + "</desc>\n";
  svg.Text += Style;
  svg.AddRect("page", 0, 0, ChartWidth, height);
  svg.AddText("caption", Edge, CaptionBaseline, shownCaption);
  AddLegend(svg, summary);
  double top = LanesTop;
  for (std::size_t block = 0; block < blocks; ++block) {
    const std::size_t first = lanes.size() * block / blocks;
    const std::size_t end = lanes.size() * (block + 1) / blocks;
    top = AddBlock(svg, table, std::span(lanes).subspan(first, end - first), axis, top);
  }
  AddTickLabels(svg, axis, top);
  return svg.Text + "</svg>\n";
}

}  // namespace chanplan
