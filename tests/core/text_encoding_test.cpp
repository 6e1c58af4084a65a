#include "core/text_encoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace chanplan {
namespace {

TEST(Utf8FromWindows1252, LeavesAsciiAsItIs) {
  for (int code = 0; code < 0x80; ++code) {
    const std::string text(1, static_cast<char>(code));
    EXPECT_EQ(Utf8FromWindows1252(text), text) << code;
  }
  EXPECT_EQ(Utf8FromWindows1252(""), "");
}

TEST(Utf8FromWindows1252, KnowsTheCharactersBeyondAscii) {
  struct Case {
    const char* Bytes;
    const char8_t* Text;
  };
  for (const auto& [bytes, text] :
       {Case{"\x80", u8"\u20AC"}, Case{"\x85", u8"\u2026"}, Case{"\x8A\x9A", u8"\u0160\u0161"},
        Case{"\x8E\x9E", u8"\u017D\u017E"}, Case{"\x93\x94", u8"\u201C\u201D"}, Case{"\x99", u8"\u2122"},
        Case{"\x9F", u8"\u0178"}, Case{"\xA0", u8"\u00A0"}, Case{"\xB5", u8"\u00B5"}, Case{"Gr\366\337e", u8"Größe"},
        Case{"\xFF", u8"ÿ"}})
    EXPECT_EQ(Utf8FromWindows1252(bytes), reinterpret_cast<const char*>(text));
}

TEST(Utf8FromWindows1252, GivesOpenPlacesTheControlCharacterOfTheirNumber) {
  for (const char byte : {'\x81', '\x8D', '\x8F', '\x90', '\x9D'})
    EXPECT_EQ(Utf8FromWindows1252({&byte, 1}), (std::string{'\xC2', byte}));
}

TEST(Utf8FromWindows1252, GivesEveryByteACharacterOfItsOwn) {
  std::set<std::string> characters;
  for (int code = 0; code < 256; ++code) {
    const std::string text = Utf8FromWindows1252(std::string(1, static_cast<char>(code)));
    EXPECT_EQ(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }), 1) << code;
    characters.insert(text);
  }
  EXPECT_EQ(characters.size(), 256u);
}

TEST(Windows1252FromUtf8, BringsEveryByteBack) {
  for (int code = 0; code < 256; ++code) {
    const std::string byte(1, static_cast<char>(code));
    EXPECT_EQ(Windows1252FromUtf8(Utf8FromWindows1252(byte)), byte) << code;
  }
}

TEST(Windows1252FromUtf8, PutsAQuestionMarkForWhatThePageLacks) {
  EXPECT_EQ(Windows1252FromUtf8(reinterpret_cast<const char*>(u8"ŁΩя: € \U0001F4F6")), "???: \x80 ?");
  EXPECT_EQ(Windows1252FromUtf8("\xC2\x80"), "?") << "a control character that is not on the page";
}

TEST(Utf32FromUtf8, TakesEveryLengthOfCharacters) {
  const std::string text =
      reinterpret_cast<const char*>(u8"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF");
  const std::u32string codes = U"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
  EXPECT_EQ(Utf32FromUtf8(text), codes);
  std::string again;
  for (const char32_t code : codes) AppendUtf8(again, code);
  EXPECT_EQ(again, text);
}

TEST(Utf32FromUtf8, ReplacesEveryByteThatIsNoCharacter) {
  struct Case {
    const char* Fact;
    const char* Bytes;
    const char32_t* Codes;
  };
  for (const auto& [fact, bytes, codes] :
       {Case{"continuation alone", "a\x80z", U"a\uFFFDz"}, Case{"cut short", "\xE2\x82", U"\uFFFD\uFFFD"},
        Case{"cut short by a letter", "\xE2\x82z", U"\uFFFD\uFFFDz"}, Case{"overlong", "\xC0\xAF", U"\uFFFD\uFFFD"},
        Case{"overlong of three", "\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD"},
        Case{"half a surrogate pair", "\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},
        Case{"beyond the last code", "\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
        Case{"no lead byte", "\xF8\x90\x80\x80\xFF", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"}})
    EXPECT_EQ(Utf32FromUtf8(bytes), codes) << fact;
}

TEST(HarmlessText, HasNoControlCharacterButLineEndsAndTabs) {
  struct Case {
    const char* Text;
    const char* Harmless;
  };
  for (const auto& [text, harmless] :
       {Case{"a\tb\nc ~", "a\tb\nc ~"}, Case{"\x1B[31m\r\x01", "?[31m??"}, Case{"a\x7Fz", "a?z"},
        Case{"\xC2\x80\xC2\x9B[31m", "??[31m"}, Case{"\xC2\xA0\xC3\x9B\xE2\x82\xAC", "\xC2\xA0\xC3\x9B\xE2\x82\xAC"},
        Case{"cut \xC2", "cut \xC2"}})
    EXPECT_EQ(HarmlessText(text), harmless);
}

}  // namespace
}  // namespace chanplan
