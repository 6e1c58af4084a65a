#include "core/signal_standard_table.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::RowNames;
using testing::TableOf;
using testing::TableOfNames;

SignalStandardRecord RowWithState(const std::string& state) {
  SignalStandardRecord row;
  row.State = state;
  return row;
}

SignalStandardTable FullTable() {
  SignalStandardTable table;
  while (table.Count < 200) table.Append(NamedRow("S"));
  return table;
}

TEST(SignalStandardRecord, IsEmptyWhenNew) {
  const SignalStandardRecord record;
  EXPECT_EQ(record.State, "");
  EXPECT_EQ(record.Name, "");
  EXPECT_EQ(record, (SignalStandardRecord{"", 0, "", 0, 0, 0, 0, 0, 0, 0}));
}

TEST(SignalStandardRecord, EqualsOnlyARecordWithTheSameTenFields) {
  const SignalStandardRecord record{"1", 2, "N", 3, 4, 5, 6, 7, 8, 9};
  const std::vector<SignalStandardRecord> others = {
      {"2", 2, "N", 3, 4, 5, 6, 7, 8, 9}, {"1", 0, "N", 3, 4, 5, 6, 7, 8, 9}, {"1", 2, "n", 3, 4, 5, 6, 7, 8, 9},
      {"1", 2, "N", 0, 4, 5, 6, 7, 8, 9}, {"1", 2, "N", 3, 0, 5, 6, 7, 8, 9}, {"1", 2, "N", 3, 4, 0, 6, 7, 8, 9},
      {"1", 2, "N", 3, 4, 5, 0, 7, 8, 9}, {"1", 2, "N", 3, 4, 5, 6, 0, 8, 9}, {"1", 2, "N", 3, 4, 5, 6, 7, 0, 9},
      {"1", 2, "N", 3, 4, 5, 6, 7, 8, 0}};
  EXPECT_EQ(record, SignalStandardRecord(record));
  for (const SignalStandardRecord& other : others) EXPECT_NE(record, other);
}

TEST(State, HoldsModulationInBits0And1AndDisplayModeInBit7) {
  struct Case {
    const char* State;
    ModulationType Type;
    const char* Text;
    bool DisplayMode;
  };
  for (const auto& [state, type, text, displayMode] :
       std::vector<Case>{{"0", ModulationType::None, "None", false},
                         {"1", ModulationType::Cdma, "CDMA", false},
                         {"2", ModulationType::Gsm, "GSM", false},
                         {"3", ModulationType::CdmaGsm, "CDMA/GSM", false},
                         {"4", ModulationType::None, "None", false},
                         {"127", ModulationType::CdmaGsm, "CDMA/GSM", false},
                         {"128", ModulationType::None, "None", true},
                         {"131", ModulationType::CdmaGsm, "CDMA/GSM", true},
                         {"255", ModulationType::CdmaGsm, "CDMA/GSM", true},
                         {"256", ModulationType::None, "None", false},
                         {"-1", ModulationType::CdmaGsm, "CDMA/GSM", true},
                         {"-128", ModulationType::None, "None", true},
                         {"", ModulationType::None, "None", false},
                         {"abc", ModulationType::None, "None", false}}) {
    const SignalStandardRecord row = RowWithState(state);
    EXPECT_EQ(Modulation(row), type) << state;
    EXPECT_EQ(ModulationText(row), text) << state;
    EXPECT_EQ(ActiveDisplayMode(row), displayMode) << state;
  }
}

TEST(State, EveryByteMapsToOneOfTheFourModulations) {
  for (int state = 0; state < 256; ++state) {
    const SignalStandardRecord row = RowWithState(std::to_string(state));
    EXPECT_EQ(StateValue(row), state);
    EXPECT_EQ(static_cast<int>(Modulation(row)), state % 4);
    EXPECT_EQ(ActiveDisplayMode(row), state >= 128);
  }
}

