#include "core/number_picture.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace chanplan {
namespace {

constexpr int SignificantDigits = 15;

std::string ToChars(double value, std::chars_format format, int precision) {
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
  return {buffer.data(), end.ptr};
}

}  // namespace

std::string ShortestDecimal(double value, char decimalSeparator) {
  if (value == 0) return "0";  // negative zero too
  std::string text = ToChars(value, std::chars_format::general, SignificantDigits);
  std::ranges::replace(text, 'e', 'E');
  std::ranges::replace(text, '.', decimalSeparator);
  return text;
}

DecimalDigits ToDecimalDigits(double value) {
  DecimalDigits decimal;
  if (value == 0) return decimal;
  // d.ddd...e[+-]xx
  const std::string text = ToChars(value, std::chars_format::scientific, SignificantDigits - 1);
  const std::size_t mark = text.find('e');
  const char* exponent = text.data() + mark + (text[mark + 1] == '+' ? 2 : 1);
  std::from_chars(exponent, text.data() + text.size(), decimal.Exponent);
  decimal.Negative = text[0] == '-';
  std::ranges::copy_if(text.substr(0, mark), std::back_inserter(decimal.Digits), [](char c) { return c >= '0'; });
  decimal.Digits.erase(decimal.Digits.find_last_not_of('0') + 1);
  decimal.Exponent -= static_cast<int>(decimal.Digits.size()) - 1;
  return decimal;
}

std::string FormatNumber(double value, std::string_view picture, NumberSeparators separators) {
  const std::string_view wholePicture = picture.substr(0, picture.find('.'));
  const int places = static_cast<int>(picture.size() - std::min(picture.size(), wholePicture.size() + 1));
  const auto wholeDigits = static_cast<std::size_t>(std::ranges::count(wholePicture, '0'));
  const bool grouped = wholePicture.find(',') != std::string_view::npos;

  // The digits as a whole number of units of the last place shown.
  auto [negative, digits, exponent] = ToDecimalDigits(value);
  const int shift = exponent + places;
  if (shift >= 0) {
    if (!digits.empty()) digits.append(static_cast<std::size_t>(shift), '0');
  } else {
    const int kept = static_cast<int>(digits.size()) + shift;
    const bool roundUp = kept >= 0 && !digits.empty() && digits[static_cast<std::size_t>(kept)] >= '5';
    digits.resize(static_cast<std::size_t>(std::max(kept, 0)));
    if (roundUp) {
      const std::size_t nines = digits.size() - (digits.find_last_not_of('9') + 1);
      digits.resize(digits.size() - nines);
      if (digits.empty()) digits = "0";
      ++digits.back();
      digits.append(nines, '0');
    }
  }
  if (digits.find_first_not_of('0') == std::string::npos) negative = false;

  const std::size_t needed = wholeDigits + static_cast<std::size_t>(places);
  if (digits.size() < needed) digits.insert(0, needed - digits.size(), '0');
  std::string text = digits.substr(0, digits.size() - static_cast<std::size_t>(places));
  if (grouped)
    for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3)
      text.insert(static_cast<std::size_t>(place), 1, separators.Thousands);
  if (places > 0) text += separators.Decimal + digits.substr(digits.size() - static_cast<std::size_t>(places));
  if (negative) text.insert(text.begin(), '-');
  return text;
}

}  // namespace chanplan
