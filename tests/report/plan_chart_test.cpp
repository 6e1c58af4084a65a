#include "report/plan_chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/text_encoding.h"
#include "report/text_width.h"
#include "tests/core/table_of.h"
#include "tests/report/svg_reader.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::ReadSvg;
using testing::SvgElement;
using testing::SvgFile;
using testing::TableOf;
using testing::TableOfNames;

SignalStandardRecord Standard(std::string name, double uplink, double downlink, int channels, int subbands = 0) {
  return {"2", subbands, std::move(name), uplink, downlink, 0, channels, 0.2, 0.2, 1};
}

SvgFile Chart(const std::vector<SignalStandardRecord>& rows, std::string_view caption = "x") {
  return ReadSvg(ChartSvg(TableOf(rows), caption));
}

// Where the axis has its ticks.
std::map<double, double> TicksOf(const SvgFile& file) {
  std::map<double, double> ticks;
  for (const SvgElement& tick : file.Of("text", "tick")) ticks[std::stod(tick.Text)] = tick.X;
  return ticks;
}

// The elements of a kind, without the legend's sample.
std::vector<SvgElement> Drawn(const SvgFile& file, const std::string& kind) {
  auto elements = file.Of("rect", kind);
  if (elements.empty()) throw std::runtime_error("the legend has no sample of " + kind);
  elements.erase(elements.begin());
  return elements;
}

constexpr double Pixel = 0.011;  // what rounding to hundredths leaves open

TEST(Chart, DrawsBandsToTheAxissScale) {
  const SvgFile file = Chart({Standard("A", 900, 945, 100), Standard("B", 910, 960, 200)});
  const auto ticks = TicksOf(file);
  const auto [low, left] = *ticks.begin();
  const auto [high, right] = *ticks.rbegin();
  const double scale = (right - left) / (high - low);
  for (const auto& [megahertz, x] : ticks) EXPECT_NEAR(x, left + (megahertz - low) * scale, Pixel);
  struct Case {
    const char* Kind;
    std::size_t Place;
    double Low;
    double High;
    const char* Title;
  };
  for (const auto& [kind, place, bandLow, bandHigh, title] : {
           Case{"uplink", 0, 900, 920, "A: uplink 900 to 920 MHz"},
           Case{"downlink", 0, 945, 965, "A: downlink 945 to 965 MHz"},
           Case{"uplink", 1, 910, 950, "B: uplink 910 to 950 MHz"},
           Case{"downlink", 1, 960, 1000, "B: downlink 960 to 1000 MHz"},
           Case{"shared", 0, 910, 920, "A: 910 to 920 MHz shared with other standards"},
       }) {
    const SvgElement band = Drawn(file, kind).at(place);
    EXPECT_NEAR(band.X, left + (bandLow - low) * scale, Pixel) << title;
    EXPECT_NEAR(band.Width, (bandHigh - bandLow) * scale, 2 * Pixel) << title;
    EXPECT_EQ(band.Title, title);
  }
}

TEST(Chart, LeavesWideGapsOutAndKeepsTheScale) {
  const SvgFile file =
      Chart({Standard("A", 450, 460, 40), Standard("B", 900, 945, 100), Standard("C", 2500, 2600, 200)});
  const auto ticks = TicksOf(file);
  EXPECT_EQ(ticks.count(1500), 0u);
  for (auto tick = ticks.begin(); std::next(tick) != ticks.end(); ++tick)
    EXPECT_GE(std::next(tick)->second - tick->second, 30) << "the labels at " << tick->first << " would touch";
  std::vector<double> scales;
  for (const auto& kind : {"uplink", "downlink"})
    for (const SvgElement& band : Drawn(file, kind)) {
      const std::string words = band.Title.substr(band.Title.find("link ") + 5);
      const double low = std::stod(words);
      const double high = std::stod(words.substr(words.find("to ") + 3));
      scales.push_back(band.Width / (high - low));
      const auto before = std::prev(ticks.upper_bound(low));
      EXPECT_NEAR(band.X, before->second + (low - before->first) * scales.front(), 0.1) << band.Title;
    }
  EXPECT_EQ(scales.size(), 6u);
  for (const double scale : scales) EXPECT_NEAR(scale, scales.front(), 0.01);
  EXPECT_FALSE(file.Of("text", "note").empty());
  EXPECT_EQ(file.Of("text", "note").front().Text, "MHz (wide gaps left out)");
}

