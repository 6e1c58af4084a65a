#include "report/pdf_listing.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/text_encoding.h"
#include "report/qt_print_surface.h"
#include "tests/core/table_of.h"
#include "tests/report/pdf_picture.h"
#include "tests/report/pdf_reader.h"

namespace chanplan {
namespace {

using testing::BlackRuns;
using testing::FullTableOfNames;
using testing::NamedRow;
using testing::PdfPages;
using testing::PdfPicture;
using testing::PdfText;
using testing::ReadPdf;
using testing::TableOf;
using testing::TableOfNames;

std::string ListingOf(const SignalStandardTable& table, PaperSize paper = PaperSize::Letter) {
  return PdfListing(table, "x", paper);
}

std::vector<std::string> PageTexts(const std::string& pdf) {
  std::vector<std::string> pages;
  std::istringstream text(PdfText(pdf));
  for (std::string page; std::getline(text, page, '\f');) pages.push_back(page);
  return pages;
}

TEST(PdfListing, HasThePaperAsked) {
  EXPECT_NE(ReadPdf("pdfinfo file.pdf", ListingOf({})).find("612 x 792 pts (letter)"), std::string::npos);
  EXPECT_NE(ReadPdf("pdfinfo file.pdf", ListingOf({}, PaperSize::A4)).find("595 x 842 pts (A4)"), std::string::npos);
}

TEST(PdfListing, SaysWhatItIs) {
  const auto* caption = reinterpret_cast<const char*>(u8"ŁΩ/plän.sig");
  const std::string facts = ReadPdf("pdfinfo file.pdf", PdfListing({}, caption, PaperSize::Letter));
  EXPECT_TRUE(std::regex_search(facts, std::regex("Title: +" + std::string(caption) + "\n"))) << facts;
  EXPECT_TRUE(std::regex_search(facts, std::regex("Creator: +Chanplan Editor\n"))) << facts;
}

TEST(PdfListing, HasEveryRecordOnAPageWithAHead) {
  struct Case {
    PaperSize Paper;
    std::vector<int> Records;  // of each page; a line is 0.1551 inch high
  };
  for (const auto& [paper, records] :
       {Case{PaperSize::Letter, {54, 57, 57, 32}}, Case{PaperSize::A4, {59, 62, 62, 17}}}) {
    const auto pages = PageTexts(ListingOf(FullTableOfNames(), paper));
    ASSERT_EQ(pages.size(), records.size());
    int record = 0;
    for (std::size_t page = 0; page < pages.size(); ++page) {
      EXPECT_EQ(pages[page].find("File: x") != std::string::npos, page == 0);
      EXPECT_TRUE(std::regex_search(pages[page], std::regex("Name +Type +Uplink Freq. +Downlink Freq.")));
      for (const int end = record + records[page]; record < end; ++record)
        EXPECT_TRUE(std::regex_search(pages[page], std::regex("\nS" + std::to_string(record) + " +2 +1,850\\.200000 ")))
            << record << " is not on page " << page + 1;
    }
  }
}

TEST(PdfListing, ShowsOnlyItsTitleForAnEmptyTable) {
  const auto pages = PageTexts(ListingOf({}));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_TRUE(std::regex_match(pages[0], std::regex("\\s*File: x\\s*"))) << pages[0];
}

TEST(PdfListing, RulesAreDotsOfTheirResolutionAndFitOnThePaper) {
  constexpr int margin = DotsPerInch / 4;
  for (const PaperSize paper : {PaperSize::Letter, PaperSize::A4}) {
    const testing::Picture page = PdfPicture(ListingOf(TableOfNames({"A", "B", "C"}), paper), DotsPerInch);
    // Right of all values: the thick rule, with the first standard's on it, then those of the others.
    EXPECT_EQ(BlackRuns(page, margin + 77 * DotsPerInch / 10), (std::vector<int>{8, 1, 1}));
    const int rulesStart = margin + 75 * DotsPerInch / 100;
    const int rulesEnd = margin + 775 * DotsPerInch / 100;
    EXPECT_TRUE(BlackRuns(page, rulesStart - 1).empty()) << "rules end flat";
    EXPECT_EQ(BlackRuns(page, rulesEnd - 1), (std::vector<int>{8, 1, 1}));
    // The reader draws lines of one dot a dot too long.
    EXPECT_TRUE(BlackRuns(page, rulesEnd + 1).empty()) << "rules end flat";
    EXPECT_GT(page.Width, rulesEnd) << "the rules are whole";
  }
}

// Of the heads "Type", "Freq.", "Space" and "Step", all of which reach below the line.
TEST(PdfListing, ThickRuleIsClearOfTheLettersAboveIt) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "letters that are not known";
  const testing::Picture page = PdfPicture(ListingOf(TableOfNames({"A"})), DotsPerInch);
  const auto runOfBlack = [&](int row) {
    int longest = 0;
    for (int x = 0, run = 0; x < page.Width; ++x) longest = std::max(longest, run = page.IsBlack(x, row) ? run + 1 : 0);
    return longest;
  };
  int rule = 0;
  while (runOfBlack(rule) < 6 * DotsPerInch) ++rule;
  EXPECT_EQ(runOfBlack(rule - 1), 0);
  EXPECT_GT(runOfBlack(rule - 4), 0) << "and hardly more than clear";
}

TEST(PdfListing, LettersHaveTheirWholeSizes) {
  std::vector<double> sizes;
  const std::string pdf = ListingOf(TableOfNames({"A"}));
  const std::string fonts = ReadPdf("pdftohtml -xml -noroundcoord -zoom 1 -stdout file.pdf", pdf);
  const std::regex size(R"x(<fontspec id="\d+" size="([\d.]+)")x");
  for (std::sregex_iterator found(fonts.begin(), fonts.end(), size), end; found != end; ++found)
    sizes.push_back(std::stod((*found)[1]));
  EXPECT_EQ(sizes, (std::vector<double>{14, 10})) << fonts;
}

TEST(PdfListing, ShowsEveryCharacterOfTheCodePage) {
  const std::string blanksAndHyphen = "\xA0\xAD";
  const std::string unused = "\x81\x8D\x8F\x90\x9D";
  std::vector<std::string> names;
  for (int code = 33; code < 256; ++code) {
    const auto letter = static_cast<char>(code);
    if (code == 127 || (blanksAndHyphen + unused).find(letter) != std::string::npos) continue;
    names.push_back(std::string("<") + letter + ">");
  }
  ASSERT_LE(names.size() / 2, static_cast<std::size_t>(MaxRecords));
  for (const bool second : {false, true}) {
    const auto half = static_cast<std::ptrdiff_t>(names.size() / 2);
    const std::vector<std::string> part(second ? names.begin() + half : names.begin(),
                                        second ? names.end() : names.begin() + half);
    const std::string text = PdfText(ListingOf(TableOfNames(part)));
    for (const std::string& name : part)
      EXPECT_NE(text.find(Utf8FromWindows1252(name)), std::string::npos) << Utf8FromWindows1252(name);
  }
}

TEST(PdfListing, TakesControlCharacters) {
  std::string name;
  for (int code = 1; code < 256; ++code)
    if (code != '\n' && code != '\t') name += static_cast<char>(code);
  const std::string pdf = ListingOf(TableOfNames({name, "behind"}));
  EXPECT_EQ(PdfPages(pdf), 1);
  EXPECT_NE(PdfText(pdf).find("behind"), std::string::npos);
}

TEST(PdfListing, HasTheLettersThatAreAsWideAsArials) {
  const std::string family = QFontInfo(QFont("Arial")).family().remove(' ').toStdString();
  if (family != "LiberationSans" && family != "Arial") GTEST_SKIP() << "no letters of Arial's width";
  const std::string fonts = ReadPdf("pdffonts file.pdf", ListingOf(TableOfNames({"A"})));
  EXPECT_TRUE(std::regex_search(fonts, std::regex("\n(\\w+\\+)?" + family))) << fonts;
  EXPECT_TRUE(std::regex_search(fonts, std::regex(" yes +(yes|no) +yes "))) << "the file carries them: " << fonts;
}

}  // namespace
}  // namespace chanplan
