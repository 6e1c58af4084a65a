#include "report/html_report.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::ReadFile;
using testing::TableOf;
using testing::TempFolder;
using testing::WriteFile;

const std::string Title =
    "<HTML><Table border=1 cellspacing=0 cellpadding=4><tr><td colspan=9 align=center bgcolor=lightgreen><big>File: ";
const std::string Head =
    "<tr><td><big>Name</big></td><td align=center><big>Type</big></td><td align=center><big>Uplink Start Freq. "
    "(MHz)</big></td><td align=center><big>Downlink Start Freq. (MHz)</big></td><td align=center><big>Start "
    "Channel</big></td><td align=center><big>Stop Channel</big></td><td align=center><big>Occupied "
    "Bandwidth</big></td><td align=center><big>Channel Spacing</big></td><td align=center><big>Channel "
    "Step</big></td></tr>";

// The records' lines: what stands between the head and the table's end.
std::string Rows(const SignalStandardTable& table) {
  const std::string text = ReportText(table, "");
  const std::size_t start = text.find(Head) + Head.size();
  return text.substr(start, text.find("</table></html>") - start);
}

std::vector<std::string> NameCells(const SignalStandardTable& table) {
  std::vector<std::string> names;
  const std::string rows = Rows(table);
  const std::string start = "<tr><td>";
  for (std::size_t row = 0; (row = rows.find(start, row)) != std::string::npos;) {
    row += start.size();
    names.push_back(rows.substr(row, rows.find("</td>", row) - row));
  }
  return names;
}

TEST(ReportText, HasTheseBytes) {
  const SignalStandardTable table =
      TableOf({{"129", 1, "PCS", 1850.2, 1930.2, 512, 810, 0.2, 0.2, 1}, {"0", 0, "PCS(A)", 1, 2, 3, 4, 5, 6, 7}});
  EXPECT_EQ(ReportText(table, "C:\\Plans\\pcs.sig"),
            Title + "C:\\Plans\\pcs.sig</td></tr>\r\n" + Head +
                "<tr><td>PCS</td><td>129</td><td>1,850.200000</td><td>1,930.200000</td><td>512</td><td>810</td>"
                "<td>0.200</td><td>0.2000</td><td>1</td></tr>\r\n"
                "<tr><td></td><td>0</td><td>1.000000</td><td>2.000000</td><td>3</td><td>4</td>"
                "<td>5.000</td><td>6.0000</td><td>7</td></tr>\r\n"
                "</table></html>\r\n");
}

TEST(ReportText, OfATableWithoutRecordsIsTitleAndHead) {
  EXPECT_EQ(ReportText({}, "Untitled 1"), Title + "Untitled 1</td></tr>\r\n" + Head + "</table></html>\r\n");
}

TEST(ReportText, FormatsEveryColumn) {
  struct Case {
    SignalStandardRecord Record;
    const char* Cells;
  };
  for (const auto& [record, cells] : {
           Case{{"2", 0, "", 1234.5, 0.0000005, 12345, -1234567, 0.2, 1234.5, 1000},
                "2|1,234.500000|0.000001|12,345|-1,234,567|0.200|1234.5000|1,000"},
           Case{{"", 0, "", -0.0000001, 1e9, 0, 999, 1234.5678, 0.00005, -1},
                "0|0.000000|1,000,000,000.000000|0|999|1,234.568|0.0001|-1"},
           Case{{"255", 0, "", 4294.967295, 0, 2147483647, -2147483648LL, 0.0005, 0.00004, 0},
                "255|4,294.967295|0.000000|2,147,483,647|-2,147,483,648|0.001|0.0000|0"},
           Case{{"-3", 0, "", 0, 0, 0, 0, 0, 0, 0}, "-3|0.000000|0.000000|0|0|0.000|0.0000|0"},
           Case{{"1E+20", 0, "", 0, 0, 0, 0, 0, 0, 0}, "100000000000000000000|0.000000|0.000000|0|0|0.000|0.0000|0"},
       }) {
    std::string expected = "<tr><td></td><td>" + std::string(cells) + "</td></tr>\r\n";
    for (std::size_t bar; (bar = expected.find('|')) != std::string::npos;) expected.replace(bar, 1, "</td><td>");
    EXPECT_EQ(Rows(TableOf({record})), expected);
  }
}

