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

constexpr std::string_view StartFrequency = "Start frequency appears out of range.";
constexpr std::string_view StopFrequency = "Stop frequency appears out of range.";
constexpr std::string_view StopBelowStart = "Stop channel is less than start channel.";
constexpr std::string_view StartNegative = "Start channel is less than zero.";
constexpr std::string_view StopNegative = "Stop channel is less than zero.";
constexpr std::string_view StepRange = "Step size may be out of range.";
constexpr std::string_view SpacingRange = "Spacing may be out of range.";
constexpr std::string_view BandwidthRange = "Bandwidth may be out of range.";
constexpr std::string_view Duplicate = "Duplicate Signal Standard name.";

std::string Line(const std::string& name, std::string_view message) {
  return "Warning:\t" + name + "\t" + std::string(message) + "\r\n";
}

std::string GroupWarnings(const std::string& name) {
  return Line(name, StepRange) + Line(name, SpacingRange) + Line(name, BandwidthRange);
}

using Names = std::vector<std::string>;

// The list view is still empty while a file is loaded.
std::string Warnings(const SignalStandardTable& table, const Names& listNames = {}) {
  return WarningsText(FindWarnings(table, listNames));
}

// The warnings of one standard with a sub-band, so that the checks of the group look at it too;
// only those about the standard itself.
std::string WarningsOfStandard(SignalStandardRecord standard) {
  standard.Name = "S";
  standard.Subbands = 1;
  return Warnings(TableOf({standard}));
}

TEST(FindWarnings, FindsNothingInAnEmptyTable) {
  EXPECT_EQ(FindWarnings({}, {}), std::vector<Warning>());
  EXPECT_EQ(Warnings({}), "");
}

TEST(FindWarnings, FindsNothingInASoundTable) {
  EXPECT_EQ(Warnings(TableOf({NamedRow("DCS", 1), NamedRow("DCS(A)"), NamedRow("GSM")})), "");
}

TEST(AlignSubbands, SubBandsAreNamedAfterTheirStandard) {
  SignalStandardTable table = TableOf(
      {NamedRow("DCS", 2), NamedRow("x"), NamedRow(""), NamedRow("GSM"), NamedRow("PCS 1900", 1), NamedRow("DCS(C)")});
  AlignSubbands(table);
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"DCS", "DCS(A)", "DCS(B)", "GSM", "PCS 1900", "PCS 1900(A)"}));
}

TEST(AlignSubbands, SubBandTakesBandwidthSpacingAndStepOfItsStandardAndNothingElse) {
  const SignalStandardRecord standard{"131", 2, "DCS", 1710.2, 1805.2, 512, 885, 0.2, 0.25, 3};
  SignalStandardTable table =
      TableOf({standard, {"7", 0, "x", 1, 2, 3, 4, 5, 6, 7}, {"abc", -8, "", 9, 10, 11, 12, 13, 14, 15}});
  AlignSubbands(table);
  EXPECT_EQ(table, TableOf({standard,
                            {"7", 0, "DCS(A)", 1, 2, 3, 4, 0.2, 0.25, 3},
                            {"abc", -8, "DCS(B)", 9, 10, 11, 12, 0.2, 0.25, 3}}));
}

TEST(AlignSubbands, StandardsWithoutSubBandsStayAsTheyAre) {
  const SignalStandardTable before = TableOf({NamedRow("A"), NamedRow("B(A)", -1), {"", 0, "", 0, 0, 0, 0, 0, 0, 0}});
  SignalStandardTable table = before;
  AlignSubbands(table);
  EXPECT_EQ(table, before);
}

TEST(AlignSubbands, LettersRunOnAfterZ) {
  SignalStandardTable table = TableOf({NamedRow("S", 199)});
  while (table.Count < 200) table.Append(NamedRow(""));
  AlignSubbands(table);
  EXPECT_EQ(table.Row(26).Name, "S(Z)");
  EXPECT_EQ(table.Row(27).Name, "S([)");
  EXPECT_EQ(table.Row(191).Name, "S(\xFF)");
  EXPECT_EQ(table.Row(192).Name, "S(A)");
  EXPECT_EQ(table.Row(199).Name, "S(H)");
}

TEST(AlignSubbands, StandardWithinAnOpenGroupStartsItsOwn) {
  SignalStandardTable table =
      TableOf({NamedRow("A", 3), NamedRow("x"), NamedRow("B", 1), NamedRow("y"), NamedRow("C")});
  AlignSubbands(table);
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"A", "A(A)", "B", "B(A)", "C"}));
}

