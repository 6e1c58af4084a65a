// Writing numbers as text: the shortest decimal form of files, and the pictures of grids and prints.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace chanplan {

/// `value` with up to 15 significant digits, without trailing zeros or thousands separators, with
/// an exponent only where the magnitude needs one: 1850.2, 0.03, 200, 1E-05.
std::string ShortestDecimal(double value, char decimalSeparator = '.');

/// A number's shortest decimal form taken apart: its value is `Digits` (no leading zeros; empty for
/// zero) as a whole number, times 10 to the power of `Exponent`.
struct DecimalDigits {
  bool Negative = false;
  std::string Digits;
  int Exponent = 0;
};
DecimalDigits ToDecimalDigits(double value);

/// The characters that a picture's "." and "," stand for.
struct NumberSeparators {
  char Decimal = '.';
  char Thousands = ',';
};

/// `value` in the form of `picture`, such as "#0", "#,##0" or "#0.0000": "#" and "0" are digit
/// places ("0" is always filled), "," groups thousands, "." is the decimal point. The number's
/// shortest decimal form is rounded to the places after the point, halves away from zero; what
/// rounds to zero has no sign.
std::string FormatNumber(double value, std::string_view picture, NumberSeparators separators = {});

}  // namespace chanplan