TEST(StateValue, RoundsAndStaysWithin64Bits) {
  EXPECT_EQ(StateValue(RowWithState("2.5")), 2);
  EXPECT_EQ(StateValue(RowWithState("3.5")), 4);
  EXPECT_EQ(StateValue(RowWithState("4294967298")), 4294967298);
  EXPECT_EQ(StateValue(RowWithState("9223372036854775808")), std::numeric_limits<std::int64_t>::max());  // 2^63
  EXPECT_EQ(StateValue(RowWithState("1E+30")), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(StateValue(RowWithState("-1E+30")), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(StateValue(RowWithState("1E+400")), std::numeric_limits<std::int64_t>::max());
}

TEST(SignalStandardTable, IsEmptyWhenNew) {
  const SignalStandardTable table;
  EXPECT_EQ(table.Count, 0);
  EXPECT_EQ(table.Row(0), SignalStandardRecord());
  EXPECT_EQ(table.Row(199), SignalStandardRecord());
}

TEST(SignalStandardTable, TakesRowsUpTo200AndThenIsFull) {
  SignalStandardTable table = FullTable();
  EXPECT_EQ(table.Count, 200);
  EXPECT_THROW(table.Append(NamedRow("one too many")), std::out_of_range);
  EXPECT_EQ(table, FullTable());
}

TEST(SignalStandardTable, RefusesIndicesOutsideItsRows) {
  SignalStandardTable table;
  const SignalStandardTable& unchanging = table;
  EXPECT_NO_THROW(table.Row(199));
  for (const int index : {200, 201, 32767, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min()}) {
    EXPECT_THROW(table.Row(index), std::out_of_range) << index;
    EXPECT_THROW(unchanging.Row(index), std::out_of_range) << index;
  }
}

TEST(SignalStandardTable, EqualsATableWithTheSameRowsInUse) {
  SignalStandardTable left = TableOfNames({"A", "B"});
  SignalStandardTable right = left;
  EXPECT_EQ(left, right);
  right.Row(2).Name = "not in use";
  EXPECT_EQ(left, right);
  right.Row(1).Name = "b";
  EXPECT_NE(left, right);
  right = left;
  right.Count = 1;
  EXPECT_NE(left, right);
  left.Count = right.Count = 0;
  left.Row(0).Name = "X";
  EXPECT_EQ(left, right);
}

// DCS with two sub-bands, GSM without, PCS with one.
SignalStandardTable ThreeStandards() {
  return TableOf({NamedRow("DCS", 2), NamedRow("DCS(A)"), NamedRow("DCS(B)"), NamedRow("GSM"), NamedRow("PCS", 1),
                  NamedRow("PCS(A)")});
}

TEST(Groups, StandardIsFollowedByItsSubbands) {
  const SignalStandardTable table = ThreeStandards();
  EXPECT_EQ(GroupEnd(table, 0), 3);
  EXPECT_EQ(GroupEnd(table, 3), 4);
  EXPECT_EQ(GroupEnd(table, 4), 6);
  EXPECT_EQ(StandardIndices(table), (std::vector{0, 3, 4}));
  EXPECT_EQ(ListNames(table), (std::vector<std::string>{"DCS", "GSM", "PCS"}));
}

TEST(Groups, StandardWithoutSubbandsIsFollowedByTheNextStandard) {
  EXPECT_EQ(StandardIndices(TableOfNames({"A", "B", "C"})), (std::vector{0, 1, 2}));
}

TEST(Groups, EmptyTableHasNone) {
  EXPECT_TRUE(StandardIndices({}).empty());
  EXPECT_TRUE(ListNames({}).empty());
}

TEST(Groups, FullTablesAreWalkedToTheirLastRow) {
  EXPECT_EQ(StandardIndices(FullTable()).size(), 200u);
  SignalStandardTable oneStandard = FullTable();
  oneStandard.Row(0).Subbands = 199;
  EXPECT_EQ(StandardIndices(oneStandard), (std::vector{0}));
  EXPECT_EQ(GroupEnd(oneStandard, 0), 200);
}

TEST(Groups, StopAtTheTablesEndWhenTheCountOfSubbandsPointsPastIt) {
  for (const std::int32_t subbands : {2, 3, 200, 32767, 2147483646, 2147483647}) {
    const SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("B", subbands), NamedRow("B(A)")});
    EXPECT_EQ(GroupEnd(table, 1), 3) << subbands;
    EXPECT_EQ(StandardIndices(table), (std::vector{0, 1})) << subbands;
    EXPECT_EQ(table.Row(1).Subbands, subbands);
  }
}

