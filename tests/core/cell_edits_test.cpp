#include "core/cell_edits.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/core/table_of.h"

namespace chanplan::testing {
namespace {

using enum CellOutcome;

SignalStandardTable Sample() { return TableOf({NamedRow("A", 2), NamedRow("A(A)"), NamedRow("A(B)"), NamedRow("B")}); }

struct StoreCase {
  Field Into;
  const char* Text;
  double Expected;
};

TEST(StoreDetail, TakesTheLeadingNumber) {
  for (const StoreCase& given : {StoreCase{Field::UplinkStartFreq, "890.25", 890.25},
                                 {Field::DownlinkStartFreq, " 9 x", 9},
                                 {Field::Bandwidth, "", 0},
                                 {Field::Spacing, ".", 0},
                                 {Field::StartChannel, "2.5", 2},
                                 {Field::StopChannel, "3.5", 4},
                                 {Field::Step, "-7", -7}}) {
    SignalStandardTable table = Sample();
    EXPECT_EQ(StoreDetail(table, 3, given.Into, given.Text), Stored);
    const double stored = VisitField(
        table.Row(3), FieldOf(given.Into),
        ByType{[](double value) { return value; }, [](std::int32_t value) { return static_cast<double>(value); },
               [](const std::string&) { return -1.0; }});
    EXPECT_EQ(stored, given.Expected) << given.Text;
  }
}

TEST(StoreDetail, TakesANameAsItStands) {
  SignalStandardTable table = Sample();
  EXPECT_EQ(StoreDetail(table, 3, Field::Name, " \xFC "), Stored);
  EXPECT_EQ(table.Row(3).Name, " \xFC ");
}

TEST(StoreDetail, KeepsTheOldValueOfANumberThatIsOutOfRange) {
  SignalStandardTable table = Sample();
  EXPECT_EQ(StoreDetail(table, 0, Field::StopChannel, "2147483648"), OutOfRange);
  EXPECT_EQ(table, Sample());
}

TEST(StoreBand, TakesNothingButANumber) {
  for (const auto& [text, expected] : std::vector<std::pair<const char*, double>>{
           {"890.25", 890.25}, {" 9 ", 9}, {".5", 0.5}, {"5.", 5}, {"-1", -1}}) {
    SignalStandardTable table = Sample();
    EXPECT_EQ(StoreBand(table, 0, 2, Field::UplinkStartFreq, text), Stored) << text;
    EXPECT_EQ(table.Row(2).UplinkStartFreq, expected) << text;
  }
  for (const char* text : {"", " ", ".", "9 x", "1.2.3", "1,5", "nan", "inf", "0x10", "1e3"}) {
    SignalStandardTable table = Sample();
    EXPECT_EQ(StoreBand(table, 0, 1, Field::UplinkStartFreq, text), NotANumber) << text;
    EXPECT_EQ(table, Sample());
  }
}

TEST(StoreBand, RoundsChannelsAndKeepsThoseThatAreOutOfRange) {
  SignalStandardTable table = Sample();
  EXPECT_EQ(StoreBand(table, 0, 1, Field::StartChannel, "2.5"), Stored);
  EXPECT_EQ(table.Row(1).StartChannel, 2);
  EXPECT_EQ(StoreBand(table, 0, 1, Field::StartChannel, "9999999999"), OutOfRange);
  EXPECT_EQ(table.Row(1).StartChannel, 2);
}

struct CountCase {
  std::int32_t Count;
  std::vector<std::string> Expected;
};

TEST(SetSubbandCount, AddsEmptyOnesAndTakesTheLastOnesAway) {
  for (const CountCase& given : {CountCase{4, {"A", "A(A)", "A(B)", "", "", "B"}},
                                 {2, {"A", "A(A)", "A(B)", "B"}},
                                 {1, {"A", "A(A)", "B"}},
                                 {0, {"A", "B"}},
                                 {-5, {"A", "B"}}}) {
    SignalStandardTable table = Sample();
    EXPECT_EQ(SetSubbandCount(table, 0, given.Count), CountOutcome::Set);
    EXPECT_EQ(RowNames(table), given.Expected);
    EXPECT_EQ(table.Row(0).Subbands, static_cast<int>(given.Expected.size()) - 2);
  }
}

TEST(SetSubbandCount, StopsAt199Records) {
  SignalStandardTable table = TableOfNames(std::vector<std::string>(197, "S"));
  EXPECT_EQ(SetSubbandCount(table, 100, 3), CountOutcome::TableFull);
  EXPECT_EQ(table.Count, 199);
  EXPECT_EQ(table.Row(100).Subbands, 2);
  EXPECT_EQ(SetSubbandCount(table, 100, 2), CountOutcome::Set);
  EXPECT_EQ(SetSubbandCount(table, 0, 1), CountOutcome::TableFull);
  EXPECT_EQ(table.Row(0).Subbands, 0);
}

TEST(SetSubbandCount, PutsADamagedCountRightFirst) {
  for (const auto& [damaged, count] : std::vector<std::pair<int, int>>{{500, 3}, {500, 1}, {500, 0}, {2, 1}}) {
    SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("B", damaged), NamedRow("B(A)")});
    EXPECT_EQ(SetSubbandCount(table, 1, count), CountOutcome::Set);
    EXPECT_EQ(table.Row(1).Subbands, count);
    EXPECT_EQ(table.Count, 2 + count);
  }
  SignalStandardTable negative = TableOf({NamedRow("A", -3), NamedRow("B")});
  EXPECT_EQ(SetSubbandCount(negative, 0, 1), CountOutcome::Set);
  EXPECT_EQ(RowNames(negative), (std::vector<std::string>{"A", "", "B"}));
}

TEST(StateCode, PacksBothListsIntoTheLowByte) {
  EXPECT_EQ(GetStateCode(0, 0), 0);
  EXPECT_EQ(GetStateCode(3, 1), 131);
  EXPECT_EQ(GetStateCode(2, 0), 2);
  EXPECT_EQ(GetStateCode(-1, 1), 128);
  EXPECT_EQ(GetStateCode(-1, -1), 0);
}

TEST(StateCode, LeavesOtherBitsAlone) {
  for (const auto& [former, code, expected] : std::vector<std::tuple<const char*, int, const char*>>{
           {"", 131, "131"}, {"131", 0, "0"}, {"127", 0, "124"}, {"1024", 3, "1027"}, {"-1", 0, "-132"}}) {
    SignalStandardRecord standard = NamedRow("A");
    standard.State = former;
    SetStateCode(standard, code);
    EXPECT_EQ(standard.State, expected) << former;
  }
}

}  // namespace
}  // namespace chanplan::testing
