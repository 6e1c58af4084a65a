#include "report/pdf_listing.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/text_encoding.h"
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
    std::vector<int> Records;  // of each page; a line is 0.155 inch high
  };
  for (const auto& [paper, records] :
       {Case{PaperSize::Letter, {55, 57, 57, 31}}, Case{PaperSize::A4, {59, 62, 62, 17}}}) {
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

TEST(PdfListing, RulesAreDotsOfASixHundredthInchAndFitOnThePaper) {
  constexpr int resolution = 600;
  constexpr int margin = resolution / 4;
  for (const PaperSize paper : {PaperSize::Letter, PaperSize::A4}) {
    const testing::Picture page = PdfPicture(ListingOf(TableOfNames({"A", "B", "C"}), paper), resolution);
    // Right of all values: the thick rule, with the first standard's on it, then those of the others.
    EXPECT_EQ(BlackRuns(page, margin + 77 * resolution / 10), (std::vector<int>{8, 1, 1}));
    const int rulesEnd = margin + 775 * resolution / 100;
    EXPECT_EQ(BlackRuns(page, rulesEnd - 2), (std::vector<int>{8, 1, 1}));
    EXPECT_TRUE(BlackRuns(page, rulesEnd + 8).empty());
    EXPECT_GT(page.Width, rulesEnd + 8) << "the rules are whole";
  }
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
