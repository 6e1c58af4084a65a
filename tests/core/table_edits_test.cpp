#include "core/table_edits.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/core/table_of.h"

namespace chanplan::testing {
namespace {

using Names = std::vector<std::string>;

// Two standards without sub-bands around one with two.
SignalStandardTable Sample() {
  return TableOf({NamedRow("A"), NamedRow("B", 2), NamedRow("B(A)"), NamedRow("B(B)"), NamedRow("C")});
}

Names NamesOf(const std::vector<SignalStandardRecord>& rows) { return RowNames(TableOf(rows)); }

SignalStandardTable FullUpTo(int rows) { return TableOfNames(Names(static_cast<std::size_t>(rows), "S")); }

struct SelectionCase {
  int First;
  int Last;
  Names Copied;
  Names Left;
};

void PrintTo(const SelectionCase& given, std::ostream* output) { *output << given.First << " to " << given.Last; }

class SelectedRows : public ::testing::TestWithParam<SelectionCase> {};

TEST_P(SelectedRows, CopyAndDeleteTheSameRows) {
  const SelectionCase& expected = GetParam();
  SignalStandardTable table = Sample();
  EXPECT_EQ(NamesOf(CopyStandards(table, expected.First, expected.Last)), expected.Copied);
  EXPECT_EQ(table, Sample());
  DeleteStandards(table, expected.First, expected.Last);
  EXPECT_EQ(RowNames(table), expected.Left);
}

INSTANTIATE_TEST_SUITE_P(TableEdits, SelectedRows,
                         ::testing::Values(SelectionCase{0, 0, {"A"}, {"B", "B(A)", "B(B)", "C"}},
                                           SelectionCase{1, 1, {"B", "B(A)", "B(B)"}, {"A", "C"}},
                                           SelectionCase{0, 1, {"A", "B", "B(A)", "B(B)"}, {"C"}},
                                           SelectionCase{1, 4, {"B", "B(A)", "B(B)", "C"}, {"A"}},
                                           SelectionCase{4, 4, {"C"}, {"A", "B", "B(A)", "B(B)"}},
                                           SelectionCase{0, 4, {"A", "B", "B(A)", "B(B)", "C"}, {}}));

TEST(TableEdits, RowsThatWereFreedAreEmpty) {
  SignalStandardTable table = Sample();
  DeleteStandards(table, 0, 1);
  EXPECT_EQ(table.Count, 1);
  for (int index = 1; index < 6; ++index) EXPECT_EQ(table.Row(index), SignalStandardRecord()) << index;
}

TEST(TableEdits, SubbandsPromisedBeyondTheEndAreNotCopiedOrDeleted) {
  SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("B", 150), NamedRow("B(A)")});
  DeleteStandards(table, 1, 1);
  EXPECT_EQ(RowNames(table), Names{"A"});
}

// Copied to a place where others follow, a group that a full table cut short would take those for
// its missing sub-bands.
TEST(TableEdits, CopyHasAsManyRowsAsTheCountPromises) {
  const SignalStandardTable cut = TableOf({NamedRow("A"), NamedRow("B", 3), NamedRow("B(A)")});
  EXPECT_EQ(NamesOf(CopyStandards(cut, 1, 1)), (Names{"B", "B(A)", "", ""}));
  EXPECT_EQ(NamesOf(CopyStandards(cut, 0, 1)), (Names{"A", "B", "B(A)", "", ""}));
  SignalStandardTable target = TableOfNames({"C", "D"});
  PasteStandards(target, 0, CopyStandards(cut, 1, 1));
  EXPECT_EQ(ListNames(target), (Names{"B", "C", "D"}));
}

TEST(TableEdits, CopyIsNeverMoreThanATableTakes) {
  const SignalStandardTable cut = TableOf({NamedRow("A"), NamedRow("B", 2147483647), NamedRow("B(A)")});
  EXPECT_EQ(CopyStandards(cut, 0, 1).size(), 200u);
  EXPECT_EQ(CopyStandards(TableOf({NamedRow("A", -2147483647 - 1)}), 0, 0).size(), 1u);
}

TEST(TableEdits, BlankStandardDoesNotBecomeASubbandOfTheLastOne) {
  SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("B", 5), NamedRow("B(A)")});
  EXPECT_TRUE(AppendBlankStandard(table));
  EXPECT_EQ(ListNames(table), (Names{"A", "B", "[New Standard]"}));
  EXPECT_EQ(table.Row(1).Subbands, 1);
}

