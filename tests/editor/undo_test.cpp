// Taking changes of the table back and making them again, with the keys for it.
#include <functional>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

using Names = std::vector<std::string>;

constexpr Qt::KeyboardModifiers ControlShift = Qt::ControlModifier | Qt::ShiftModifier;

void Undo() { PressShortcut(Qt::Key_Z); }
void Redo() { PressShortcut(Qt::Key_Z, ControlShift); }

class UndoTest : public DocumentTest {
 public:
  using DocumentTest::shared;

 protected:
  // Two standards that give no warnings: one with sub-bands, one without.
  Document OpenPlan() {
    return Open({{"2", 2, "GSM", 890, 935, 1, 124, 0.2, 0.2, 1},
                 {"0", 0, "GSM(A)", 890, 935, 1, 60, 0.2, 0.2, 1},
                 {"0", 0, "GSM(B)", 900, 945, 61, 124, 0.2, 0.2, 1},
                 {"1", 0, "CDMA", 824, 869, 1, 799, 1.25, 0.03, 1}});
  }
  // As it is, without storing what is open.
  static SignalStandardTable TableOfWindow(const Document& document) { return document.Window->Table(); }
};

struct Change {
  const char* Name;  // of the step
  std::function<void(UndoTest&, const Document&)> Make;
};

void PrintTo(const Change& given, std::ostream* output) { *output << given.Name; }

class EveryChange : public UndoTest, public ::testing::WithParamInterface<Change> {};

TEST_P(EveryChange, IsAStepBackAndForth) {
  shared.StandardClipboard = {NamedRow("X"), NamedRow("Y", 1), NamedRow("Y(A)")};
  shared.StandardClipboardFull = true;
  const Document document = OpenPlan();
  const SignalStandardTable former = TableOfWindow(document);
  EXPECT_EQ(document.Window->UndoName(), "");
  GetParam().Make(*this, document);
  const SignalStandardTable changed = TableIn(document);
  ASSERT_NE(changed, former);
  EXPECT_EQ(document.Window->UndoName(), GetParam().Name);
  EXPECT_EQ(document.Window->RedoName(), "");

  document.List->setFocus();
  Undo();
  EXPECT_EQ(TableOfWindow(document), former);
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(document.Window->UndoName(), "");
  EXPECT_EQ(document.Window->RedoName(), GetParam().Name);
  EXPECT_EQ(frame.Status(), QString("Undone: ") + GetParam().Name + ".");
  EXPECT_EQ(document.List->rowCount(), 2);
  EXPECT_EQ(document.Detail(NameRow), document.ListName(document.List->currentRow()));

  Redo();
  EXPECT_EQ(TableOfWindow(document), changed);
  EXPECT_TRUE(document.State->Changed);
  EXPECT_EQ(document.Window->UndoName(), GetParam().Name);
  EXPECT_EQ(frame.Status(), QString("Done again: ") + GetParam().Name + ".");
  Undo();
  PressShortcut(Qt::Key_Y);
  EXPECT_EQ(TableOfWindow(document), changed) << "this key does it, too";
}