TEST(Chart, HasTicksThatCanBeRead) {
  struct Case {
    double Low;
    double High;
    double Step;
  };
  for (const auto& [low, high, step] :
       {Case{900, 900, 1}, Case{900.2, 900.4, 1}, Case{890, 914, 2}, Case{880, 960, 5}, Case{800, 1000, 10},
        Case{700, 1100, 20}, Case{1000, 2000, 50}, Case{1, 9000, 500}}) {
    const SignalStandardRecord record = {"2", 0, "A", low, 0, 0, 1, 0.2, high - low, 1};
    const auto ticks = TicksOf(Chart({record}));
    ASSERT_GE(ticks.size(), 2u) << low;
    ASSERT_LE(ticks.size(), 22u) << low;
    EXPECT_LE(ticks.begin()->first, low);
    EXPECT_GE(ticks.rbegin()->first, high);
    for (auto tick = ticks.begin(); std::next(tick) != ticks.end(); ++tick) {
      EXPECT_NEAR(std::next(tick)->first - tick->first, step, 1e-9) << low;
      EXPECT_GE(std::next(tick)->second - tick->second, 30) << "the labels would run into each other";
    }
  }
}

TEST(Chart, KeepsTheLabelsOfManyStretchesApart) {
  std::vector<SignalStandardRecord> rows;
  for (int place = 1; place <= 9; ++place) rows.push_back(Standard("A", place * 990 + 7, place * 990 + 27, 30));
  const SvgFile file = Chart(rows);
  const auto ticks = TicksOf(file);
  EXPECT_GE(ticks.size(), 9u) << "every stretch is labelled";
  for (auto tick = ticks.begin(); std::next(tick) != ticks.end(); ++tick)
    EXPECT_GE(std::next(tick)->second - tick->second, 30) << tick->first;
  for (const SvgElement& band : Drawn(file, "downlink")) EXPECT_LE(band.X + band.Width, ticks.rbegin()->second + 100);
}

TEST(Chart, HasALaneForEveryStandardWithItsSubbandsInIt) {
  const SvgFile file = Chart({Standard("A", 890, 935, 1023, 2), Standard("A(A)", 890, 935, 100),
                              Standard("A(B)", 880, 925, 40), Standard("B", 1800, 1900, 100)});
  const auto labels = file.Of("text", "label");
  ASSERT_EQ(labels.size(), 4u + 2u) << "four of the legend";
  EXPECT_EQ(labels[4].Text, "A");
  EXPECT_EQ(labels[5].Text, "B");
  const auto uplinks = Drawn(file, "uplink");
  const auto downlinks = Drawn(file, "downlink");
  ASSERT_EQ(uplinks.size(), 3u);
  EXPECT_EQ(uplinks[0].Title, "A(A): uplink 890 to 910 MHz");
  EXPECT_EQ(uplinks[1].Title, "A(B): uplink 880 to 888 MHz");
  EXPECT_EQ(uplinks[0].Y, uplinks[1].Y);
  const SvgElement firstLane = file.Of("rect", "odd").at(0);
  EXPECT_GE(uplinks[0].Y, firstLane.Y);
  EXPECT_LE(downlinks[0].Y + downlinks[0].Height, firstLane.Y + firstLane.Height);
  EXPECT_GT(uplinks[2].Y, firstLane.Y + firstLane.Height);
  for (std::size_t place = 0; place < uplinks.size(); ++place)
    EXPECT_GE(downlinks[place].Y, uplinks[place].Y + uplinks[place].Height) << "uplinks stand above downlinks";
}

