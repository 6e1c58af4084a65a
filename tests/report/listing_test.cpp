#include "report/listing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/report/recording_surface.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::RecordingSurface;
using testing::TableOf;
using testing::TableOfNames;

using Calls = std::vector<std::string>;

// Inches on the recording surface. The first page has title and empty line above its head.
constexpr double Top = 0.75;
constexpr double FirstHead = Top + 2 * 0.14;
constexpr double LineHeight = 0.1;

Calls Printed(const SignalStandardTable& table, RecordingSurface surface = RecordingSurface()) {
  PrintListing(surface, table, "x");
  return surface.Calls;
}

Calls CallsThat(const Calls& calls, std::string_view start) {
  Calls found;
  std::ranges::copy_if(calls, std::back_inserter(found), [&](const std::string& c) { return c.starts_with(start); });
  return found;
}

// What is printed in the name column, heads left out.
Calls NamesPrinted(const SignalStandardTable& table) {
  Calls names;
  for (const std::string& call : CallsThat(Printed(table), "text 0.750 "))
    if (!call.ends_with(" Name")) names.push_back(call.substr(std::string("text 0.750 0.000 ").size()));
  return names;
}

TEST(Listing, OfATableWithoutRecordsIsTheTitleAlone) {
  EXPECT_EQ(Printed({}), (Calls{"font Arial 14", "text 1.000 0.750 File: x", "font Arial 10", "end"}));
}

TEST(Listing, DrawsThis) {
  const SignalStandardTable table = TableOf({{"129", 2, "PCS", 1850.2, 1930.2, 512, 10810, 0.2, 0.25, 1},
                                             {"0", 0, "PCS(A)", 1, 2, 3, 4, 5, 6, 7},
                                             {"0", 0, "PCS(B)", 1, 2, 3, 4, 5, 6, 7}});
  EXPECT_EQ(Printed(table), (Calls{
                                "font Arial 14",
                                "text 1.000 0.750 File: x",
                                "font Arial 10",
                                "text 0.750 1.030 Name",
                                "text 2.750 1.030 Type",
                                "text 3.250 1.030 Uplink Freq.",
                                "text 4.250 1.030 Downlink Freq.",
                                "text 5.250 1.030 Start",
                                "text 5.650 1.030 Stop",
                                "text 6.200 1.030 BW",
                                "text 6.800 1.030 Space",
                                "text 7.400 1.030 Step",
                                "line 0.750 1.130 7.750 1.130 pen 8",
                                "line 0.750 1.130 7.750 1.130 pen 1",
                                "text 0.750 1.130 PCS",
                                "text 2.970 1.130 129",
                                "text 3.880 1.130 1,850.200000",
                                "text 4.880 1.130 1,930.200000",
                                "text 5.470 1.130 512",
                                "text 5.940 1.130 10,810",
                                "text 6.450 1.130 0.200",
                                "text 7.190 1.130 0.2500",
                                "text 7.640 1.130 1",
                                "text 2.990 1.230 0",
                                "text 3.920 1.230 1.000000",
                                "text 4.920 1.230 2.000000",
                                "text 5.490 1.230 3",
                                "text 5.990 1.230 4",
                                "text 6.450 1.230 5.000",
                                "text 7.190 1.230 6.0000",
                                "text 7.640 1.230 7",
                                "line 0.750 1.330 7.750 1.330 pen 1",
                                "text 0.750 1.330 PCS(B)",
                                "text 2.990 1.330 0",
                                "text 3.920 1.330 1.000000",
                                "text 4.920 1.330 2.000000",
                                "text 5.490 1.330 3",
                                "text 5.990 1.330 4",
                                "text 6.450 1.330 5.000",
                                "text 7.190 1.330 6.0000",
                                "text 7.640 1.330 7",
                                "end",
                            }));
}

TEST(Listing, PutsTheFirstRecordDirectlyUnderBothRules) {
  const Calls lines = CallsThat(Printed(TableOfNames({"A"})), "line");
  EXPECT_EQ(lines, (Calls{"line 0.750 1.130 7.750 1.130 pen 8", "line 0.750 1.130 7.750 1.130 pen 1"}));
}

// What the title has room for, 675 letters of the recording surface.
TEST(Listing, TitleThatIsTooLongKeepsItsEnd) {
  const auto titleOf = [](const std::string& caption) {
    RecordingSurface surface;
    PrintListing(surface, {}, caption);
    return surface.Calls.at(1);
  };
  const std::string start = "text 1.000 0.750 File: ";
  const std::string fits(669, 'f');
  EXPECT_EQ(titleOf(fits), start + fits);
  EXPECT_EQ(titleOf("/home/" + fits + "/plan.sig"), start + "\u2026" + std::string(657, 'f') + "/plan.sig");
  const std::string bytesOfALetter = titleOf("/" + std::string(669, 'f') + "\u00DC.sig");
  EXPECT_TRUE(bytesOfALetter.ends_with("f\u00DC.sig")) << bytesOfALetter;
}