INSTANTIATE_TEST_SUITE_P(
    Changes, EveryChange,
    ::testing::Values(
        Change{"edit of Name",
               [](UndoTest&, const Document& document) {
                 document.Overwrite(NameRow, "E-GSM");
                 Press(Qt::Key_Return);
               }},
        Change{"edit of Uplink Start Frequency",
               [](UndoTest&, const Document& document) {
                 document.Click(document.Details, UplinkRow);
                 Type("891.5");
                 Press(Qt::Key_Down);
               }},
        Change{"edit of Channel Step",
               [](UndoTest&, const Document& document) {
                 document.Overwrite(StepRow, "41");
                 document.Click(document.List, 1);
               }},
        Change{"edit of Band B, Stop Channel",
               [](UndoTest&, const Document& document) {
                 document.Overwrite(document.Bands, 1, StopColumn, "123");
                 Press(Qt::Key_Return);
               }},
        Change{"edit of Modulation Type",
               [](UndoTest&, const Document& document) {
                 document.Click(document.Details, ModulationRow);
                 Type("n");
                 Press(Qt::Key_Return);
               }},
        Change{"edit of Active Display Mode",
               [](UndoTest&, const Document& document) {
                 document.Click(document.Details, DisplayModeRow);
                 Type("n");
                 Press(Qt::Key_Down);
               }},
        Change{"edit of Sub-bands",
               [](UndoTest&, const Document& document) {
                 document.Overwrite(SubbandsRow, "5");
                 Press(Qt::Key_Return);
               }},
        Change{"edit of Sub-bands", [](UndoTest&, const Document& document) { document.UpDown->stepDown(); }},
        Change{"edit of Start Channel",
               [](UndoTest&, const Document& document) {
                 document.Click(document.Details, StartRow);
                 document.Window->CopyCut(true);
                 Press(Qt::Key_Up);
               }},
        Change{"delete of 1 standard", [](UndoTest&, const Document&) { Press(Qt::Key_Delete); }},
        Change{"delete of 2 standards",
               [](UndoTest&, const Document&) {
                 Press(Qt::Key_Down, Qt::ShiftModifier);
                 Press(Qt::Key_Delete);
               }},
        Change{"cut of 1 standard", [](UndoTest&, const Document& document) { document.Window->CopyCut(true); }},
        Change{"paste of 2 standards", [](UndoTest&, const Document& document) { document.Window->Paste(); }},
        Change{"new standard", [](UndoTest&, const Document& document) { document.Window->InsertBlank(); }},
        Change{"merge", [](UndoTest& test, const Document& document) {
                 test.shared.Passed = {NamedRow("P"), NamedRow("Q")};
                 document.Window->SetTable();
               }}));

TEST_F(UndoTest, WhatChangedNothingIsNoStep) {
  const Document document = OpenPlan();
  document.Overwrite(NameRow, "GSM");
  Press(Qt::Key_Return);
  document.Overwrite(UplinkRow, "1");
  Press(Qt::Key_Escape);
  document.Overwrite(document.Bands, 0, UplinkColumn, ".");  // no number: the old value is kept
  Press(Qt::Key_Return);
  document.Click(document.Details, ModulationRow);
  Type("g");
  Press(Qt::Key_Return);
  document.Window->Paste();  // of nothing
  EXPECT_EQ(document.Window->UndoName(), "");
  const SignalStandardTable table = TableOfWindow(document);
  Undo();
  EXPECT_EQ(TableOfWindow(document), table);
}

TEST_F(UndoTest, StepsGoBackToTheOpenedTableAndForthToTheLast) {
  const Document document = OpenPlan();
  std::vector<SignalStandardTable> tables = {TableOfWindow(document)};
  for (int number = 1; number <= 150; ++number) {
    if (number % 3 == 0)
      document.Window->InsertBlank();
    else
      document.UpDown->setValue(number % 3);
    if (number % 10 == 0) Press(Qt::Key_Delete), Press(Qt::Key_End);
    if (TableOfWindow(document) != tables.back()) tables.push_back(TableOfWindow(document));
  }
  document.Window->CommitEdit();
  while (document.Window->UndoName() != "") Undo();
  EXPECT_EQ(TableOfWindow(document), tables.front());
  EXPECT_FALSE(document.State->Changed);
  while (document.Window->RedoName() != "") Redo();
  EXPECT_EQ(TableOfWindow(document), tables.back());
}

TEST_F(UndoTest, TwoHundredStepsAreKept) {
  const Document document = OpenPlan();
  for (int number = 1; number <= 205; ++number) {
    document.Overwrite(StopRow, std::to_string(1000 + number));
    Press(Qt::Key_Return);
  }
  int steps = 0;
  for (; document.Window->UndoName() != ""; ++steps) Undo();
  EXPECT_EQ(steps, 200);
  EXPECT_EQ(TableOfWindow(document).Row(0).StopChannel, 1005);
  EXPECT_TRUE(document.State->Changed) << "the opened table is out of reach";
}