TEST(Groups, NegativeCountOfSubbandsMeansNone) {
  for (const std::int32_t subbands : {-1, -200, std::numeric_limits<std::int32_t>::min()})
    EXPECT_EQ(StandardIndices(TableOf({NamedRow("A", subbands), NamedRow("B")})), (std::vector{0, 1})) << subbands;
}

TEST(SubbandLetter, RunsFromAToTheLastCodeAndStartsAgain) {
  EXPECT_EQ(SubbandLetter(1), 'A');
  EXPECT_EQ(SubbandLetter(2), 'B');
  EXPECT_EQ(SubbandLetter(26), 'Z');
  EXPECT_EQ(SubbandLetter(27), '[');
  EXPECT_EQ(SubbandLetter(191), '\xFF');
  EXPECT_EQ(SubbandLetter(192), 'A');
  EXPECT_EQ(SubbandLetter(199), 'H');
}

TEST(GetTable, FillsThePassedRowsWithRowsInUseAndEmptyRecords) {
  SignalStandardTable table = TableOfNames({"A", "B"});
  table.Row(2).Name = "not in use";
  PassedRows passed(500, NamedRow("old"));
  GetTable(table, passed);
  ASSERT_EQ(passed.size(), 200u);
  EXPECT_EQ(passed[0], NamedRow("A"));
  EXPECT_EQ(passed[1], NamedRow("B"));
  for (std::size_t index = 2; index < 200; ++index) ASSERT_EQ(passed[index], SignalStandardRecord()) << index;
}

TEST(GetTable, MovesAFullTable) {
  PassedRows passed;
  GetTable(FullTable(), passed);
  EXPECT_EQ(passed, PassedRows(200, NamedRow("S")));
}

TEST(GetTable, RefusesACountBeyondTheTable) {
  SignalStandardTable table = FullTable();
  table.Count = 201;
  PassedRows passed;
  EXPECT_THROW(GetTable(table, passed), std::out_of_range);
}

TEST(SetTable, TakesRowsUpToTheLastOneWithAName) {
  PassedRows passed(200);
  passed[0] = NamedRow("A");
  passed[3] = NamedRow("D");
  SignalStandardTable table = TableOfNames({"1", "2", "3", "4", "5", "6"});
  SetTable(passed, table);
  EXPECT_EQ(table.Count, 4);
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"A", "", "", "D"}));
  EXPECT_EQ(table.Row(0), NamedRow("A"));
  EXPECT_EQ(table.Row(1), SignalStandardRecord());
}

TEST(SetTable, LeavesOneRowWhenNoRecordHasAName) {
  SignalStandardTable table = TableOfNames({"1", "2"});
  SetTable(PassedRows(200), table);
  EXPECT_EQ(table, TableOf({SignalStandardRecord()}));
}

TEST(SetTable, LeavesOneRowWhenThereAreNoRecordsAtAll) {
  SignalStandardTable table = TableOfNames({"1", "2"});
  SetTable({}, table);
  EXPECT_EQ(table.Count, 1);
}

TEST(SetTable, TakesNoMoreThan200Records) {
  SignalStandardTable table;
  SetTable(PassedRows(300, NamedRow("S")), table);
  EXPECT_EQ(table, FullTable());
}

TEST(SetTable, GivesBackWhatGetTableTook) {
  PassedRows passed;
  GetTable(ThreeStandards(), passed);
  SignalStandardTable table = FullTable();
  SetTable(passed, table);
  EXPECT_EQ(table, ThreeStandards());
}

TEST(SetTable, DoesNotValidate) {
  const SignalStandardTable source = TableOf({NamedRow("DCS", 1), NamedRow("any name")});
  PassedRows passed;
  GetTable(source, passed);
  SignalStandardTable table;
  SetTable(passed, table);
  EXPECT_EQ(table.Row(1).Name, "any name");
}

}  // namespace
}  // namespace chanplan