TEST(Chart, OutlinesTheOwnRangeOfAStandardWithSubbands) {
  const SvgFile file =
      Chart({Standard("A", 890, 935, 250, 1), Standard("A(A)", 900, 945, 100), Standard("B", 890, 935, 100)});
  const auto ticks = TicksOf(file);
  const auto [low, left] = *ticks.begin();
  const double scale = (ticks.rbegin()->second - left) / (ticks.rbegin()->first - low);
  const auto outlines = Drawn(file, "own");
  ASSERT_EQ(outlines.size(), 2u) << "of A alone";
  struct Case {
    const char* Kind;
    double Low;
    const char* Title;
  };
  for (std::size_t place = 0;
       const auto& [kind, start, title] :
       {Case{"uplink", 890, "A: own uplink 890 to 940 MHz"}, Case{"downlink", 935, "A: own downlink 935 to 985 MHz"}}) {
    const SvgElement& outline = outlines[place++];
    const SvgElement band = Drawn(file, kind).at(0);
    EXPECT_EQ(outline.Title, title);
    EXPECT_NEAR(outline.X, left + (start - low) * scale, Pixel);
    EXPECT_NEAR(outline.Width, 50 * scale, 2 * Pixel);
    EXPECT_LT(outline.Y, band.Y) << "seen around the sub-band";
    EXPECT_GT(outline.Y + outline.Height, band.Y + band.Height);
  }
  EXPECT_LT(outlines[0].Y + outlines[0].Height, outlines[1].Y);
  for (const SvgElement& mark : Drawn(file, "shared"))
    for (const SvgElement& outline : outlines)
      EXPECT_TRUE(mark.Y + mark.Height < outline.Y || mark.Y > outline.Y + outline.Height) << mark.Title;
  EXPECT_EQ(file.Lanes[0],
            "A; own uplink 890 to 940 MHz; own downlink 935 to 985 MHz; uplink 900 to 920 MHz; downlink 945 to 965 "
            "MHz; shares carriers with B");
}

TEST(Chart, OutlinesAnOwnRangeWithoutSubbandsInSight) {
  const SvgFile file = Chart({Standard("A", 890, 0, 100, 1), Standard("A(A)", 0, 0, 100)});
  EXPECT_EQ(Drawn(file, "own").size(), 1u);
  EXPECT_TRUE(Drawn(file, "uplink").empty());
  EXPECT_LE(TicksOf(file).begin()->first, 890);
  EXPECT_EQ(file.Of("text", "note").size(), 2u) << "those of the axes alone";
}

TEST(Chart, CountsAndMarksWhatStandardsShare) {
  const SvgFile none = Chart({Standard("A", 900, 945, 10), Standard("B", 905, 955, 10)});
  EXPECT_EQ(none.Description, "shared with another standard: 0 pairs among 2 standards");
  EXPECT_TRUE(Drawn(none, "shared").empty());

  const SvgFile one = Chart({Standard("A", 900, 945, 100), Standard("B", 950, 990, 50)});
  EXPECT_EQ(one.Description, "shared with another standard: 1 pair among 2 standards");
  ASSERT_EQ(Drawn(one, "shared").size(), 2u);
  EXPECT_EQ(Drawn(one, "shared")[0].Title, "A: 950 to 960 MHz shared with other standards");
  EXPECT_GT(Drawn(one, "shared")[0].Y, Drawn(one, "downlink")[0].Y) << "below the downlink it belongs to";
  EXPECT_LT(Drawn(one, "shared")[1].Y, Drawn(one, "uplink")[1].Y) << "above the uplink it belongs to";

  const SvgFile all = Chart(std::vector(8, Standard("A", 900, 945, 10)));
  EXPECT_EQ(all.Description, "shared with another standard: 28 pairs among 8 standards");
}

