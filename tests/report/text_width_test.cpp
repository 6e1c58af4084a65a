#include "report/text_width.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <cmath>

#include "core/text_encoding.h"

namespace chanplan {
namespace {

Fits NoWiderThan(double room) {
  return [room](std::u32string_view text) { return TextWidth(text, 1) <= room; };
}

TEST(TextWidth, IsTheOneOfTheLetters) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "no letters of Arial's width";
  constexpr int size = 2048;
  QFont font("Arial");
  font.setPixelSize(size);
  font.setHintingPreference(QFont::PreferNoHinting);
  const QFontMetricsF metrics(font);
  const std::string unused = "\x7F\x81\x8D\x8F\x90\x9D";
  const std::string softHyphen = "\xAD";  // not always drawn
  for (int code = 32; code < 256; ++code) {
    if ((unused + softHyphen).find(static_cast<char>(code)) != std::string::npos) continue;
    const std::u32string letter = Utf32FromUtf8(Utf8FromWindows1252(std::string(1, static_cast<char>(code))));
    const double drawn = metrics.horizontalAdvance(QString::fromStdU32String(letter));
    // The middle dot is wider in the second edition of Liberation Sans than in the first and in Helvetica.
    if (letter == U"\u00B7" && std::abs(drawn - 682) <= 1) continue;
    EXPECT_NEAR(TextWidth(letter, size), drawn, 1) << code;
  }
}

TEST(TextWidth, AddsUpToTheFontsSize) {
  EXPECT_DOUBLE_EQ(TextWidth(U"", 12), 0);
  EXPECT_DOUBLE_EQ(TextWidth(U"iW", 2048), 455 + 1933);
  EXPECT_DOUBLE_EQ(TextWidth(U"iW", 12), (455 + 1933) * 12 / 2048.);
  EXPECT_DOUBLE_EQ(TextWidth(U"\u4E2D\U0001F600", 12), 24) << "an em each";
}

TEST(TextThatFits, IsLeftWhole) {
  EXPECT_EQ(StartThatFits(U"AB", NoWiderThan(1.34)), U"AB");
  EXPECT_EQ(EndThatFits(U"AB", NoWiderThan(1.34)), U"AB");
  EXPECT_EQ(StartThatFits(U"", NoWiderThan(0)), U"");
}

TEST(TextThatFits, IsAsMuchAsThereIsRoomFor) {
  const std::u32string text = U"iiiiWWWWiiii";
  for (double room = 1.0; room < TextWidth(text, 1); room += 0.05) {
    for (const std::u32string& shown : {StartThatFits(text, NoWiderThan(room)), EndThatFits(text, NoWiderThan(room))}) {
      EXPECT_LE(TextWidth(shown, 1), room);
      EXPECT_GT(TextWidth(shown, 1), room - 0.95) << "the next letter has no room";
    }
  }
  EXPECT_EQ(StartThatFits(text, NoWiderThan(2.9)), U"iiiiW\u2026");
  EXPECT_EQ(EndThatFits(text, NoWiderThan(2.9)), U"\u2026Wiiii");
}

TEST(TextThatFits, IsTheEllipsisAloneWhereThereIsNoRoom) {
  EXPECT_EQ(StartThatFits(U"WW", NoWiderThan(0.5)), U"\u2026");
  EXPECT_EQ(EndThatFits(U"WW", NoWiderThan(0.5)), U"\u2026");
}

}  // namespace
}  // namespace chanplan
