#include "core/table_difference.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::TableOf;
using testing::TableOfNames;

using Lines = std::vector<std::string>;

TEST(TableDifferences, AreNoneBetweenEqualTables) {
  const SignalStandardTable table = TableOf({NamedRow("DCS", 1), NamedRow("DCS(A)"), NamedRow("GSM")});
  EXPECT_EQ(TableDifferences({}, {}), Lines());
  EXPECT_EQ(TableDifferences(table, table), Lines());
}

TEST(TableDifferences, TellStandardsOfOneSideOnly) {
  EXPECT_EQ(TableDifferences(TableOfNames({"A", "B"}), TableOfNames({"B", "C"})), (Lines{"- A", "+ C"}));
  EXPECT_EQ(TableDifferences({}, TableOfNames({"A", "B"})), (Lines{"+ A", "+ B"}));
  EXPECT_EQ(TableDifferences(TableOfNames({"A", "B"}), {}), (Lines{"- A", "- B"}));
  EXPECT_EQ(TableDifferences(TableOfNames({"GSM"}), TableOfNames({"gsm"})), (Lines{"- GSM", "+ gsm"}));
}

TEST(TableDifferences, DoNotTellTheSubbandsOfAStandardThatIsMissing) {
  EXPECT_EQ(TableDifferences(TableOf({NamedRow("A", 1), NamedRow("A(A)")}), {}), Lines{"- A"});
}

TEST(TableDifferences, TellEveryFieldByItsName) {
  const SignalStandardRecord left{"1", 0, "S", 1.5, 2, 3, 4, 5, 6, 7};
  const SignalStandardRecord right{"2", 9, "S", 10, 20.25, 30, 40, 50, 0.06, -70};
  EXPECT_EQ(
      TableDifferences(TableOf({left}), TableOf({right})),
      (Lines{"~ S: State: 1 -> 2", "~ S: Sub-bands: 0 -> 9", "~ S: Uplink Start Frequency: 1.5 -> 10",
             "~ S: Downlink Start Frequency: 2 -> 20.25", "~ S: Start Channel: 3 -> 30", "~ S: Stop Channel: 4 -> 40",
             "~ S: Bandwidth: 5 -> 50", "~ S: Spacing: 6 -> 0.06", "~ S: Step: 7 -> -70"}));
}

TEST(TableDifferences, TellFieldsOfSubbands) {
  SignalStandardTable left = TableOf({NamedRow("S", 2), NamedRow("S(A)"), NamedRow("S(B)")});
  SignalStandardTable right = left;
  right.Row(2).StopChannel = 811;
  right.Row(2).Name = "other";
  EXPECT_EQ(TableDifferences(left, right),
            (Lines{"~ sub-band B of S: Name: S(B) -> other", "~ sub-band B of S: Stop Channel: 810 -> 811"}));
}

TEST(TableDifferences, TellNamesInUtf8) {
  EXPECT_EQ(TableDifferences(TableOfNames({"\xDC"}), TableOfNames({"\x80"})), (Lines{"- \u00DC", "+ \u20AC"}));
  EXPECT_EQ(RowDifferences(TableOfNames({"\xDC"}), TableOfNames({"\x80"})),
            Lines{"row 1 (\u00DC): Name: \u00DC -> \u20AC"});
}

TEST(TableDifferences, TellSubbandsOfOneSideOnly) {
  const SignalStandardTable one = TableOf({NamedRow("S", 1), NamedRow("S(A)")});
  const SignalStandardTable three = TableOf({NamedRow("S", 3), NamedRow("S(A)"), NamedRow("S(B)"), NamedRow("S(C)")});
  EXPECT_EQ(TableDifferences(one, three), (Lines{"~ S: Sub-bands: 1 -> 3", "+ sub-band B of S", "+ sub-band C of S"}));
  EXPECT_EQ(TableDifferences(three, one), (Lines{"~ S: Sub-bands: 3 -> 1", "- sub-band B of S", "- sub-band C of S"}));
}

TEST(TableDifferences, TellAnotherOrder) {
  EXPECT_EQ(TableDifferences(TableOfNames({"A", "B", "C"}), TableOfNames({"C", "A", "B"})), Lines{"= order differs"});
  EXPECT_EQ(TableDifferences(TableOfNames({"A", "B"}), TableOfNames({"B", "X", "A"})),
            (Lines{"+ X", "= order differs"}));
}

TEST(TableDifferences, DoNotCallAnInsertedStandardAnotherOrder) {
  EXPECT_EQ(TableDifferences(TableOfNames({"A", "B"}), TableOfNames({"X", "A", "Y", "B"})), (Lines{"+ X", "+ Y"}));
  EXPECT_EQ(TableDifferences(TableOfNames({"X", "A", "Y", "B"}), TableOfNames({"A", "B"})), (Lines{"- X", "- Y"}));
}

TEST(TableDifferences, PairStandardsOfOneNameInTurn) {
  SignalStandardTable left = TableOfNames({"A", "A"});
  SignalStandardTable right = left;
  right.Row(1).Step = 9;
  EXPECT_EQ(TableDifferences(left, right), Lines{"~ A: Step: 1 -> 9"});
  EXPECT_EQ(TableDifferences(left, TableOfNames({"A"})), Lines{"- A"});
  EXPECT_EQ(TableDifferences(TableOfNames({"A"}), left), Lines{"+ A"});
}