TEST(Chart, SaysInWordsWhatALaneShows) {
  const SvgFile file = Chart({Standard("A", 900, 0, 10), Standard("B", 800, 901, 20), Standard("C", 0, 0, 20)});
  EXPECT_EQ(file.Title, "Channel plan: x");
  EXPECT_EQ(file.Lanes, (std::vector<std::string>{
                            "A; uplink 900 to 902 MHz; shares carriers with B",
                            "B; uplink 800 to 804 MHz; downlink 901 to 905 MHz; shares carriers with A", "C"}));
  std::vector<SignalStandardRecord> many;
  for (const char* name : {"A", "B", "C", "D", "E", "F", "G", "H"}) many.push_back(Standard(name, 900, 0, 10));
  EXPECT_EQ(Chart(many).Lanes.front(), "A; uplink 900 to 902 MHz; shares carriers with B, C, D, E, F and 2 more");
}

TEST(Chart, ShowsEveryCharacterThatXmlCanHold) {
  std::string name;
  for (int code = 1; code < 256; ++code)
    if (code != '\n' && code != '\t') name += static_cast<char>(code);
  std::u32string expected;
  for (int code = 1; code < 256; ++code)
    if (code != '\n' && code != '\t') expected += code < 32 ? U'\uFFFD' : static_cast<char32_t>(code);
  const std::string text = Chart({Standard(name, 900, 945, 1)}).Lanes.front();
  const std::u32string read = QString::fromStdString(text.substr(0, text.find("; uplink"))).toStdU32String();
  ASSERT_EQ(read.size(), expected.size());
  for (std::size_t place = 0; place < read.size(); ++place)
    if (expected[place] < 0x80 || expected[place] > 0x9F) {
      EXPECT_EQ(read[place], expected[place]);
    }
  EXPECT_EQ(Chart({Standard("<a&b>\"'\x80", 900, 0, 1)}).Of("text", "label").back().Text, "<a&b>\"'€");
  EXPECT_EQ(Chart({}, "</svg>&\xFF\x01\xEF\xBF\xBE Łódź").Title, "Channel plan: </svg>&\uFFFD\uFFFD\uFFFD Łódź");
}

// What stands at the left edge ends before the bands, and what is left of a caption before the right edge.
TEST(Chart, CutsWhatIsTooWideForItsPlace) {
  constexpr double roomForALabel = 200;
  constexpr double roomForTheCaption = 1248;
  for (const char letter : {'i', 'n', 'W', '@'}) {
    const SvgFile file =
        Chart({Standard(std::string(200, letter), 900, 945, 1)}, std::string(900, letter) + "/plan.sig");
    const std::u32string label = Utf32FromUtf8(file.Of("text", "label").back().Text);
    EXPECT_TRUE(label.ends_with(U'\u2026'));
    EXPECT_LE(TextWidth(label, 12), roomForALabel) << letter;
    EXPECT_GT(TextWidth(label + static_cast<char32_t>(letter), 12), roomForALabel) << letter;
    const std::u32string caption = Utf32FromUtf8(file.Of("text", "caption").front().Text);
    EXPECT_TRUE(caption.starts_with(U'\u2026') && caption.ends_with(U"/plan.sig"));
    EXPECT_LE(TextWidth(caption, 18), roomForTheCaption) << letter;
    EXPECT_GT(TextWidth(caption + static_cast<char32_t>(letter), 18), roomForTheCaption) << letter;
    EXPECT_TRUE(file.Lanes.front().starts_with(std::string(200, letter) + ";")) << "the words have room for it";
  }
  const std::string narrow(60, 'i');
  EXPECT_EQ(Chart({Standard(narrow, 900, 945, 1)}).Of("text", "label").back().Text, narrow) << "there is room for it";
}

