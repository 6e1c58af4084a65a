// Reading numbers from text without ever failing.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace chanplan {

/// The value of the longest prefix of `text` that reads as a number, 0 when there is none.
/// Blanks are skipped wherever they stand. A number is an optional sign, digits with at most one
/// ".", and an optional exponent "E" or "D" (either case) with its own sign and digits; or "&H"
/// with hexadecimal or "&O" with octal digits. "," ends the number. A magnitude beyond a double's
/// range reads as the largest finite double, so that it can be written and read again.
double LeadingNumber(std::string_view text);

/// Whether there is more in `text` than LeadingNumber read of it, blanks aside. Empty text is read whole.
bool HasMoreThanNumber(std::string_view text);

/// `value` rounded to the nearest integer, halves to the even neighbour; nothing when the result
/// lies outside the signed 32-bit range.
std::optional<std::int32_t> RoundToInteger(double value);

}  // namespace chanplan