TEST(TableEdits, LastCountIsPutRightOnlyWhereItPromisesTooMuch) {
  SignalStandardTable table = TableOf({NamedRow("A", 1), NamedRow("A(A)"), NamedRow("B", -2)});
  const SignalStandardTable former = table;
  PutLastCountRight(table);
  EXPECT_EQ(table, former);
  SignalStandardTable empty;
  PutLastCountRight(empty);
  EXPECT_EQ(empty.Count, 0);
}

TEST(TableEdits, PasteInsertsBeforeARow) {
  SignalStandardTable table = Sample();
  const std::vector pasted = {NamedRow("X"), NamedRow("Y")};
  PasteStandards(table, 1, pasted);
  EXPECT_EQ(RowNames(table), (Names{"A", "X", "Y", "B", "B(A)", "B(B)", "C"}));
}

TEST(TableEdits, PasteDropsFromTheEndWhatDoesNotFit) {
  SignalStandardTable table = FullUpTo(199);
  table.Row(198).Name = "last";
  const std::vector pasted = {NamedRow("X"), NamedRow("Y")};
  PasteStandards(table, 0, pasted);
  EXPECT_EQ(table.Count, 200);
  EXPECT_EQ(table.Row(0).Name, "X");
  EXPECT_EQ(table.Row(1).Name, "Y");
  EXPECT_EQ(table.Row(199).Name, "S");
}

TEST(TableEdits, PasteOfAWholeTableIntoAFullOneKeepsOnlyThePasted) {
  SignalStandardTable table = FullUpTo(200);
  const std::vector pasted(200, NamedRow("X"));
  PasteStandards(table, 0, pasted);
  EXPECT_EQ(RowNames(table), Names(200, "X"));
}

TEST(TableEdits, PasteFillsTheTableFromExactly200Rows) {
  const std::vector ten(10, NamedRow("X"));
  EXPECT_FALSE(PasteFillsTable(FullUpTo(189), ten));
  EXPECT_TRUE(PasteFillsTable(FullUpTo(190), ten));
  EXPECT_TRUE(PasteFillsTable(FullUpTo(191), ten));
}

TEST(TableEdits, BlankStandardGoesToTheEnd) {
  SignalStandardTable table = Sample();
  EXPECT_TRUE(AppendBlankStandard(table));
  EXPECT_EQ(table.Count, 6);
  EXPECT_EQ(table.Row(5), (SignalStandardRecord{.State = "0", .Name = "[New Standard]"}));
}

TEST(TableEdits, BlankStandardTakesTheLastPlaceAndNoMore) {
  SignalStandardTable table = FullUpTo(199);
  EXPECT_TRUE(AppendBlankStandard(table));
  EXPECT_EQ(table.Count, 200);
  EXPECT_FALSE(AppendBlankStandard(table));
  EXPECT_EQ(table.Count, 200);
}

TEST(TableEdits, SubbandIsAddedEmptyBehindTheLastOne) {
  SignalStandardTable table = Sample();
  EXPECT_TRUE(AddSubband(table, 1));
  EXPECT_EQ(RowNames(table), (Names{"A", "B", "B(A)", "B(B)", "", "C"}));
  EXPECT_EQ(table.Row(1).Subbands, 3);
  EXPECT_EQ(table.Row(4), SignalStandardRecord());
}

TEST(TableEdits, SubbandLeavesTheLastPlaceToAStandard) {
  SignalStandardTable table = FullUpTo(198);
  EXPECT_TRUE(AddSubband(table, 0));
  const SignalStandardTable former = table;
  EXPECT_FALSE(AddSubband(table, 0));
  EXPECT_EQ(table, former);
}

TEST(TableEdits, TheLastSubbandIsRemoved) {
  SignalStandardTable table = Sample();
  RemoveSubband(table, 1);
  EXPECT_EQ(RowNames(table), (Names{"A", "B", "B(A)", "C"}));
  EXPECT_EQ(table.Row(1).Subbands, 1);
}

TEST(TableEdits, StandardWithoutSubbandsLosesNothing) {
  SignalStandardTable table = Sample();
  RemoveSubband(table, 0);
  EXPECT_EQ(table, Sample());
}

TEST(TableEdits, PromisedSubbandsGoBeforeThoseThatAreThere) {
  SignalStandardTable table = TableOf({NamedRow("A", 2), NamedRow("A(A)")});
  RemoveSubband(table, 0);
  EXPECT_EQ(RowNames(table), (Names{"A", "A(A)"}));
  RemoveSubband(table, 0);
  EXPECT_EQ(RowNames(table), Names{"A"});
}

}  // namespace
}  // namespace chanplan::testing
