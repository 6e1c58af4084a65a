#include "core/table_merge.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::RowNames;
using testing::TableOf;
using testing::TableOfNames;

using Names = std::vector<std::string>;

// A table of rows of these names, marked by a step so that it is seen which side a row came from.
SignalStandardTable Marked(const Names& names, std::int32_t step) {
  SignalStandardTable table = TableOfNames(names);
  for (int index = 0; index < table.Count; ++index) table.Row(index).Step = step;
  return table;
}

struct MergeCase {
  const char* Fact;
  Names Base;
  Names Source;
  bool Replace;
  Names Merged;  // "*" marks the rows of the source
};

Names MergedNames(const MergeOutcome& outcome) {
  Names names = RowNames(outcome.Table);
  for (int index = 0; index < outcome.Table.Count; ++index)
    if (outcome.Table.Row(index).Step == 2) names[static_cast<std::size_t>(index)] += "*";
  return names;
}

TEST(MergeTables, CountsTheRowsWithoutANameThatItLeavesOut) {
  for (const bool replace : {false, true}) {
    const MergeOutcome merged = MergeTables(TableOfNames({"A", "", "B"}), TableOfNames({"", "", "B", "C"}), replace);
    EXPECT_EQ(merged.Nameless, 3);
    EXPECT_EQ(merged.Dropped, 0);
    EXPECT_EQ(RowNames(merged.Table), (Names{"A", "B", "C"}));
  }
  EXPECT_EQ(MergeTables(TableOfNames({"A"}), TableOfNames({"A", "B"}), false).Nameless, 0);
}

TEST(BaseName, EndsBeforeTheFirstBracket) {
  struct Case {
    const char* Name;
    const char* Base;
  };
  for (const auto& [name, base] : {Case{"PCS 1900(A)", "PCS 1900"}, Case{"PCS 1900", "PCS 1900"}, Case{"", ""},
                                   Case{"A(", "A"}, Case{"A(B)(C)", "A"}, Case{"A )", "A )"}, Case{" (A)", " "},
                                   Case{"(A)", "(A)"}, Case{"(", "("}, Case{"(A)(B)", "(A)(B)"}})
    EXPECT_EQ(BaseName(name), base);
}

TEST(MergeTables, DecidesMatchesAsAsked) {
  const std::vector<MergeCase> cases = {
      {"base wins a match", {"A", "B"}, {"B", "C"}, false, {"A", "B", "C*"}},
      {"source wins a match in place", {"A", "B"}, {"B", "C"}, true, {"A", "B*", "C*"}},
      {"base's sub-bands go with it", {"X", "X(A)", "X(B)"}, {"X", "X(A)"}, true, {"X*", "X(A)*"}},
      {"source's sub-bands are dropped with it", {"X"}, {"X", "X(A)", "Y"}, false, {"X", "Y*"}},
      {"replaced standards keep their places",
       {"A", "B", "B(A)", "C"},
       {"C", "C(A)", "D", "B"},
       true,
       {"A", "B*", "C*", "C(A)*", "D*"}},
      {"case counts", {"GSM"}, {"gsm", "Gsm"}, false, {"GSM", "gsm*", "Gsm*"}},
      {"case counts in replacing too", {"GSM"}, {"gsm"}, true, {"GSM", "gsm*"}},
      {"blanks count", {"GSM"}, {"GSM ", " GSM"}, false, {"GSM", "GSM *", " GSM*"}},
      {"nothing matches", {"A"}, {"B"}, true, {"A", "B*"}},
      {"empty base", {}, {"A", "A(A)"}, false, {"A*", "A(A)*"}},
      {"empty source", {"A", "A(A)"}, {}, true, {"A", "A(A)"}},
      {"rows without a name are left out", {"A", "", "B"}, {"", "C", ""}, false, {"A", "B", "C*"}},
      {"rows without a name are left out in replacing too",
       {"A", "", "B"},
       {"", "B", "", "C"},
       true,
       {"A", "B*", "C*"}},
      {"a name that begins with a bracket is its own base", {"(A)", "(B)"}, {"(B)"}, true, {"(A)", "(B)*"}},
      {"all of the source's groups of a name are dropped", {"A"}, {"A", "B", "A(A)"}, false, {"A", "B*"}},
      {"only the source's first group of a name takes the place",
       {"A", "C"},
       {"A", "B", "A"},
       true,
       {"A*", "C", "B*", "A*"}},
      {"a group of the base that comes again stays", {"A", "B", "A"}, {"A"}, true, {"A*", "B", "A"}},
      {"a source group ends at the next base name",
       {"A"},
       {"A", "A(A)", "B", "B(A)"},
       true,
       {"A*", "A(A)*", "B*", "B(A)*"}},
      {"a row without a name ends a group of the source", {"A", "Z"}, {"A", "", "A(A)"}, true, {"A*", "Z", "A(A)*"}}};
  for (const auto& [fact, base, source, replace, merged] : cases) {
    const MergeOutcome outcome = MergeTables(Marked(base, 1), Marked(source, 2), replace);
    EXPECT_EQ(MergedNames(outcome), merged) << fact;
    EXPECT_FALSE(outcome.Truncated) << fact;
  }
}