TEST(Chart, DrawsTablesWithoutFrequencies) {
  for (const auto& rows :
       {std::vector<SignalStandardRecord>{}, {Standard("A", 0, 0, 10)}, {Standard("A", -9, 9500, 10)}}) {
    const SvgFile file = Chart(rows);
    EXPECT_TRUE(Drawn(file, "uplink").empty());
    EXPECT_TRUE(file.Of("text", "tick").empty());
    const auto notes = file.Of("text", "note");
    ASSERT_EQ(notes.size(), rows.size());
    for (const SvgElement& note : notes) EXPECT_EQ(note.Text, "no frequencies from 0 to 9000 MHz");
  }
}

TEST(Chart, ShowsEvenOneCarrier) {
  const SvgFile file = Chart({Standard("A", 900, 0, 0), Standard("B", 8000, 0, 0)});
  for (const SvgElement& band : Drawn(file, "uplink")) EXPECT_GE(band.Width, 2);
}

TEST(Chart, RepeatsTheAxisOverMany) {
  struct Case {
    int Standards;
    std::size_t Axes;
  };
  for (const auto& [standards, axes] : {Case{1, 2}, Case{30, 2}, Case{31, 3}, Case{200, 8}}) {
    const SvgFile file =
        ReadSvg(ChartSvg(TableOfNames(std::vector<std::string>(static_cast<std::size_t>(standards), "A")), "x"));
    EXPECT_EQ(file.Of("text", "note").size(), axes) << standards;
    EXPECT_EQ(file.Lanes.size(), static_cast<std::size_t>(standards));
    double bottom = 0;
    for (const SvgElement& band : Drawn(file, "downlink")) {
      EXPECT_GT(band.Y, bottom) << "lanes do not cover each other";
      bottom = band.Y + band.Height;
    }
    EXPECT_LT(bottom, file.Height);
  }
}

// The lines under the drawing, "A | B | 900 to 902 MHz", without their head.
std::vector<std::string> PairLines(const SvgFile& file) {
  std::map<double, std::string> lines;
  for (const SvgElement& text : file.Of("text", "pair"))
    lines[text.Y] += (lines[text.Y].empty() ? "" : " | ") + text.Text;
  std::vector<std::string> texts;
  for (const auto& [y, line] : lines) texts.push_back(line);
  if (!texts.empty()) texts.erase(texts.begin());
  return texts;
}

TEST(Chart, ListsThePairsThatShareUnderTheDrawing) {
  const SvgFile file = Chart({Standard("A<", 900, 945, 100), Standard("B", 910, 960, 200), Standard("C", 1800, 1900, 9),
                              Standard("D", 905, 0, 5, 1), Standard("D(A)", 915, 0, 10)});
  EXPECT_EQ(PairLines(file), (std::vector<std::string>{"A< | B | 910 to 920 MHz, 945 to 950 MHz, 960 to 965 MHz",
                                                       "A< | D | 915 to 917 MHz", "B | D | 915 to 917 MHz"}));
  const auto texts = file.Of("text", "pair");
  EXPECT_EQ(texts.front().Text, "Standards that share carriers, and where");
  for (const SvgElement& band : Drawn(file, "downlink")) EXPECT_LT(band.Y + band.Height, texts.front().Y - 12);
  for (const SvgElement& tick : file.Of("text", "tick")) EXPECT_LT(tick.Y, texts.front().Y - 12);
  EXPECT_LT(texts.back().Y, file.Height);
}

TEST(Chart, ListsNothingWhereNothingIsShared) {
  EXPECT_TRUE(Chart({Standard("A", 900, 945, 10), Standard("B", 1900, 1945, 10)}).Of("text", "pair").empty());
  EXPECT_TRUE(Chart({}).Of("text", "pair").empty());
}