TEST_F(UndoTest, KeysAreTheBoxesOwnWhileItIsOpen) {
  const Document document = OpenPlan();
  document.Overwrite(StopRow, "99");
  Press(Qt::Key_Return);
  const SignalStandardTable table = TableOfWindow(document);
  document.Overwrite(StartRow, "7");
  while (document.Box->isUndoAvailable()) Undo();
  EXPECT_EQ(document.Box->text(), "1");
  for (const auto& key : {std::pair{Qt::Key_Z, Qt::KeyboardModifiers(Qt::ControlModifier)},
                          std::pair{Qt::Key_Z, ControlShift}, std::pair{Qt::Key_Y, ControlShift ^ Qt::ShiftModifier}}) {
    PressShortcut(key.first, key.second);
    EXPECT_TRUE(document.Box->hasFocus());
    EXPECT_EQ(TableOfWindow(document), table);
  }
  Press(Qt::Key_Escape);
  Undo();
  EXPECT_EQ(TableOfWindow(document).Row(0).StopChannel, 124);
}

TEST_F(UndoTest, ChoiceOfAnOpenListIsTakenBackFirst) {
  const Document document = OpenPlan();
  document.Overwrite(StopRow, "99");
  Press(Qt::Key_Return);
  document.Click(document.Details, ModulationRow);
  Type("n");
  Undo();
  EXPECT_FALSE(document.Modulation->isVisible());
  EXPECT_EQ(TableOfWindow(document).Row(0).State, "2");
  EXPECT_EQ(TableOfWindow(document).Row(0).StopChannel, 99);
  EXPECT_EQ(document.Window->RedoName(), "edit of Modulation Type");
}

