#include "core/validation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::RowNames;
using testing::TableOf;

const std::string StartFrequency = "Start frequency appears out of range.";
const std::string StopFrequency = "Stop frequency appears out of range.";
const std::string StopBelowStart = "Stop channel is less than start channel.";
const std::string StartNegative = "Start channel is less than zero.";
const std::string StopNegative = "Stop channel is less than zero.";
const std::string StepRange = "Step size may be out of range.";
const std::string SpacingRange = "Spacing may be out of range.";
const std::string BandwidthRange = "Bandwidth may be out of range.";
const std::string Duplicate = "Duplicate Signal Standard name.";

std::string Warning(const std::string& name, const std::string& message) {
  return "Warning:\t" + name + "\t" + message + "\r\n";
}

std::string GroupWarnings(const std::string& name) {
  return Warning(name, StepRange) + Warning(name, SpacingRange) + Warning(name, BandwidthRange);
}

// The warnings of a table whose list view is still empty, as it is while a file is loaded.
std::string Warnings(SignalStandardTable table) { return ValidateTable(table, {}); }

// The warnings of one standard with a sub-band, so that the checks of the group look at it too;
// only those about the standard itself.
std::string WarningsOfStandard(SignalStandardRecord standard) {
  standard.Name = "S";
  standard.Subbands = 1;
  SignalStandardTable table = TableOf({standard});
  return ValidateTable(table, {});
}

TEST(ValidateTable, FindsNothingInAnEmptyTable) {
  SignalStandardTable table;
  EXPECT_EQ(ValidateTable(table, {}), "");
  EXPECT_EQ(table, SignalStandardTable());
}

TEST(ValidateTable, FindsNothingInASoundTable) {
  EXPECT_EQ(Warnings(TableOf({NamedRow("DCS", 1), NamedRow("DCS(A)"), NamedRow("GSM")})), "");
}

TEST(ValidateTable, SubBandsAreNamedAfterTheirStandard) {
  SignalStandardTable table = TableOf(
      {NamedRow("DCS", 2), NamedRow("x"), NamedRow(""), NamedRow("GSM"), NamedRow("PCS 1900", 1), NamedRow("DCS(C)")});
  ValidateTable(table, {});
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"DCS", "DCS(A)", "DCS(B)", "GSM", "PCS 1900", "PCS 1900(A)"}));
}

TEST(ValidateTable, SubBandTakesBandwidthSpacingAndStepOfItsStandardAndNothingElse) {
  const SignalStandardRecord standard{"131", 2, "DCS", 1710.2, 1805.2, 512, 885, 0.2, 0.25, 3};
  SignalStandardTable table =
      TableOf({standard, {"7", 0, "x", 1, 2, 3, 4, 5, 6, 7}, {"abc", -8, "", 9, 10, 11, 12, 13, 14, 15}});
  ValidateTable(table, {});
  EXPECT_EQ(table, TableOf({standard,
                            {"7", 0, "DCS(A)", 1, 2, 3, 4, 0.2, 0.25, 3},
                            {"abc", -8, "DCS(B)", 9, 10, 11, 12, 0.2, 0.25, 3}}));
}

TEST(ValidateTable, StandardsWithoutSubBandsStayAsTheyAre) {
  const SignalStandardTable before = TableOf({NamedRow("A"), NamedRow("B(A)", -1), {"", 0, "", 0, 0, 0, 0, 0, 0, 0}});
  SignalStandardTable table = before;
  ValidateTable(table, {});
  EXPECT_EQ(table, before);
}

TEST(ValidateTable, LettersRunOnAfterZ) {
  SignalStandardTable table = TableOf({NamedRow("S", 199)});
  while (table.Count < 200) table.Append(NamedRow(""));
  ValidateTable(table, {});
  EXPECT_EQ(table.Row(26).Name, "S(Z)");
  EXPECT_EQ(table.Row(27).Name, "S([)");
  EXPECT_EQ(table.Row(191).Name, "S(\xFF)");
  EXPECT_EQ(table.Row(192).Name, "S(A)");
  EXPECT_EQ(table.Row(199).Name, "S(H)");
}

TEST(ValidateTable, StandardWithinAnOpenGroupStartsItsOwn) {
  SignalStandardTable table =
      TableOf({NamedRow("A", 3), NamedRow("x"), NamedRow("B", 1), NamedRow("y"), NamedRow("C")});
  ValidateTable(table, {});
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"A", "A(A)", "B", "B(A)", "C"}));
}