TEST(AlignSubbands, GroupThatPointsPastTheEndTakesTheRowsThereAre) {
  SignalStandardTable table = TableOf({NamedRow("A", 2147483647), NamedRow("x"), NamedRow("y")});
  table.Row(3).Name = "not in use";
  AlignSubbands(table);
  EXPECT_EQ(RowNames(table), (std::vector<std::string>{"A", "A(A)", "A(B)"}));
  EXPECT_EQ(table.Row(0).Subbands, 2147483647);
  EXPECT_EQ(table.Row(3).Name, "not in use");
}

TEST(AlignSubbands, CutsACountBeyondTheTableWithoutAWord) {
  SignalStandardTable table = TableOf({NamedRow("S", 199)});
  table.Count = 201;
  for (int index = 1; index < 200; ++index) table.Row(index) = NamedRow("");
  AlignSubbands(table);
  EXPECT_EQ(table.Count, 200);
  EXPECT_EQ(Warnings(table), "");
}

TEST(FindWarnings, FrequenciesLieFrom0To9000Megahertz) {
  struct Case {
    double Frequency;
    bool Warns;
  };
  for (const auto& [frequency, warns] :
       {Case{0, false}, Case{-0.0, false}, Case{9000, false}, Case{1850.2, false}, Case{9000.0001, true},
        Case{-0.5, true}, Case{-1e-9, true}, Case{1e300, true}}) {
    SignalStandardRecord row = NamedRow("");
    row.UplinkStartFreq = frequency;
    EXPECT_EQ(WarningsOfStandard(row), warns ? Line("S", StartFrequency) : "") << frequency;
    row = NamedRow("");
    row.DownlinkStartFreq = frequency;
    EXPECT_EQ(WarningsOfStandard(row), warns ? Line("S", StopFrequency) : "") << frequency;
  }
}

TEST(FindWarnings, ChannelsAreInOrderAndNotNegative) {
  struct Case {
    std::int32_t Start;
    std::int32_t Stop;
    std::string Found;
  };
  for (const auto& [start, stop, found] :
       {Case{0, 0, ""}, Case{5, 5, ""}, Case{10, 5, Line("S", StopBelowStart)}, Case{-1, 0, Line("S", StartNegative)},
        Case{-1, -2, Line("S", StopBelowStart) + Line("S", StartNegative) + Line("S", StopNegative)},
        Case{-2, -1, Line("S", StartNegative) + Line("S", StopNegative)},
        Case{0, -1, Line("S", StopBelowStart) + Line("S", StopNegative)}}) {
    SignalStandardRecord row = NamedRow("");
    row.StartChannel = start;
    row.StopChannel = stop;
    EXPECT_EQ(WarningsOfStandard(row), found) << start << " to " << stop;
  }
}

TEST(FindWarnings, StepSpacingAndBandwidthArePositive) {
  struct Case {
    std::int32_t Step;
    double Spacing;
    double Bandwidth;
    std::string Found;
  };
  for (const auto& [step, spacing, bandwidth, found] :
       {Case{1, 1e-9, 1e-9, ""}, Case{0, 1, 1, Line("S", StepRange)}, Case{-5, 1, 1, Line("S", StepRange)},
        Case{1, 0, 1, Line("S", SpacingRange)}, Case{1, -1, 1, Line("S", SpacingRange)},
        Case{1, 1, 0, Line("S", BandwidthRange)}, Case{1, 1, -1, Line("S", BandwidthRange)},
        Case{0, 0, 0, GroupWarnings("S")}}) {
    SignalStandardRecord row = NamedRow("");
    row.Step = step;
    row.Spacing = spacing;
    row.Bandwidth = bandwidth;
    EXPECT_EQ(WarningsOfStandard(row), found) << step << " " << spacing << " " << bandwidth;
  }
}

TEST(FindWarnings, ListsAllFindingsOfARowInTheOrderOfTheChecks) {
  EXPECT_EQ(Warnings(TableOf({{"0", 1, "S", -1, 9001, -1, -2, 0, 0, 0}})),
            Line("S", StartFrequency) + Line("S", StopFrequency) + Line("S", StopBelowStart) +
                Line("S", StartNegative) + Line("S", StopNegative) + GroupWarnings("S"));
}

TEST(FindWarnings, ListsFindingsRowByRowUnderTheNewNames) {
  SignalStandardRecord standard = NamedRow("DCS", 2);
  SignalStandardRecord subband = NamedRow("old name");
  standard.StartChannel = 1000;
  subband.UplinkStartFreq = -1;
  EXPECT_EQ(Warnings(TableOf({standard, NamedRow("x"), subband})),
            Line("DCS", StopBelowStart) + Line("DCS(B)", StartFrequency));
}

TEST(FindWarnings, GroupChecksGiveEveryRowThreeWarningsWhereNoStandardHasSubBands) {
  EXPECT_EQ(Warnings(TableOf({NamedRow("A"), NamedRow("B"), NamedRow("C")})),
            GroupWarnings("A") + GroupWarnings("B") + GroupWarnings("C"));
}

