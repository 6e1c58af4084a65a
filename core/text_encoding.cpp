#include "core/text_encoding.h"

#include <array>

namespace chanplan {
namespace {

// Unicode of the bytes 0x80 to 0x9F; elsewhere the code page agrees with Unicode.
// Source: the code page's mapping table as registered with IANA ("windows-1252").
constexpr std::array<char16_t, 32> HighControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                   0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t ToUnicode(unsigned char byte) {
  const bool mapped = byte >= 0x80 && byte < 0x80 + HighControls.size();
  return mapped ? HighControls[byte - std::size_t{0x80}] : byte;
}

}  // namespace

std::string Utf8FromWindows1252(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    const char16_t code = ToUnicode(static_cast<unsigned char>(byte));
    const auto continuation = [&](int shift) { return static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80)
      text += static_cast<char>(code);
    else if (code < 0x800)
      text.append({static_cast<char>(0xC0 | (code >> 6)), continuation(0)});
    else
      text.append({static_cast<char>(0xE0 | (code >> 12)), continuation(6), continuation(0)});
  }
  return text;
}

}  // namespace chanplan
