#include "core/table_history.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/core/random_table.h"
#include "tests/core/table_of.h"

namespace chanplan {

// Found by GoogleTest.
static void PrintTo(const TableMoment& moment, std::ostream* output) {
  PrintTo(moment.Table, &(*output << "row " << moment.CurrentRow << " of "));
}

namespace {

using testing::Between;
using testing::FullTableOfNames;
using testing::NamedRow;
using testing::TableOfNames;

const SignalStandardTable A = TableOfNames({"A"});
const SignalStandardTable AB = TableOfNames({"A", "B"});
const SignalStandardTable ABC = TableOfNames({"A", "B", "C"});

// A history of A that got B and then C.
TableHistory TwoSteps() {
  TableHistory history(A);
  history.Record("Add B", 0, AB, 1);
  history.Record("Add C", 1, ABC, 2);
  return history;
}

TEST(TableHistory, BeginsSavedAndWithoutSteps) {
  TableHistory history(A);
  EXPECT_TRUE(history.AtSaved());
  EXPECT_FALSE(history.CanUndo());
  EXPECT_FALSE(history.CanRedo());
  EXPECT_EQ(history.UndoName(), "");
  EXPECT_EQ(history.RedoName(), "");
  EXPECT_EQ(history.Undo(), std::nullopt);
  EXPECT_EQ(history.Redo(), std::nullopt);
  EXPECT_TRUE(history.AtSaved());
}

TEST(TableHistory, TakesStepsBackInTurnAndGoesToWhereTheyBegan) {
  TableHistory history = TwoSteps();
  EXPECT_EQ(history.Undo(), (TableMoment{AB, 1}));
  EXPECT_EQ(history.Undo(), (TableMoment{A, 0}));
  EXPECT_EQ(history.Undo(), std::nullopt);
}

TEST(TableHistory, MakesStepsAgainInTurnAndGoesToWhereTheyEnded) {
  TableHistory history = TwoSteps();
  history.Undo();
  history.Undo();
  EXPECT_EQ(history.Redo(), (TableMoment{AB, 1}));
  EXPECT_EQ(history.Redo(), (TableMoment{ABC, 2}));
  EXPECT_EQ(history.Redo(), std::nullopt);
  EXPECT_EQ(history.Undo(), (TableMoment{AB, 1}));
}

TEST(TableHistory, NamesTheStepsToTakeBackAndToMakeAgain) {
  TableHistory history = TwoSteps();
  EXPECT_EQ(history.UndoName(), "Add C");
  EXPECT_EQ(history.RedoName(), "");
  history.Undo();
  EXPECT_EQ(history.UndoName(), "Add B");
  EXPECT_EQ(history.RedoName(), "Add C");
  history.Undo();
  EXPECT_EQ(history.UndoName(), "");
  EXPECT_EQ(history.RedoName(), "Add B");
}

TEST(TableHistory, ForgetsWhatWasTakenBackOnceAnotherStepIsMade) {
  TableHistory history = TwoSteps();
  history.Undo();
  history.Record("Add X", 0, TableOfNames({"A", "B", "X"}), 2);
  EXPECT_FALSE(history.CanRedo());
  EXPECT_EQ(history.RedoName(), "");
  EXPECT_EQ(history.UndoName(), "Add X");
  EXPECT_EQ(history.Undo(), (TableMoment{AB, 0}));
  EXPECT_EQ(history.Undo(), (TableMoment{A, 0}));
}

TEST(TableHistory, MakesNoStepOfAChangeThatLeftTheTableAsItWas) {
  TableHistory history = TwoSteps();
  history.Undo();
  SignalStandardTable same = AB;
  same.Row(5).Name = "not in use";
  history.Record("Nothing", 0, same, 0);
  EXPECT_EQ(history.UndoName(), "Add B");
  EXPECT_EQ(history.Redo(), (TableMoment{ABC, 2})) << "what can be made again stays";
}

TEST(TableHistory, MakesAStepOfAnyFieldAndOfTheCount) {
  TableHistory history(AB);
  SignalStandardTable changed = AB;
  changed.Row(1).Step = 2;
  history.Record("Step", 1, changed, 1);
  EXPECT_EQ(history.Undo(), (TableMoment{AB, 1}));
  history.Record("Delete", 1, A, 0);
  EXPECT_EQ(history.Undo(), (TableMoment{AB, 1}));
  EXPECT_EQ(history.Redo(), (TableMoment{A, 0}));
}

TEST(TableHistory, LeavesNothingInRowsThatAreNotInUse) {
  TableHistory history(A);
  history.Record("Fill", 0, FullTableOfNames(), 0);
  EXPECT_EQ(history.Undo()->Table.Records[1], SignalStandardRecord());
  EXPECT_EQ(history.Redo()->Table, FullTableOfNames());
}

TEST(TableHistory, KnowsWhereTheTableWasSaved) {
  TableHistory history = TwoSteps();
  EXPECT_FALSE(history.AtSaved());
  history.Undo();
  history.MarkSaved();
  EXPECT_TRUE(history.AtSaved());
  history.Undo();
  EXPECT_FALSE(history.AtSaved());
  history.Redo();
  EXPECT_TRUE(history.AtSaved());
  history.Redo();
  EXPECT_FALSE(history.AtSaved());
}

TEST(TableHistory, IsAtItsStartAsSavedAgainOnceAllStepsAreTakenBack) {
  TableHistory history = TwoSteps();
  history.Undo();
  history.Undo();
  EXPECT_TRUE(history.AtSaved());
}

TEST(TableHistory, IsNowhereAsSavedWhereTheTableIsInNoFile) {
  TableHistory history(A);
  history.ForgetSaved();
  EXPECT_FALSE(history.AtSaved());
  history.Record("Add B", 0, AB, 1);
  history.Undo();
  EXPECT_FALSE(history.AtSaved());
  history.MarkSaved();
  EXPECT_TRUE(history.AtSaved());
}

TEST(TableHistory, LosesASavedTableThatNoStepsLeadToAnyMore) {
  TableHistory history = TwoSteps();
  history.MarkSaved();
  history.Undo();
  history.Record("Add X", 0, TableOfNames({"A", "B", "X"}), 2);
  EXPECT_FALSE(history.AtSaved()) << "as many steps as when it was saved, but others";
  while (history.Undo()) EXPECT_FALSE(history.AtSaved());
  while (history.Redo()) EXPECT_FALSE(history.AtSaved());
  history.MarkSaved();
  EXPECT_TRUE(history.AtSaved());
}

TEST(TableHistory, KeepsASavedTableBeforeTheStepThatIsReplaced) {
  TableHistory history(A);
  history.Record("Add B", 0, AB, 1);
  history.MarkSaved();
  history.Record("Add C", 1, ABC, 2);
  history.Undo();
  history.Record("Add X", 0, TableOfNames({"A", "B", "X"}), 2);
  EXPECT_FALSE(history.AtSaved());
  history.Undo();
  EXPECT_TRUE(history.AtSaved());
}

SignalStandardTable Numbered(int number) { return TableOfNames({"S" + std::to_string(number)}); }

TEST(TableHistory, KeepsTheLast200Steps) {
  TableHistory history(Numbered(0));
  for (int number = 1; number <= 210; ++number) history.Record("to " + std::to_string(number), 0, Numbered(number), 0);
  EXPECT_EQ(history.UndoName(), "to 210");
  for (int number = 209; number >= 10; --number) ASSERT_EQ(history.Undo(), (TableMoment{Numbered(number), 0}));
  EXPECT_FALSE(history.CanUndo());
  EXPECT_EQ(history.RedoName(), "to 11");
  for (int number = 11; number <= 210; ++number) ASSERT_EQ(history.Redo(), (TableMoment{Numbered(number), 0}));
}

TEST(TableHistory, LosesASavedTableThatIsPushedOut) {
  for (const int savedAt : {9, 10, 11}) {
    SCOPED_TRACE(savedAt);
    TableHistory history(Numbered(0));
    for (int number = 1; number <= 210; ++number) {
      history.Record("step", 0, Numbered(number), 0);
      if (number == savedAt) history.MarkSaved();
    }
    std::vector<int> found;
    for (int number = 210;; --number) {
      if (history.AtSaved()) found.push_back(number);
      if (!history.Undo()) break;
    }
    EXPECT_EQ(found, savedAt >= 10 ? std::vector{savedAt} : std::vector<int>());
  }
}

// Against a list of all tables there ever were, of which one is the present one.
TEST(TableHistory, IsWhatAPlainListOfTablesIs) {
  for (unsigned seed = 1; seed <= 200 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    TableHistory history(Numbered(0));
    std::vector<int> numbers = {0};
    std::size_t present = 0;
    int savedNumber = 0;
    for (int next = 1; next <= 100; ++next) {
      switch (Between(random, 0, 5)) {
        case 0:
        case 1:
          numbers.resize(present + 1);
          numbers.push_back(next);
          ++present;
          history.Record(std::to_string(next), 0, Numbered(next), 0);
          break;
        case 2:
        case 3: {
          const auto before = history.Undo();
          ASSERT_EQ(before.has_value(), present > 0);
          if (before) {
            ASSERT_EQ(before->Table, Numbered(numbers[--present]));
          }
          break;
        }
        case 4: {
          const auto after = history.Redo();
          ASSERT_EQ(after.has_value(), present + 1 < numbers.size());
          if (after) {
            ASSERT_EQ(after->Table, Numbered(numbers[++present]));
          }
          break;
        }
        default:
          history.MarkSaved();
          savedNumber = numbers[present];
      }
      ASSERT_EQ(history.AtSaved(), numbers[present] == savedNumber);
      ASSERT_EQ(history.UndoName(), present > 0 ? std::to_string(numbers[present]) : "");
      ASSERT_EQ(history.RedoName(), present + 1 < numbers.size() ? std::to_string(numbers[present + 1]) : "");
    }
  }
}

}  // namespace
}  // namespace chanplan
