#include "report/text_width.h"

#include <algorithm>
#include <array>
#include <ranges>

namespace chanplan {
namespace {

constexpr int Em = 2048;  // letters are drawn on a square of it

struct LettersOfAWidth {
  int Width;
  std::u32string_view Letters;
};
// Those that are an em wide are left out.
constexpr auto Widths = std::to_array<LettersOfAWidth>({
    {391, U"'"},
    {455, U"ijl‚‘’"},
    {532, U"|¦"},
    {569, U" !,./:;I[\\]ft\u00A0·ÌÍÎÏìíîï"},
    {682, U"()-`r„ˆ‹“”˜›¡¨\u00AD²³´¸¹"},
    {684, U"{}"},
    {717, U"•"},
    {727, U"\""},
    {748, U"º"},
    {758, U"ª"},
    {797, U"*"},
    {819, U"°"},
    {961, U"^"},
    {1024, U"Jcksvxyzšžçýÿ"},
    {1100, U"¶"},
    {1124, U"±÷"},
    {1131, U"¯"},
    {1139, U"#$0123456789?L_abdeghnopqu€ƒ†‡–¢£¤¥§«»àáâãäåèéêëðñòóôõöùúûüþ"},
    {1180, U"µ"},
    {1196, U"+<=>~¬×"},
    {1251, U"FTZŽ¿ßø"},
    {1366, U"&ABEKPSVXYŠŸÀÁÂÃÄÅÈÉÊËÝÞ"},
    {1479, U"CDHNRUwÇÐÑÙÚÛÜ"},
    {1509, U"©®"},
    {1593, U"GOQÒÓÔÕÖØ"},
    {1706, U"Mm"},
    {1708, U"¼½¾"},
    {1821, U"%æ"},
    {1933, U"Wœ"},
    {2079, U"@"},
});

constexpr int WidthOf(char32_t letter) {
  for (const auto& [width, letters] : Widths)
    if (letters.find(letter) != std::u32string_view::npos) return width;
  return Em;
}

constexpr auto LatinWidths = [] {
  std::array<int, 256> widths{};
  for (char32_t letter = 0; letter < widths.size(); ++letter) widths[letter] = WidthOf(letter);
  return widths;
}();

constexpr char32_t Ellipsis = U'…';

// The most letters for which `shown` makes a text that fits.
template <typename Shown>
std::size_t MostThatFit(std::size_t letters, const Fits& fits, const Shown& shown) {
  const auto counts = std::views::iota(std::size_t{1}, letters + 1);
  return static_cast<std::size_t>(
      std::ranges::partition_point(counts, [&](std::size_t count) { return fits(shown(count)); }) - counts.begin());
}

}  // namespace

double TextWidth(std::u32string_view text, double fontSize) {
  double units = 0;
  for (const char32_t letter : text) units += letter < LatinWidths.size() ? LatinWidths[letter] : WidthOf(letter);
  return units * fontSize / Em;
}

std::u32string StartThatFits(std::u32string_view text, const Fits& fits) {
  if (fits(text)) return std::u32string(text);
  const auto shown = [&](std::size_t count) { return std::u32string(text.substr(0, count)) + Ellipsis; };
  return shown(MostThatFit(text.size(), fits, shown));
}

std::u32string EndThatFits(std::u32string_view text, const Fits& fits) {
  if (fits(text)) return std::u32string(text);
  const auto shown = [&](std::size_t count) { return Ellipsis + std::u32string(text.substr(text.size() - count)); };
  return shown(MostThatFit(text.size(), fits, shown));
}

}  // namespace chanplan
