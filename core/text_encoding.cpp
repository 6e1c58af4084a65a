#include "core/text_encoding.h"

#include <algorithm>
#include <array>

namespace chanplan {
namespace {

// Unicode of the bytes 0x80 to 0x9F; elsewhere the code page agrees with Unicode.
// Source: the code page's mapping table as registered with IANA ("windows-1252").
constexpr std::array<char16_t, 32> HighControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                   0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t ToUnicode(unsigned char byte) {
  const bool mapped = byte >= 0x80 && byte < 0x80 + HighControls.size();
  return mapped ? HighControls[byte - std::size_t{0x80}] : byte;
}

char ToByte(char32_t code) {
  const auto mapped = std::ranges::find(HighControls, code);
  if (mapped != HighControls.end()) return static_cast<char>(0x80 + (mapped - HighControls.begin()));
  const bool same = code < 0x80 || (code >= 0xA0 && code <= 0xFF);
  return same ? static_cast<char>(code) : '?';
}

constexpr char32_t NoCharacter = 0xFFFD;

// Cuts the first character off `text`, which is not empty, or its first byte where no character begins.
char32_t TakeCharacter(std::string_view& text) {
  const auto byte = [&](std::size_t place) { return static_cast<unsigned char>(text[place]); };
  const char32_t lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
  char32_t code = length < 2 ? lead : lead & (0x7Fu >> length);
  bool valid = length > 0 && length <= text.size();
  for (std::size_t place = 1; valid && place < length; ++place) {
    valid = (byte(place) & 0xC0) == 0x80;
    code = (code << 6) | (byte(place) & 0x3Fu);
  }
  // Each length has a first code of its own; surrogates are halves of characters.
  constexpr std::array<char32_t, 5> first = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && code >= first[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  text.remove_prefix(valid ? length : 1);
  return valid ? code : NoCharacter;
}

}  // namespace

std::string Utf8FromWindows1252(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) AppendUtf8(text, ToUnicode(static_cast<unsigned char>(byte)));
  return text;
}

std::string Windows1252FromUtf8(std::string_view text) {
  std::string bytes;
  for (const char32_t code : Utf32FromUtf8(text)) bytes += ToByte(code);
  return bytes;
}

std::u32string Utf32FromUtf8(std::string_view text) {
  std::u32string codes;
  while (!text.empty()) codes += TakeCharacter(text);
  return codes;
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto continuation = [&](int shift) { return static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80)
    text += static_cast<char>(code);
  else if (code < 0x800)
    text.append({static_cast<char>(0xC0 | (code >> 6)), continuation(0)});
  else if (code < 0x10000)
    text.append({static_cast<char>(0xE0 | (code >> 12)), continuation(6), continuation(0)});
  else
    text.append({static_cast<char>(0xF0 | (code >> 18)), continuation(12), continuation(6), continuation(0)});
}

std::string HarmlessText(std::string text) {
  for (std::size_t index = 0; index < text.size(); ++index) {
    const auto code = static_cast<unsigned char>(text[index]);
    const bool isUpperControl =
        code == 0xC2 && index + 1 < text.size() && static_cast<unsigned char>(text[index + 1]) < 0xA0;
    if (isUpperControl) text.erase(index, 1);
    if (isUpperControl || code == 127 || (code < 32 && code != '\n' && code != '\t')) text[index] = '?';
  }
  return text;
}

}  // namespace chanplan