TEST_F(UndoTest, ChangedFlagFollowsTheTableThatWasSaved) {
  const Document document = OpenPlan();
  document.Overwrite(StopRow, "99");
  Press(Qt::Key_Return);
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
  document.State->Changed = false;  // as the frame does
  EXPECT_EQ(document.Window->UndoName(), "edit of Stop Channel") << "saving keeps the steps";
  Undo();
  EXPECT_TRUE(document.State->Changed) << "the file has another table";
  Redo();
  EXPECT_FALSE(document.State->Changed);
  document.List->setFocus();
  Press(Qt::Key_Delete);
  document.Window->InsertBlank();
  Undo();
  EXPECT_TRUE(document.State->Changed);
  Undo();
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(LoadSigFile(folder / "saved.sig").Table, TableOfWindow(document));
  Redo();
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(UndoTest, ReloadAfterAChangeOnDiskIsAStep) {
  const Document document = OpenPlan();
  document.Overwrite(StopRow, "99");
  Press(Qt::Key_Return);
  const SignalStandardTable mine = TableOfWindow(document);
  const SignalStandardTable theirs = TableOf({NamedRow("Theirs", 1), NamedRow("Theirs(A)")});
  WriteFile(folder / "table.sig", WriteSigTable(theirs));
  answers.Give(QMessageBox::Reset);
  answers.Give(QMessageBox::Ok);
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(document.Window->UndoName(), "reload");
  EXPECT_FALSE(document.State->Changed);
  Undo();
  EXPECT_EQ(TableOfWindow(document), mine);
  EXPECT_TRUE(document.State->Changed);
  Redo();
  EXPECT_EQ(TableOfWindow(document), theirs);
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(UndoTest, TableOfAUnitIsInNoFileHoweverFarOneGoesBack) {
  const Document document = OpenEmpty("Untitled(Query) 1");
  document.Window->InsertBlank();
  const SignalStandardTable received = TableOf({NamedRow("U", 1), NamedRow("its own name")});
  document.Window->ShowUnitTable(received);
  EXPECT_EQ(document.Window->UndoName(), "download") << "what was entered meanwhile can be had back";
  Press(Qt::Key_Delete);
  Undo();
  EXPECT_EQ(TableOfWindow(document), received);
  EXPECT_TRUE(document.State->Changed);
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
  EXPECT_EQ(document.Window->UndoName(), "names of sub-bands") << "which the save has put in line";
  Undo();
  EXPECT_EQ(TableOfWindow(document), received);
  Undo();
  EXPECT_EQ(TableOfWindow(document).Count, 1);
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(UndoTest, OpenedTableHasNoStepsOfTheFormerOne) {
  const Document document = OpenPlan();
  Press(Qt::Key_Delete);
  EXPECT_TRUE(document.Window->LoadSigStandards(PathText("table.sig")));
  EXPECT_EQ(document.Window->UndoName(), "");
}

TEST_F(UndoTest, DocumentsHaveHistoriesOfTheirOwn) {
  const Document one = Open({NamedRow("A"), NamedRow("B")}, "one.sig");
  Press(Qt::Key_Delete);
  const Document other = Open({NamedRow("C"), NamedRow("D")}, "other.sig");
  Undo();
  EXPECT_EQ(NamesIn(one), Names({"B"}));
  EXPECT_EQ(NamesIn(other), Names({"C", "D"}));
  mdi->setActiveSubWindow(one.Window);
  one.List->setFocus();
  Undo();
  EXPECT_EQ(NamesIn(one), Names({"A", "B"}));
}

TEST_F(UndoTest, GoesToTheRowThatWasCurrentAndShowsIt) {
  const Document document = Open(Standards(100));
  document.Click(document.List, 90);
  Press(Qt::Key_Down, Qt::ShiftModifier);
  Press(Qt::Key_Delete);
  Press(Qt::Key_Home);
  Undo();
  EXPECT_EQ(document.List->currentRow(), 91);
  EXPECT_EQ(document.Detail(NameRow), "S92");
  EXPECT_TRUE(document.List->viewport()->rect().contains(document.List->visualItemRect(document.List->currentItem())));
  EXPECT_EQ(document.List->selectedRanges().size(), 1);
  Press(Qt::Key_Home);
  Redo();
  EXPECT_EQ(document.ListName(document.List->currentRow()), "S93");
}

TEST_F(UndoTest, GoesToTheValueThatChangesAndOpensNothing) {
  const Document document = OpenPlan();
  document.Click(document.Details, ModulationRow);
  Type("n");
  Press(Qt::Key_Return);
  document.Overwrite(document.Bands, 1, StopColumn, "123");
  Press(Qt::Key_Return);
  document.Click(document.Bands, 0, UplinkColumn);
  document.Click(document.Details, StepRow);
  Undo();
  EXPECT_EQ(document.Bands->currentRow(), 1);
  EXPECT_EQ(document.Bands->currentColumn(), StopColumn);
  EXPECT_TRUE(document.Details->hasFocus());
  Undo();
  EXPECT_EQ(document.Details->currentRow(), ModulationRow);
  EXPECT_FALSE(document.Modulation->isVisible());
  EXPECT_TRUE(document.Details->hasFocus());
}

TEST_F(UndoTest, WarningsAreThoseOfTheTableThatIsBack) {
  const Document document = OpenPlan();
  document.Overwrite(StopRow, "0");
  Press(Qt::Key_Return);
  EXPECT_EQ(frame.Warned.back(), "Warning:\tGSM\tStop channel is less than start channel.\r\n");
  Undo();
  EXPECT_EQ(frame.Warned.back(), "");
  Redo();
  EXPECT_EQ(frame.Warned.back(), "Warning:\tGSM\tStop channel is less than start channel.\r\n");
}

TEST_F(UndoTest, ChoiceThatWasCutStays) {
  const Document document = OpenPlan();
  document.Click(document.Details, ModulationRow);
  Press(Qt::Key_Return);
  document.Click(document.List, 1);
  document.Details->setFocus();
  ASSERT_EQ(document.Details->currentRow(), ModulationRow);
  document.Window->CopyCut(true);
  EXPECT_EQ(TableIn(document).Row(3).State, "1") << "not what the list over another standard says";
  EXPECT_EQ(document.Detail(ModulationRow), "CDMA");
}

}  // namespace
}  // namespace chanplan::testing