TEST(ReportText, NamesAStandardAndNotItsSubbands) {
  const auto names = NameCells(TableOf({NamedRow("A", 2), NamedRow("A(A)"), NamedRow("A(B)"), NamedRow("B")}));
  EXPECT_EQ(names, (std::vector<std::string>{"A", "", "", "B"}));
}

TEST(ReportText, NamesNothingBehindADamagedCount) {
  constexpr int largest = std::numeric_limits<int>::max();
  constexpr int smallest = std::numeric_limits<int>::min();
  struct Case {
    int Subbands;
    std::vector<std::string> Names;
  };
  for (const auto& [subbands, names] :
       {Case{200, {"A", "", ""}}, Case{largest, {"A", "", ""}}, Case{-1, {"A", "B", "C"}}, Case{-2, {"A", "", ""}},
        Case{smallest, {"A", "", ""}}})
    EXPECT_EQ(NameCells(TableOf({NamedRow("A", subbands), NamedRow("B"), NamedRow("C")})), names) << subbands;
}

TEST(ReportText, KeepsTheBytesOfNamesAndEscapesNothing) {
  EXPECT_EQ(NameCells(TableOf({NamedRow("<b>&\"\x80\xFC\x81\"")})).front(), "<b>&\"\x80\xFC\x81\"");
  EXPECT_NE(ReportText({}, "<i>&.sig").find("File: <i>&.sig</td>"), std::string::npos);
}

TEST(ReportText, PutsTheCaptionIntoTheCodePage) {
  const auto* caption = reinterpret_cast<const char*>(u8"Zürich €, Łódź.sig");
  EXPECT_NE(ReportText({}, caption)
                .find("File: Z\xFCrich \x80, ?\xF3"
                      "d?.sig</td>"),
            std::string::npos);
}

TEST(ReportText, EndsEveryRecordWithCrLf) {
  const std::string text = ReportText(TableOf({NamedRow("A"), NamedRow("B")}), "x");
  const std::size_t first = text.find("\r\n");
  EXPECT_TRUE(text.substr(0, first).ends_with("</td></tr>"));
  EXPECT_EQ(text.substr(first + 2, Head.size()), Head);
  EXPECT_TRUE(text.ends_with("</td></tr>\r\n</table></html>\r\n"));
  EXPECT_EQ(Rows(TableOf({NamedRow("A"), NamedRow("B")})).find("</tr>\r\n<tr>"),
            Rows(TableOf({NamedRow("A")})).size() - 7);
}

TEST(SaveReport, ReplacesAFileCompletely) {
  const TempFolder folder;
  WriteFile(folder / "report.htm", std::string(100'000, 'x'));
  const SignalStandardTable table = TableOf({NamedRow("A")});
  EXPECT_FALSE(SaveReport(folder / "report.htm", table, "a.sig"));
  EXPECT_EQ(ReadFile(folder / "report.htm"), ReportText(table, "a.sig"));
}

TEST(ProposedReportName, IsTheFilesNameUpToItsFirstDot) {
  struct Case {
    const char* Caption;
    const char* Name;
  };
  for (const auto& [caption, name] : {
           Case{"C:\\Plans\\Band.old.sig", "Band.htm"},
           Case{"/home/me/plans/Band.old.sig", "Band.htm"},
           Case{"Band.sig", "Band.htm"},
           Case{"Untitled 1", "Untitled.htm"},
           Case{"Untitled(Query) ", "Untitled.htm"},
           Case{"Factory Default (Read-Only)", "Untitled.htm"},
           Case{"", "Untitled.htm"},
           Case{"/home/me/plan", "Untitled.htm"},
           Case{"C:\\Plans.2004\\Band", "Band.htm"},
           Case{"/home/me.here/plan", "plan.htm"},
           Case{"/home/me/C:\\Plans\\Band.sig", "Band.htm"},
           Case{"C:\\Plans/Band.sig", "Band.htm"},
           Case{"/home/me/.sig", ".htm"},
       })
    EXPECT_EQ(ProposedReportName(caption), name) << caption;
}

}  // namespace
}  // namespace chanplan