TEST(Listing, NamesTheLastSubbandLikeAStandard) {
  struct Case {
    const char* Fact;
    SignalStandardTable Table;
    Calls Names;
  };
  for (const auto& [fact, table, names] : {
           Case{"no sub-band", TableOf({NamedRow("A"), NamedRow("B")}), {"A", "B"}},
           Case{"one", TableOf({NamedRow("A", 1), NamedRow("A(A)"), NamedRow("B")}), {"A", "A(A)", "B"}},
           Case{"two",
                TableOf({NamedRow("A", 2), NamedRow("A(A)"), NamedRow("A(B)"), NamedRow("B")}),
                {"A", "A(B)", "B"}},
           Case{"three",
                TableOf({NamedRow("A", 3), NamedRow("A(A)"), NamedRow("A(B)"), NamedRow("A(C)"), NamedRow("B")}),
                {"A", "A(C)", "B"}},
           Case{"a sub-band with a count of its own",
                TableOf({NamedRow("A", 1), NamedRow("A(A)", 2), NamedRow("B"), NamedRow("C")}),
                {"A", "A(A)", "C"}},
       }) {
    EXPECT_EQ(NamesPrinted(table), names) << fact;
    EXPECT_EQ(CallsThat(Printed(table), "line").size(), names.size() + 1) << fact;
  }
}

TEST(Listing, NamesNothingBehindADamagedCount) {
  for (const int subbands : {4, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()})
    EXPECT_EQ(NamesPrinted(TableOf({NamedRow("A", subbands), NamedRow("B"), NamedRow("C")})), Calls{"A"}) << subbands;
}

TEST(Listing, PrintsCharactersBeyondAscii) {
  EXPECT_EQ(NamesPrinted(TableOfNames({"Z\xFCrich \x80"})), Calls{reinterpret_cast<const char*>(u8"Zürich €")});
}

// A page on which `records` records below a head at `head` reach the limit, and one more passes it.
double HeightFor(double head, int records) { return head + LineHeight + records * LineHeight + 0.8 + 1e-9; }

TEST(Listing, StartsAPageOnceALinePassesTheLimit) {
  constexpr int onFirstPage = 4;
  const RecordingSurface surface(HeightFor(FirstHead, onFirstPage - 1));
  EXPECT_EQ(CallsThat(Printed(TableOfNames({"A", "B", "C"}), surface), "page"), Calls());
  const Calls calls = Printed(TableOfNames({"A", "B", "C", "D", "E"}), surface);
  const auto page = std::ranges::find(calls, "page");
  ASSERT_NE(page, calls.end());
  EXPECT_EQ(*(page - 1), "text 7.640 1.430 1") << "the last value of the fourth record";
  EXPECT_EQ(Calls(page + 1, page + 13), (Calls{
                                            "text 0.750 0.750 Name",
                                            "text 2.750 0.750 Type",
                                            "text 3.250 0.750 Uplink Freq.",
                                            "text 4.250 0.750 Downlink Freq.",
                                            "text 5.250 0.750 Start",
                                            "text 5.650 0.750 Stop",
                                            "text 6.200 0.750 BW",
                                            "text 6.800 0.750 Space",
                                            "text 7.400 0.750 Step",
                                            "line 0.750 0.850 7.750 0.850 pen 8",
                                            "line 0.750 0.850 7.750 0.850 pen 1",
                                            "text 0.750 0.850 E",
                                        }));
  EXPECT_EQ(CallsThat(calls, "text 1.000").size(), 1u) << "the title stands on the first page alone";
  EXPECT_EQ(CallsThat(calls, "page").size(), 1u);
}

TEST(Listing, KeepsToThePageWhileALineEndsOnTheLimit) {
  double y = Top;
  for (const double height : {0.14, 0.14, LineHeight, LineHeight}) y += height;  // title, empty line, head, record
  const double printableHeight = y + 0.8;
  ASSERT_EQ(printableHeight - 0.8, y);
  EXPECT_EQ(CallsThat(Printed(TableOfNames({"A"}), RecordingSurface(printableHeight)), "page"), Calls());
  EXPECT_EQ(CallsThat(Printed(TableOfNames({"A"}), RecordingSurface(printableHeight - 1e-9)), "page").size(), 1u);
}

TEST(Listing, StartsAPageBehindTheLastRecordToo) {
  const RecordingSurface surface(HeightFor(FirstHead, 3));
  const Calls calls = Printed(TableOfNames({"A", "B", "C", "D"}), surface);
  EXPECT_EQ(Calls(calls.end() - 2, calls.end()), (Calls{"page", "end"}));
}

TEST(Listing, HasRoomForTwoMoreRecordsWhereTheTitleIsNot) {
  const RecordingSurface surface(HeightFor(FirstHead, 3));
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow("A"));
  std::vector<int> records = {0};  // on each page
  for (const std::string& call : Printed(table, surface)) {
    if (call == "page") records.push_back(0);
    if (call.starts_with("text 0.750") && !call.ends_with("Name")) ++records.back();
  }
  std::vector<int> expected(1 + (200 - 4) / 6, 6);
  expected.front() = 4;
  expected.push_back((200 - 4) % 6);
  EXPECT_EQ(records, expected);
}

TEST(Listing, PutsEvenOneRecordOnAPageThatIsTooLow) {
  const Calls calls = Printed(TableOfNames({"A", "B"}), RecordingSurface(0.5));
  EXPECT_EQ(CallsThat(calls, "page").size(), 2u);
  EXPECT_EQ(CallsThat(calls, "text 0.750 0.750 Name").size(), 1u);
}

TEST(Listing, StopsWhereTheSurfaceFails) {
  RecordingSurface surface(0.5);
  surface.PagesTaken = 2;
  EXPECT_THROW(PrintListing(surface, TableOfNames({"A", "B", "C"}), "x"), PrintFailure);
  EXPECT_EQ(surface.Calls.back(), "text 7.640 0.850 1") << "nothing is drawn behind the failure";
  EXPECT_EQ(CallsThat(surface.Calls, "end"), Calls());
}

}  // namespace
}  // namespace chanplan
