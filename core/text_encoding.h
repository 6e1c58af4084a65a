// Texts are held as Windows-1252 bytes; this is where they meet Unicode.
#pragma once

#include <string>
#include <string_view>

namespace chanplan {

/// UTF-8 of Windows-1252 bytes. Each of the 256 byte values has a character of its own: the five
/// that the code page leaves open (0x81, 0x8D, 0x8F, 0x90, 0x9D) stand for the control characters
/// of the same number.
std::string Utf8FromWindows1252(std::string_view bytes);

}  // namespace chanplan
