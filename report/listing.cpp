#include "report/listing.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "core/text_encoding.h"
#include "report/formatted_values.h"
#include "report/text_width.h"

namespace chanplan {
namespace {

constexpr std::string_view FontName = "Arial";
constexpr double TitlePoints = 14;
constexpr double ListPoints = 10;
constexpr int ThickPen = 8;
constexpr int ThinPen = 1;

// Inches.
constexpr double TitleLeft = 1.0;
constexpr double Top = 0.75;
constexpr double NameLeft = 0.75;
constexpr double RuleRight = 7.75;
constexpr double BottomMargin = 0.8;

struct ValueColumn {
  std::string_view Head;
  double HeadLeft;
  double ValueRight;
};
constexpr std::array<ValueColumn, PrintedValues> ValueColumns = {{{"Type", 2.75, 3.0},
                                                                  {"Uplink Freq.", 3.25, 4.0},
                                                                  {"Downlink Freq.", 4.25, 5.0},
                                                                  {"Start", 5.25, 5.5},
                                                                  {"Stop", 5.65, 6.0},
                                                                  {"BW", 6.2, 6.5},
                                                                  {"Space", 6.8, 7.25},
                                                                  {"Step", 7.4, 7.65}}};

void PrintAt(PrintSurface& surface, double x, std::string_view text) {
  surface.MoveTo(x, surface.CurrentY());
  surface.Print(text);
}

void DrawRule(PrintSurface& surface, int penWidth) {
  surface.DrawLine(NameLeft, surface.CurrentY(), RuleRight, surface.CurrentY(), penWidth);
}

void PrintHead(PrintSurface& surface) {
  PrintAt(surface, NameLeft, "Name");
  for (const ValueColumn& column : ValueColumns) PrintAt(surface, column.HeadLeft, column.Head);
  surface.EndLine();
  DrawRule(surface, ThickPen);
}

void PrintValues(PrintSurface& surface, const SignalStandardRecord& record) {
  const auto values = FormattedValues(record);
  for (std::size_t column = 0; column < values.size(); ++column)
    PrintAt(surface, ValueColumns[column].ValueRight - surface.TextWidth(values[column]), values[column]);
  surface.EndLine();
}

// A path's end tells more than its start.
std::string Title(const PrintSurface& surface, std::string_view caption) {
  constexpr std::string_view start = "File: ";
  const auto titleOf = [&](std::u32string_view shown) {
    std::string title(start);
    for (const char32_t letter : shown) AppendUtf8(title, letter);
    return title;
  };
  const auto fits = [&](std::u32string_view shown) {
    return surface.TextWidth(titleOf(shown)) <= RuleRight - TitleLeft;
  };
  return titleOf(EndThatFits(Utf32FromUtf8(caption), fits));
}

}  // namespace

void PrintListing(PrintSurface& surface, const SignalStandardTable& table, std::string_view caption) {
  surface.SetFont(FontName, TitlePoints);
  surface.MoveTo(TitleLeft, Top);
  surface.Print(Title(surface, caption));
  surface.EndLine();
  surface.EndLine();
  surface.SetFont(FontName, ListPoints);

  bool headNeeded = true;
  std::int32_t countdown = 0;
  for (int index = 0; index < table.Count; ++index) {
    const SignalStandardRecord& record = table.Row(index);
    if (std::exchange(headNeeded, false)) PrintHead(surface);
    if (countdown == 0) {
      DrawRule(surface, ThinPen);
      PrintAt(surface, NameLeft, Utf8FromWindows1252(record.Name));
      countdown = record.Subbands;
    }
    if (countdown > 0) --countdown;
    PrintValues(surface, record);
    if (surface.CurrentY() > surface.PrintableHeight() - BottomMargin) {
      surface.NewPage();
      surface.MoveTo(0, Top);
      headNeeded = true;
    }
  }
  surface.EndDocument();
}

}  // namespace chanplan