TEST(FindWarnings, GroupChecksLookAtTheLastStandardThatHadSubBands) {
  SignalStandardRecord stepless = NamedRow("Stepless", 1);
  stepless.Step = 0;
  SignalStandardRecord bare{"0", 0, "Bare", 0, 0, 0, 0, 0, 0, 0};
  // Bare stands before the first such standard, behind a sound one, and behind Stepless.
  EXPECT_EQ(Warnings(TableOf({bare, bare, NamedRow("Sound", 1), NamedRow(""), bare, stepless, NamedRow(""), bare})),
            GroupWarnings("Bare") + GroupWarnings("Bare") + Line("Stepless", StepRange) +
                Line("Stepless(A)", StepRange) + Line("Bare", StepRange));
}

TEST(FindWarnings, GroupChecksAreLeftOutWhileTheGroupOfRow1IsOpen) {
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

TEST(FindWarnings, OtherChecksAreMadeWhileTheGroupOfRow1IsOpen) {
  SignalStandardRecord standard{"0", 1, "S", -1, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(Warnings(TableOf({NamedRow("Plain"), standard, standard})),
            GroupWarnings("Plain") + Line("S", StartFrequency) + Line("S", StartFrequency) + GroupWarnings("S"));
}

// The warnings of duplicates among the names of the list view; the table itself plays no part.
std::string DuplicateWarnings(const std::vector<std::string>& listNames) { return Warnings({}, listNames); }

TEST(FindWarnings, DuplicateNamesAreListedOncePerLaterTwin) {
  EXPECT_EQ(DuplicateWarnings({"GSM 900", "DCS", "GSM 900"}), Line("GSM 900", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"A", "A", "A"}), Line("A", Duplicate) + Line("A", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"A", "B", "B", "A"}), Line("A", Duplicate) + Line("B", Duplicate));
  EXPECT_EQ(DuplicateWarnings({"", ""}), Line("", Duplicate));
}

TEST(FindWarnings, NamesThatDifferInCaseOrBlanksAreNoDuplicates) {
  EXPECT_EQ(DuplicateWarnings({"GSM 900", "gsm 900", "GSM 900 ", " GSM 900", "GSM  900"}), "");
  EXPECT_EQ(DuplicateWarnings({"A"}), "");
  EXPECT_EQ(DuplicateWarnings({}), "");
}

TEST(FindWarnings, DuplicatesComeLastAndOnlyFromTheListView) {
  const SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("A")});
  const std::string ofRows = GroupWarnings("A") + GroupWarnings("A");
  EXPECT_EQ(Warnings(table), ofRows);
  EXPECT_EQ(Warnings(table, ListNames(table)), ofRows + Line("A", Duplicate));
}

TEST(FindWarnings, SubBandsAreNotLookedAtForDuplicates) {
  SignalStandardTable table = TableOf({NamedRow("A", 1), NamedRow(""), NamedRow("A(A)")});
  AlignSubbands(table);
  EXPECT_EQ(Warnings(table, ListNames(table)), "");
}

TEST(FindWarnings, TellTheRowThatTheyAreAbout) {
  SignalStandardTable table = TableOf({NamedRow("A", 1), NamedRow("x"), NamedRow("B"), NamedRow("A"), NamedRow("B")});
  table.Row(1).UplinkStartFreq = -1;
  table.Row(3).StartChannel = 1000;
  EXPECT_EQ(FindWarnings(table, ListNames(table)),
            (std::vector<Warning>{
                {1, "A(A)", StartFrequency}, {3, "A", StopBelowStart}, {0, "A", Duplicate}, {2, "B", Duplicate}}));
}

TEST(FindWarnings, KnowNoRowOfADuplicateThatTheTableHasNot) {
  EXPECT_EQ(FindWarnings(TableOf({NamedRow("S", 1), NamedRow("")}), Names{"S", "A", "A"}),
            (std::vector<Warning>{{-1, "A", Duplicate}}));
}

TEST(FindWarnings, RefusesACountBeyondTheTable) {
  SignalStandardTable table;
  table.Count = 201;
  EXPECT_THROW(FindWarnings(table, {}), std::out_of_range);
}

TEST(WarningsText, IsUtf8InLinesOfThreeParts) {
  EXPECT_EQ(WarningsText({}), "");
  const std::vector<Warning> warnings = {{0, "Band \xC4\x80", StepRange}, {4, "", Duplicate}};
  EXPECT_EQ(WarningText(warnings[0]), "Warning:\tBand \u00C4\u20AC\tStep size may be out of range.");
  EXPECT_EQ(WarningsText(warnings),
            "Warning:\tBand \u00C4\u20AC\tStep size may be out of range.\r\n"
            "Warning:\t\tDuplicate Signal Standard name.\r\n");
}

}  // namespace
}  // namespace chanplan