TEST(ValidateTable, GroupThatPointsPastTheEndTakesTheRowsThereAre) {
  SignalStandardTable table = TableOf({NamedRow("A", 2147483647), NamedRow("x"), NamedRow("y")});
  table.Row(3).Name = "not in use";
  ValidateTable(table, {});
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"A", "A(A)", "A(B)"}));
  EXPECT_EQ(table.Row(0).Subbands, 2147483647);
  EXPECT_EQ(table.Row(3).Name, "not in use");
}

TEST(ValidateTable, CutsACountBeyondTheTableWithoutAWord) {
  SignalStandardTable table = TableOf({NamedRow("S", 199)});
  table.Count = 201;
  for (int index = 1; index < 200; ++index) table.Row(index) = NamedRow("");
  EXPECT_EQ(ValidateTable(table, {}), "");
  EXPECT_EQ(table.Count, 200);
}

TEST(ValidateTable, FrequenciesLieFrom0To9000Megahertz) {
  struct Case {
    double Frequency;
    bool Warns;
  };
  for (const auto& [frequency, warns] :
       {Case{0, false}, Case{-0.0, false}, Case{9000, false}, Case{1850.2, false}, Case{9000.0001, true},
        Case{-0.5, true}, Case{-1e-9, true}, Case{1e300, true}}) {
    SignalStandardRecord row = NamedRow("");
    row.UplinkStartFreq = frequency;
    EXPECT_EQ(WarningsOfStandard(row), warns ? Warning("S", StartFrequency) : "") << frequency;
    row = NamedRow("");
    row.DownlinkStartFreq = frequency;
    EXPECT_EQ(WarningsOfStandard(row), warns ? Warning("S", StopFrequency) : "") << frequency;
  }
}

TEST(ValidateTable, ChannelsAreInOrderAndNotNegative) {
  struct Case {
    std::int32_t Start;
    std::int32_t Stop;
    std::string Found;
  };
  for (const auto& [start, stop, found] :
       {Case{0, 0, ""}, Case{5, 5, ""}, Case{10, 5, Warning("S", StopBelowStart)},
        Case{-1, 0, Warning("S", StartNegative)},
        Case{-1, -2, Warning("S", StopBelowStart) + Warning("S", StartNegative) + Warning("S", StopNegative)},
        Case{-2, -1, Warning("S", StartNegative) + Warning("S", StopNegative)},
        Case{0, -1, Warning("S", StopBelowStart) + Warning("S", StopNegative)}}) {
    SignalStandardRecord row = NamedRow("");
    row.StartChannel = start;
    row.StopChannel = stop;
    EXPECT_EQ(WarningsOfStandard(row), found) << start << " to " << stop;
  }
}

TEST(ValidateTable, StepSpacingAndBandwidthArePositive) {
  struct Case {
    std::int32_t Step;
    double Spacing;
    double Bandwidth;
    std::string Found;
  };
  for (const auto& [step, spacing, bandwidth, found] :
       {Case{1, 1e-9, 1e-9, ""}, Case{0, 1, 1, Warning("S", StepRange)}, Case{-5, 1, 1, Warning("S", StepRange)},
        Case{1, 0, 1, Warning("S", SpacingRange)}, Case{1, -1, 1, Warning("S", SpacingRange)},
        Case{1, 1, 0, Warning("S", BandwidthRange)}, Case{1, 1, -1, Warning("S", BandwidthRange)},
        Case{0, 0, 0, GroupWarnings("S")}}) {
    SignalStandardRecord row = NamedRow("");
    row.Step = step;
    row.Spacing = spacing;
    row.Bandwidth = bandwidth;
    EXPECT_EQ(WarningsOfStandard(row), found) << step << " " << spacing << " " << bandwidth;
  }
}

TEST(ValidateTable, ListsAllFindingsOfARowInTheOrderOfTheChecks) {
  EXPECT_EQ(Warnings(TableOf({{"0", 1, "S", -1, 9001, -1, -2, 0, 0, 0}})),
            Warning("S", StartFrequency) + Warning("S", StopFrequency) + Warning("S", StopBelowStart) +
                Warning("S", StartNegative) + Warning("S", StopNegative) + GroupWarnings("S"));
}

TEST(ValidateTable, ListsFindingsRowByRowUnderTheNewNames) {
  SignalStandardRecord standard = NamedRow("DCS", 2);
  SignalStandardRecord subband = NamedRow("old name");
  standard.StartChannel = 1000;
  subband.UplinkStartFreq = -1;
  EXPECT_EQ(Warnings(TableOf({standard, NamedRow("x"), subband})),
            Warning("DCS", StopBelowStart) + Warning("DCS(B)", StartFrequency));
}

TEST(ValidateTable, GroupChecksGiveEveryRowThreeWarningsWhereNoStandardHasSubBands) {
  EXPECT_EQ(Warnings(TableOf({NamedRow("A"), NamedRow("B"), NamedRow("C")})),
            GroupWarnings("A") + GroupWarnings("B") + GroupWarnings("C"));
}

