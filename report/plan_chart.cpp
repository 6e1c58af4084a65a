#include "report/plan_chart.h"

#include <array>
#include <charconv>

#include "core/text_encoding.h"
#include "report/chart_colours.h"
#include "report/chart_layout.h"
#include "report/plan_bands.h"

namespace chanplan {
namespace {

std::string ColourRules(const ChartColours& colours) {
  std::string rules;
  const auto add = [&](std::string_view kinds, std::string_view property, std::string_view colour) {
    rules.append(kinds).append(" { ").append(property).append(": ").append(colour).append(" }\n");
  };
  add("text", "fill", colours.Text);
  add(".tick, .note", "fill", colours.SmallText);
  add(".page", "fill", colours.Page);
  add(".odd", "fill", colours.OddLane);
  add(".grid", "stroke", colours.Grid);
  add(".uplink", "fill", std::string(colours.Uplink) + "; stroke: " + std::string(colours.UplinkEdge));
  add(".downlink", "stroke", colours.Downlink);
  add(".hatch-ground", "fill", colours.DownlinkGround);
  add(".hatch-line", "stroke", colours.Downlink);
  add(".own", "stroke", colours.Own);
  add(".shared", "fill", colours.Shared);
  return rules;
}

// Renderers without media queries show the light colours on a background of their own. Browsers are told of
// both schemes, or they would put their own around a dark drawing.
std::string Style() {
  return "<style>\n"
         "svg { color-scheme: light dark }\n"
         "text { font: 12px 'Liberation Sans', Arial, Helvetica, sans-serif }\n"
         ".caption { font-size: 18px }\n"
         ".tick, .note { font-size: 11px }\n"
         ".tick { text-anchor: middle }\n"
         ".uplink { stroke-width: 0.5 }\n"
         ".downlink { fill: url(#hatch); stroke-width: 1 }\n"
         ".hatch-line { stroke-width: 2 }\n"
         ".own { fill: none }\n" +
         ColourRules(LightColours) + "@media (prefers-color-scheme: dark) {\n" + ColourRules(DarkColours) +
         "}\n</style>\n"
         "<defs><pattern id=\"hatch\" width=\"5\" height=\"5\" patternUnits=\"userSpaceOnUse\" "
         "patternTransform=\"rotate(45)\">"
         "<rect class=\"hatch-ground\" width=\"5\" height=\"5\"/>"
         "<line class=\"hatch-line\" x1=\"1\" y1=\"0\" x2=\"1\" y2=\"5\"/></pattern></defs>\n";
}

constexpr std::array<std::string_view, 12> Classes = {"page",   "odd",     "grid",  "uplink", "downlink", "own",
                                                      "shared", "caption", "label", "note",   "tick",     "pair"};

std::string XmlText(std::string_view utf8) {
  std::string text;
  for (const char32_t code : Utf32FromUtf8(utf8)) {
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

std::string Pixels(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, 2).ptr;
  return {buffer.data(), end};
}

// An element of the file, in a line of its own.
void AddItem(std::string& svg, const ChartItem& item) {
  const auto attribute = [&](const char* name, double value) {
    svg.append(" ").append(name).append("=\"" + Pixels(value) + "\"");
  };
  const bool isText = item.Kind >= ChartKind::Caption;
  svg += item.Kind == ChartKind::Grid ? "<line" : isText ? "<text" : "<rect";
  svg.append(" class=\"").append(Classes[static_cast<std::size_t>(item.Kind)]).append("\"");
  if (item.Kind == ChartKind::Grid) {
    attribute("x1", item.X);
    attribute("y1", item.Y);
    attribute("x2", item.X);
    attribute("y2", item.Y + item.Height);
    svg += "/>\n";
    return;
  }
  attribute("x", item.X);
  attribute("y", item.Y);
  if (isText) {
    svg += ">" + XmlText(item.Text) + "</text>\n";
    return;
  }
  attribute("width", item.Width);
  attribute("height", item.Height);
  svg += item.Text.empty() ? "/>\n" : "><title>" + XmlText(item.Text) + "</title></rect>\n";
}

void AddItems(std::string& svg, const std::vector<ChartItem>& items) {
  for (const ChartItem& item : items) AddItem(svg, item);
}

void AddBlock(std::string& svg, const ChartBlock& block) {
  AddItems(svg, block.Axis);
  AddItems(svg, block.Ground);
  for (const ChartLane& lane : block.Lanes) {
    svg += "<g role=\"img\"><title>" + XmlText(lane.Words) + "</title>\n";
    AddItems(svg, lane.Items);
    svg += "</g>\n";
  }
}

}  // namespace

std::string ChartSvg(const SignalStandardTable& table, std::string_view caption) {
  const std::vector<Lane> lanes = PlanLanes(table);
  const ChartShape shape;
  PlanChart chart = LayOutChart(table, lanes, shape, caption);
  AddSharedPairs(chart, table, lanes, shape);

  std::string svg =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" lang=\"en\" width=\"" +
      Pixels(chart.Width) + "\" height=\"" + Pixels(chart.Height) + "\" viewBox=\"0 0 " + Pixels(chart.Width) + " " +
      Pixels(chart.Height) +
      "\" role=\"group\" aria-labelledby=\"title summary\">\n<title id=\"title\">Channel plan: " +
      XmlText(chart.Head.front().Text) + "</title>\n<desc id=\"summary\">" + chart.Summary + "</desc>\n";
  svg += Style();
  AddItem(svg, {ChartKind::Page, 0, 0, chart.Width, chart.Height, {}});
  AddItems(svg, chart.Head);
  for (const ChartBlock& block : chart.Blocks) AddBlock(svg, block);
  AddItems(svg, chart.Foot);
  return svg + "</svg>\n";
}

}  // namespace chanplan
