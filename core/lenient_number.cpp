#include "core/lenient_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace chanplan {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int DigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

struct Number {
  double Value = 0;
  bool Whole = false;  // nothing stands behind it
};

Number RadixNumber(std::string_view digits, int radix) {
  double value = 0;
  const auto end = std::ranges::find_if(digits, [radix](char c) { return DigitValue(c) >= radix; });
  std::for_each(digits.begin(), end, [&](char c) { value = value * radix + DigitValue(c); });
  return {std::min(value, std::numeric_limits<double>::max()), end == digits.end() && !digits.empty()};
}

// Whether a number beyond a double's range is too large rather than too small, which the parser
// does not tell: the place of its first significant digit, moved by the exponent, says so.
bool IsAboveOne(std::string_view number) {
  const std::size_t mark = number.find('e');
  const std::string_view mantissa = number.substr(0, mark);
  std::int64_t exponent = 0;
  if (mark != std::string_view::npos) {
    const bool negative = number[mark + 1] == '-';
    const char* digits = number.data() + mark + (IsDigit(number[mark + 1]) ? 1 : 2);
    if (std::from_chars(digits, number.data() + number.size(), exponent).ec != std::errc()) exponent = 1'000'000'000;
    if (negative) exponent = -exponent;
  }
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
  return point - first + exponent > 0;
}

Number ReadNumber(std::string_view field) {
  std::string text;
  std::ranges::copy_if(field, std::back_inserter(text), [](char c) { return c != ' '; });

  if (text.size() >= 2 && text[0] == '&') {
    const std::string_view digits = std::string_view(text).substr(2);
    if (text[1] == 'H' || text[1] == 'h') return RadixNumber(digits, 16);
    if (text[1] == 'O' || text[1] == 'o') return RadixNumber(digits, 8);
  }

  std::size_t start = 0;
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    start = 1;
  }
  std::size_t end = start;
  bool point = false;
  bool digits = false;
  while (end < text.size() && (IsDigit(text[end]) || (text[end] == '.' && !point))) {
    (text[end] == '.' ? point : digits) = true;
    ++end;
  }
  if (!digits) return {0, text.empty()};

  // The exponent belongs to the number only when it has digits of its own.
  if (end < text.size() && std::string_view("EeDd").find(text[end]) != std::string_view::npos) {
    std::size_t exponent = end + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    if (exponent < text.size() && IsDigit(text[exponent])) {
      text[end] = 'e';
      end = exponent;
      while (end < text.size() && IsDigit(text[end])) ++end;
    }
  }

  double value = 0;
  const auto parsed = std::from_chars(text.data() + start, text.data() + end, value);
  if (parsed.ec == std::errc::result_out_of_range)
    value = IsAboveOne({text.data() + start, end - start}) ? std::numeric_limits<double>::max() : 0;
  return {negative ? -value : value, end == text.size()};
}

}  // namespace

double LeadingNumber(std::string_view text) { return ReadNumber(text).Value; }

bool HasMoreThanNumber(std::string_view text) { return !ReadNumber(text).Whole; }

std::optional<std::int32_t> RoundToInteger(double value) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max()))
    return std::nullopt;
  return static_cast<std::int32_t>(rounded);
}

}  // namespace chanplan
