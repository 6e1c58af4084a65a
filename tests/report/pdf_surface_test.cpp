#include "report/pdf_surface.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "report/listing.h"
#include "tests/core/table_of.h"
#include "tests/report/pdf_reader.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::PdfPages;
using testing::PdfText;
using testing::TableOf;

std::string ListingOf(const SignalStandardTable& table, PaperSize paper = LetterPaper, std::string caption = "x") {
  PdfSurface surface(paper);
  PrintListing(surface, table, caption);
  return surface.Bytes();
}

SignalStandardTable FullTable() {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow("Standard " + std::to_string(table.Count)));
  return table;
}

int NumberAfter(const std::string& file, const std::string& text) {
  return std::atoi(file.c_str() + file.rfind(text) + text.size());
}

TEST(PdfSurface, FindsEveryObjectWhereItsTableSays) {
  for (const SignalStandardTable& table : {SignalStandardTable(), FullTable()}) {
    const std::string file = ListingOf(table);
    EXPECT_TRUE(file.starts_with("%PDF-1.4\n"));
    EXPECT_TRUE(file.ends_with("\n%%EOF\n"));
    const auto start = static_cast<std::size_t>(NumberAfter(file, "startxref\n"));
    const int entries = NumberAfter(file, "/Size ");
    ASSERT_EQ(file.substr(start, 7), "xref\n0 ");
    const std::size_t firstEntry = file.find('\n', start + 5) + 1;
    EXPECT_EQ(file.substr(firstEntry, 20), "0000000000 65535 f \n");
    for (int object = 1; object < entries; ++object) {
      const std::string entry = file.substr(firstEntry + static_cast<std::size_t>(object) * 20, 20);
      ASSERT_TRUE(std::regex_match(entry, std::regex("\\d{10} 00000 n \n"))) << entry;
      const std::string head = std::to_string(object) + " 0 obj\n";
      EXPECT_EQ(file.substr(std::stoul(entry), head.size()), head);
    }
  }
}

TEST(PdfSurface, TellsTheLengthOfEveryStream) {
  const std::string file = ListingOf(FullTable());
  const std::string length = "/Length ";
  int streams = 0;
  for (std::size_t place = 0; (place = file.find(length, place)) != std::string::npos; ++streams) {
    place += length.size();
    const std::size_t start = file.find("stream\n", place) + 7;
    const auto bytes = static_cast<std::size_t>(std::atoi(file.c_str() + place));
    EXPECT_EQ(file.substr(start + bytes, 9), "endstream");
  }
  EXPECT_EQ(streams, NumberAfter(file, "/Count "));
}

TEST(PdfSurface, HasThePaperAsked) {
  EXPECT_NE(ListingOf({}).find("/MediaBox [ 0 0 612.000 792.000 ]"), std::string::npos);
  EXPECT_NE(ListingOf({}, A4Paper).find("/MediaBox [ 0 0 595.276 841.890 ]"), std::string::npos);
  EXPECT_DOUBLE_EQ(PdfSurface(LetterPaper).PrintableHeight(), 10.5);
  EXPECT_NEAR(PdfSurface(A4Paper).PrintableHeight(), 11.193, 0.001);
}

TEST(PdfSurface, DrawsWithinAQuarterInchOfThePaper) {
  PdfSurface surface(LetterPaper);
  surface.SetFont("Arial", 10);
  surface.MoveTo(1, 2);
  surface.Print("10 (\\)");
  surface.DrawLine(0, 0, 8, 10.5, 8);
  surface.EndDocument();
  // The text's top is 2.25 inches below the paper's, its baseline 9.05 points lower.
  EXPECT_NE(surface.Bytes().find("BT /F1 10.000 Tf 90.000 620.950 Td (10 \\(\\\\\\)) Tj ET\n"
                                 "0.960 w 18.000 774.000 m 594.000 18.000 l S\n"),
            std::string::npos)
      << surface.Bytes();
}

TEST(PdfSurface, MovesByTheLettersOfTheFontInUse) {
  PdfSurface surface(LetterPaper);
  surface.SetFont("Arial", 10);
  EXPECT_NEAR(surface.TextWidth("1,234.500000") * 72, 10 * 5.56 + 2 * 2.78, 1e-9);
  EXPECT_NEAR(surface.TextWidth("") * 72, 0, 1e-9);
  EXPECT_NEAR(surface.TextWidth(reinterpret_cast<const char*>(u8"€ü")) * 72, 5.56 + 5.56, 1e-9);
  surface.SetFont("Arial", 14);
  EXPECT_NEAR(surface.TextWidth("W-\u0001") * 72, 14 * (0.944 + 0.333), 1e-9);
  surface.MoveTo(1, 1);
  surface.EndLine();
  EXPECT_NEAR(surface.CurrentY(), 1 + 14 * 1.117 / 72, 1e-9);
}

TEST(PdfSurface, WritesEveryByteOfANameSoThatItCanBeRead) {
  std::string name;
  for (int code = 1; code < 256; ++code)
    if (code != '\n' && code != '\t') name += static_cast<char>(code);
  const std::string file = ListingOf(TableOf({NamedRow(name)}));
  EXPECT_NE(file.find("(\\001\\002\\003\\004\\005\\006\\007\\010\\013"), std::string::npos);
  EXPECT_NE(file.find("\\375\\376\\377) Tj"), std::string::npos);
  EXPECT_EQ(PdfPages(file), 1);
}

TEST(PdfSurface, IsReadByAnotherProgram) {
  const std::string text = PdfText(ListingOf(TableOf({NamedRow("Z\xFCrich (\x80)")}), A4Paper, "/home/ŁΩ/plan.sig"));
  for (const char* part : {"File: /home/?"
                           "?/plan.sig",
                           "Name", "Downlink Freq.", "Zürich (€)", "1,850.200000", "0.2500"})
    EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
}

TEST(PdfSurface, HasAsManyPagesAsTheListing) {
  EXPECT_EQ(PdfPages(ListingOf({})), 1);
  // A line is 0.155 inch high: 54 records on the first page, 58 on each of the others.
  EXPECT_EQ(PdfPages(ListingOf(FullTable())), 4);
  EXPECT_EQ(PdfPages(ListingOf(FullTable(), A4Paper)), 4);
}

}  // namespace
}  // namespace chanplan