TEST(MergeTables, CopiesWholeRecords) {
  const SignalStandardRecord base{"131", 1, "A", 1, 2, 3, 4, 5, 6, 7};
  const SignalStandardRecord source{"7", 0, "B", 11, 12, 13, 14, 15, 16, 17};
  EXPECT_EQ(MergeTables(TableOf({base}), TableOf({source}), false).Table, TableOf({base, source}));
}

TEST(MergeTables, LeavesOneEmptyRowWhereNothingHasAName) {
  EXPECT_EQ(MergeTables({}, {}, false).Table, TableOf({SignalStandardRecord()}));
  EXPECT_EQ(MergeTables(TableOfNames({"", ""}), TableOfNames({""}), true).Table, TableOf({SignalStandardRecord()}));
}

TEST(MergeTables, DoesNotValidate) {
  const SignalStandardTable table = TableOf({NamedRow("A", 1), NamedRow("any name")});
  EXPECT_EQ(MergeTables(table, {}, false).Table, table);
}

TEST(MergeTables, ChangesNeitherSide) {
  const SignalStandardTable base = TableOfNames({"A", "B"});
  const SignalStandardTable source = TableOfNames({"B", "C"});
  for (const bool replace : {false, true}) MergeTables(base, source, replace);
  EXPECT_EQ(base, TableOfNames({"A", "B"}));
  EXPECT_EQ(source, TableOfNames({"B", "C"}));
}

// `count` rows "PREFIX1", "PREFIX2", ...
Names Numbered(const std::string& prefix, int count) {
  Names names;
  for (int number = 1; number <= count; ++number) names.push_back(prefix + std::to_string(number));
  return names;
}

TEST(MergeTables, LosesWhatDoesNotFit200Rows) {
  for (const bool replace : {false, true}) {
    const MergeOutcome outcome = MergeTables(Marked(Numbered("b", 150), 1), Marked(Numbered("s", 60), 2), replace);
    EXPECT_TRUE(outcome.Truncated);
    EXPECT_EQ(outcome.Table.Count, 200);
    EXPECT_EQ(outcome.Table.Row(149).Name, "b150");
    EXPECT_EQ(outcome.Table.Row(150).Name, "s1");
    EXPECT_EQ(outcome.Table.Row(199).Name, "s50");
  }
}

TEST(MergeTables, SaysTruncatedFromExactly200RowsOn) {
  struct Case {
    int SourceRows;
    int Count;
    bool Truncated;
  };
  for (const auto& [rows, count, truncated] :
       {Case{49, 199, false}, Case{50, 200, true}, Case{51, 200, true}, Case{200, 200, true}})
    for (const bool replace : {false, true}) {
      const MergeOutcome outcome = MergeTables(Marked(Numbered("b", 150), 1), Marked(Numbered("s", rows), 2), replace);
      EXPECT_EQ(outcome.Table.Count, count) << rows;
      EXPECT_EQ(outcome.Truncated, truncated) << rows;
    }
}

TEST(MergeTables, FullBaseIsTruncatedThoughNothingIsAdded) {
  const SignalStandardTable base = Marked(Numbered("b", 200), 1);
  const MergeOutcome outcome = MergeTables(base, {}, false);
  EXPECT_TRUE(outcome.Truncated);
  EXPECT_EQ(outcome.Table, base);
}

TEST(MergeTables, StopsInTheMiddleOfAGroupThatTakesThePlaceOfAnother) {
  Names group = {"X"};
  for (int number = 1; number < 100; ++number) group.push_back("X(" + std::to_string(number) + ")");
  Names base = Numbered("b", 150);
  base.push_back("X");
  base.push_back("last");
  const MergeOutcome outcome = MergeTables(Marked(base, 1), Marked(group, 2), true);
  EXPECT_TRUE(outcome.Truncated);
  EXPECT_EQ(outcome.Table.Count, 200);
  EXPECT_EQ(outcome.Table.Row(150), Marked({"X"}, 2).Row(0));
  EXPECT_EQ(outcome.Table.Row(199), Marked({"X(49)"}, 2).Row(0));
}

TEST(MergeTruncatedText, HasItsExactText) {
  EXPECT_EQ(MergeTruncatedText,
            "There were too many records to merge tables.\r\nThe Merged table has been truncated at 200 records.");
}

// What is added behind a group that a full table cut short would become its sub-bands.
TEST(MergeWholeGroups, RowsThatFollowACutGroupStayStandards) {
  const auto base = TableOf({NamedRow("A"), NamedRow("B", 3), NamedRow("B(A)")});
  const auto source = TableOf({NamedRow("C"), NamedRow("A", 4), NamedRow("A(A)")});
  for (const bool replace : {false, true})
    EXPECT_EQ(ListNames(MergeWholeGroups(base, source, replace).Table), (std::vector<std::string>{"A", "B", "C"}));
}

}  // namespace
}  // namespace chanplan