TEST(Chart, ListsSharedRangesInAsManyLinesAsTheyNeed) {
  std::vector<SignalStandardRecord> rows = {Standard("A", 100, 0, 10000), Standard("B", 0, 0, 0, 30)};
  std::vector<std::string> expected;
  for (int band = 0; band < 30; ++band) {
    rows.push_back(Standard("", 200 + 10 * band, 0, 10));
    expected.push_back(std::to_string(200 + 10 * band) + " to " + std::to_string(202 + 10 * band) + " MHz");
  }
  const SvgFile file = Chart(rows);
  const std::vector<std::string> lines = PairLines(file);
  ASSERT_GT(lines.size(), 2u);
  std::vector<std::string> told;
  for (const SvgElement& text : file.Of("text", "pair")) {
    EXPECT_LE(text.X + TextWidth(Utf32FromUtf8(text.Text), 12), 1280 - 16) << text.Text;
    std::istringstream parts(text.Text);
    if (text.Text.ends_with(" MHz"))
      for (std::string part; std::getline(parts >> std::ws, part, ',');) told.push_back(part);
  }
  EXPECT_EQ(told, expected);
}

TEST(Chart, ListsNoMorePairsThanViewersCanDraw) {
  const SvgFile file = Chart(std::vector(200, Standard("A", 900, 945, 10)));
  const std::vector<std::string> lines = PairLines(file);
  EXPECT_EQ(lines.size(), 1001u);
  EXPECT_EQ(lines.back(), "and 18900 more pairs");
  EXPECT_LT(file.Height, 32768);
}

TEST(Chart, KeepsToItself) {
  const std::string svg = ChartSvg(TableOfNames({"A"}), "x");
  for (const char* foreign : {"<script", "href", "@import", "onload", "http"}) {
    const std::size_t found = svg.find(foreign, svg.find("xmlns=") + 40);
    EXPECT_EQ(found, std::string::npos) << foreign;
  }
}

// The colours of a drawing by "class property", "text" for those of all texts.
using Colours = std::map<std::string, std::string>;

void ReadColours(const std::string& rules, Colours& colours) {
  const std::regex rule(R"(([^{}\n]+) \{([^{}]*)\})");
  const std::regex colour(R"((fill|stroke): (#[0-9a-f]{6}))");
  for (std::sregex_iterator found(rules.begin(), rules.end(), rule), end; found != end; ++found) {
    const std::string values = (*found)[2];
    std::istringstream kinds((*found)[1]);
    for (std::string kind; kinds >> kind;)
      for (std::sregex_iterator value(values.begin(), values.end(), colour); value != end; ++value)
        colours[kind.substr(kind.front() == '.', kind.find(',') - (kind.front() == '.')) + " " + (*value)[1].str()] =
            (*value)[2];
  }
}

// How much lighter one is than the other, as the Web Content Accessibility Guidelines count it.
double Contrast(const std::string& one, const std::string& other) {
  const auto luminance = [](const std::string& colour) {
    const auto part = [&](std::size_t place) {
      const double value = std::stoi(colour.substr(place, 2), nullptr, 16) / 255.0;
      return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
  };
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

TEST(Chart, CanBeReadInTheLightAndInTheDark) {
  const std::string svg = ChartSvg(TableOfNames({"A"}), "x");
  EXPECT_NE(svg.find("svg { color-scheme: light dark }"), std::string::npos) << "else browsers frame it in white";
  const std::size_t dark = svg.find("@media (prefers-color-scheme: dark) {");
  ASSERT_NE(dark, std::string::npos);
  Colours colours;
  ReadColours(svg.substr(0, dark), colours);
  for (const std::string& scheme : {svg.substr(0, 0), svg.substr(dark + 37, svg.find("</style>") - dark - 37)}) {
    ReadColours(scheme, colours);
    for (const char* ground : {"page fill", "odd fill"}) {
      for (const char* text : {"text fill", "tick fill", "note fill"})
        EXPECT_GE(Contrast(colours.at(text), colours.at(ground)), 4.5) << text << " on " << ground;
      for (const char* mark : {"uplink fill", "downlink stroke", "own stroke", "shared fill"})
        EXPECT_GE(Contrast(colours.at(mark), colours.at(ground)), 3) << mark << " on " << ground;
    }
  }
  EXPECT_LT(Contrast(colours.at("page fill"), "#000000"), 1.5) << "the dark scheme is dark";
}

}  // namespace
}  // namespace chanplan