TEST(ValidateTable, GroupChecksLookAtTheLastStandardThatHadSubBands) {
  SignalStandardRecord stepless = NamedRow("Stepless", 1);
  stepless.Step = 0;
  SignalStandardRecord bare{"0", 0, "Bare", 0, 0, 0, 0, 0, 0, 0};
  // Bare stands before the first such standard, behind a sound one, and behind Stepless.
  EXPECT_EQ(Warnings(TableOf({bare, bare, NamedRow("Sound", 1), NamedRow(""), bare, stepless, NamedRow(""), bare})),
            GroupWarnings("Bare") + GroupWarnings("Bare") + Warning("Stepless", StepRange) +
                Warning("Stepless(A)", StepRange) + Warning("Bare", StepRange));
}

TEST(ValidateTable, GroupChecksAreLeftOutWhileTheGroupOfRow1IsOpen) {
  const SignalStandardRecord faulty{"0", 2, "S", 0, 0, 0, 0, 0, 0, 0};
  const std::vector<SignalStandardRecord> group = {faulty, NamedRow(""), NamedRow("")};
  const auto behind = [&](int rows) {
    std::vector<SignalStandardRecord> all(static_cast<std::size_t>(rows), NamedRow("Plain"));
    all.insert(all.end(), group.begin(), group.end());
    all.push_back(NamedRow("Last"));
    return Warnings(TableOf(all));
  };
  const std::string ofGroup = GroupWarnings("S") + GroupWarnings("S(A)") + GroupWarnings("S(B)");
  EXPECT_EQ(behind(0), ofGroup + GroupWarnings("Last"));
  EXPECT_EQ(behind(1), GroupWarnings("Plain") + GroupWarnings("Last"));
  EXPECT_EQ(behind(2), GroupWarnings("Plain") + GroupWarnings("Plain") + ofGroup + GroupWarnings("Last"));
}

TEST(ValidateTable, OtherChecksAreMadeWhileTheGroupOfRow1IsOpen) {
  SignalStandardRecord standard{"0", 1, "S", -1, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(Warnings(TableOf({NamedRow("Plain"), standard, standard})),
            GroupWarnings("Plain") + Warning("S", StartFrequency) + Warning("S", StartFrequency) + GroupWarnings("S"));
}

// The warnings of duplicates among the names of the list view; the table itself plays no part.
std::string DuplicateWarnings(const std::vector<std::string>& listNames) {
  SignalStandardTable table;
  return ValidateTable(table, listNames);
}

TEST(ValidateTable, DuplicateNamesAreListedOncePerLaterTwin) {
  EXPECT_EQ(DuplicateWarnings({"GSM 900", "DCS", "GSM 900"}), Warning("GSM 900", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"A", "A", "A"}), Warning("A", Duplicate) + Warning("A", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"A", "B", "B", "A"}), Warning("A", Duplicate) + Warning("B", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"", ""}), Warning("", Duplicate));
}

TEST(ValidateTable, NamesThatDifferInCaseOrBlanksAreNoDuplicates) {
  EXPECT_EQ(DuplicateWarnings({"GSM 900", "gsm 900", "GSM 900 ", " GSM 900", "GSM  900"}), "");
  EXPECT_EQ(DuplicateWarnings({"A"}), "");
  EXPECT_EQ(DuplicateWarnings({}), "");
}

TEST(ValidateTable, DuplicatesComeLastAndOnlyFromTheListView) {
  SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("A")});
  const std::string ofRows = GroupWarnings("A") + GroupWarnings("A");
  EXPECT_EQ(ValidateTable(table, {}), ofRows);
  EXPECT_EQ(ValidateTable(table, ListNames(table)), ofRows + Warning("A", Duplicate));
}

TEST(ValidateTable, SubBandsAreNotLookedAtForDuplicates) {
  SignalStandardTable table = TableOf({NamedRow("A", 1), NamedRow(""), NamedRow("A(A)")});
  ValidateTable(table, {});
  EXPECT_EQ(ValidateTable(table, ListNames(table)), "");
}

TEST(WarningLines, AreTheLinesWithoutTheirEnds) {
  EXPECT_TRUE(WarningLines("").empty());
  const std::string warnings = Warning("A", StepRange) + Warning("", Duplicate);
  EXPECT_EQ(WarningLines(warnings), (std::vector<std::string_view>{"Warning:\tA\tStep size may be out of range.",
                                                                   "Warning:\t\tDuplicate Signal Standard name."}));
}

}  // namespace
}  // namespace chanplan