TEST(TableDifferences, StopAtTheEndOfADamagedTable) {
  const SignalStandardTable damaged = TableOf({NamedRow("S", 2147483647), NamedRow("S(A)")});
  const SignalStandardTable sound = TableOf({NamedRow("S", 1), NamedRow("S(A)")});
  EXPECT_EQ(TableDifferences(damaged, sound), Lines{"~ S: Sub-bands: 2147483647 -> 1"});
}

TEST(TableDifferences, IgnoreRowsNotInUse) {
  SignalStandardTable left = TableOfNames({"A"});
  SignalStandardTable right = left;
  right.Row(1).Name = "not in use";
  EXPECT_EQ(TableDifferences(left, right), Lines());
  EXPECT_EQ(RowDifferences(left, right), Lines());
}

TEST(TableDifferences, LookAtWhatAFileWouldKeepOfANumber) {
  SignalStandardTable left = TableOfNames({"A"});
  SignalStandardTable right = left;
  left.Row(0).Spacing = 0.3;
  right.Row(0).Spacing = 0.1 + 0.2;
  EXPECT_EQ(TableDifferences(left, right), Lines());
}

using Kind = DifferenceKind;

TEST(FindDifferences, TellWhereTheyAre) {
  const SignalStandardTable left = TableOf({NamedRow("A"), NamedRow("S", 2), NamedRow("S(A)"), NamedRow("S(B)")});
  SignalStandardTable right = TableOf({NamedRow("S", 1), NamedRow("S(A)"), NamedRow("Z", 1), NamedRow("Z(A)")});
  right.Row(1).StopChannel = 811;
  EXPECT_EQ(FindDifferences(left, right), (std::vector<TableDifference>{{Kind::OnlyLeft, 0},
                                                                        {Kind::Field, 1, 0, 0, Field::Subbands},
                                                                        {Kind::Field, 2, 1, 1, Field::StopChannel},
                                                                        {Kind::OnlyLeft, 3, -1, 2},
                                                                        {Kind::OnlyRight, -1, 2}}));
  EXPECT_EQ(FindDifferences(TableOfNames({"A", "B"}), TableOfNames({"B", "A"})),
            std::vector<TableDifference>{{Kind::Order}});
}

TEST(FindDifferences, TellARenamedStandardAsRenamed) {
  const SignalStandardTable left = TableOf({NamedRow("A"), NamedRow("S", 1), NamedRow("S(A)")});
  const SignalStandardTable right = TableOf({NamedRow("T", 1), NamedRow("T(A)"), NamedRow("A")});
  EXPECT_EQ(FindDifferences(left, right), (std::vector<TableDifference>{{Kind::Renamed, 1, 0}, {Kind::Order}}));
  EXPECT_EQ(TableDifferences(left, right), (Lines{"- S", "+ T"}));
}

TEST(FindDifferences, TakeNothingForRenamedThatIsOtherwiseDifferent) {
  const SignalStandardTable left = TableOf({NamedRow("S", 1), NamedRow("S(A)")});
  const std::vector<TableDifference> apart = {{Kind::OnlyLeft, 0}, {Kind::OnlyRight, -1, 0}};
  SignalStandardTable other = TableOf({NamedRow("T", 1), NamedRow("T(A)")});
  EXPECT_EQ(FindDifferences(left, other).size(), 1U);
  other.Row(1).StartChannel = 7;
  EXPECT_EQ(FindDifferences(left, other), apart);
  EXPECT_EQ(FindDifferences(left, TableOfNames({"T"})), apart);
}

TEST(FindDifferences, PairRenamedStandardsInTurn) {
  EXPECT_EQ(FindDifferences(TableOfNames({"A", "B", "C"}), TableOfNames({"X", "Y"})),
            (std::vector<TableDifference>{{Kind::Renamed, 0, 0}, {Kind::Renamed, 1, 1}, {Kind::OnlyLeft, 2}}));
}

TEST(RowDifferences, TellFieldsRowByRow) {
  const SignalStandardTable left = TableOfNames({"A", "B"});
  SignalStandardTable right = TableOfNames({"A", "C"});
  right.Row(0).Step = 2;
  EXPECT_EQ(RowDifferences(left, left), Lines());
  EXPECT_EQ(RowDifferences(left, right), (Lines{"row 1 (A): Step: 1 -> 2", "row 2 (B): Name: B -> C"}));
}

TEST(RowDifferences, TellAnotherNumberOfRows) {
  EXPECT_EQ(RowDifferences(TableOfNames({"A"}), TableOfNames({"A", "B"})), Lines{"records: 1 -> 2"});
  EXPECT_EQ(RowDifferences(TableOfNames({"A", "B"}), TableOfNames({"B"})),
            (Lines{"records: 2 -> 1", "row 1 (A): Name: A -> B"}));
}

}  // namespace
}  // namespace chanplan
