// Editing a cell: how it starts, what it does to the grids, and what comes of it in the table.
#include <QAbstractItemView>
#include <QClipboard>
#include <QScrollBar>
#include <QWheelEvent>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

using Rows = std::vector<SignalStandardRecord>;

const Message LimitReached = {
    "Warning:  Size limit reached.",
    "You have reached the maximum number of records in the Signal Standard table. Cannot add another sub-band.",
    QMessageBox::Critical, QMessageBox::Ok};

class CellEditing : public DocumentTest {
 protected:
  static bool NothingOpen(const Document& document) {
    return !document.Box->isVisible() && !document.Selected->isVisible() && !document.Modulation->isVisible() &&
           !document.UpDown->isVisible();
  }

  static QRect CellRect(const Document& document, Grid* grid) {
    QRect rect = grid->visualItemRect(grid->currentItem());
    rect.moveTopLeft(grid->viewport()->mapTo(&document.Area(), rect.topLeft()));
    return rect;
  }

  int Validations() const { return static_cast<int>(frame.Warned.size()); }
};

// --- Starting an edit

TEST_F(CellEditing, DoubleClickLaysTheBoxOverTheCell) {
  const Document document = Open(Group("A", 2));
  document.Window->resize(1200, 700);
  const std::vector<std::pair<Grid*, int>> cells = {
      {document.Details, NameRow}, {document.Details, UplinkRow}, {document.Details, StepRow}, {document.Bands, 1}};
  for (const auto& [grid, row] : cells) {
    document.DoubleClick(grid, row, 1);
    EXPECT_TRUE(document.Box->hasFocus());
    EXPECT_EQ(document.Box->text(), grid->CellText(row, 1));
    EXPECT_EQ(document.Box->geometry(), CellRect(document, grid));
    EXPECT_FALSE(document.Box->isReadOnly());
    EXPECT_FALSE(document.UpDown->isVisible());
  }
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, TypingOverAValueStartsWithOnlyThatCharacter) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, UplinkRow);
  ASSERT_TRUE(NothingOpen(document));
  Type("9");
  EXPECT_TRUE(document.Box->hasFocus());
  EXPECT_EQ(document.Box->text(), "9");
  EXPECT_EQ(document.Box->cursorPosition(), 1);
  EXPECT_EQ(document.Box->selectedText(), "");
  EXPECT_EQ(document.Detail(UplinkRow), "9");
  EXPECT_TRUE(document.State->Changed);
  Type("01.5");
  EXPECT_EQ(document.Detail(UplinkRow), "901.5");
}

TEST_F(CellEditing, BackspaceOnAValueStartsWithAnEmptyBox) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, StopRow);
  Press(Qt::Key_Backspace);
  EXPECT_TRUE(document.Box->hasFocus());
  EXPECT_EQ(document.Box->text(), "");
  EXPECT_EQ(document.Detail(StopRow), "");
  EXPECT_TRUE(document.State->Changed);
}

struct FirstKeyCase {
  int Row;
  char Refused;
};

TEST_F(CellEditing, RefusedKeyStartsNothing) {
  const Document document = Open(Standards(1));
  for (const FirstKeyCase& given : {FirstKeyCase{UplinkRow, 'x'}, {UplinkRow, '-'}, {StartRow, '.'}, {StepRow, ' '}}) {
    document.Click(document.Details, given.Row);
    Type(std::string(1, given.Refused));
    EXPECT_TRUE(NothingOpen(document)) << given.Row << given.Refused;
  }
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, TypingOnABandStartsNothing) {
  const Document document = Open(Group("A", 1));
  document.Click(document.Bands, 0, UplinkColumn);
  Type("5");
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, EnterAndF2StartAnEditInBothGrids) {
  const Document document = Open(Group("A", 1));
  for (Grid* const grid : {document.Details, document.Bands})
    for (const Qt::Key key : {Qt::Key_F2, Qt::Key_Return, Qt::Key_Enter}) {
      document.Click(grid, 0, 1);
      Press(key);
      EXPECT_TRUE(document.Box->hasFocus());
      EXPECT_EQ(document.Box->text(), grid->CellText(0, 1));
      Press(Qt::Key_Escape);
      EXPECT_TRUE(NothingOpen(document));
      EXPECT_TRUE(grid->hasFocus());
    }
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, MovingOntoACountOrAChoiceOpensIt) {
  const Document document = Open({{"129", 0, "A", 1, 2, 3, 4, 5, 6, 7}});
  document.Click(document.Details, NameRow);
  Press(Qt::Key_Down);
  EXPECT_TRUE(document.Box->hasFocus());
  EXPECT_EQ(document.Box->text(), "0");
  EXPECT_FALSE(document.Box->isReadOnly());
  EXPECT_FALSE(document.UpDown->isVisible());
  document.Click(document.Details, DisplayModeRow);
  EXPECT_TRUE(document.Selected->hasFocus());
  EXPECT_EQ(document.Selected->currentText(), "Now active");
  EXPECT_EQ(document.Selected->geometry(), CellRect(document, document.Details));
  Press(Qt::Key_Return);
  EXPECT_TRUE(document.Details->hasFocus());
  Press(Qt::Key_Down);
  EXPECT_TRUE(document.Modulation->hasFocus());
  EXPECT_EQ(document.Modulation->currentText(), "CDMA");
  EXPECT_EQ(document.Modulation->geometry(), CellRect(document, document.Details));
  document.Click(document.Details, UplinkRow);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, ClickOpensACountOrAChoiceWhereTheCursorIsAlready) {
  const Document document = Open(Standards(1));
  for (const int row : {int{SubbandsRow}, int{DisplayModeRow}, int{ModulationRow}}) {
    document.Click(document.Details, row);
    Press(Qt::Key_Return);
    ASSERT_TRUE(NothingOpen(document));
    document.Click(document.Details, row);
    EXPECT_FALSE(NothingOpen(document)) << row;
    Press(Qt::Key_Escape);
  }
}

struct RulesCase {
  bool OnBands;
  int Row;
  int Column;
  const char* Typed;
  const char* Expected;
};

TEST_F(CellEditing, EveryCellHasItsRules) {
  const char* const all = "a1.2.345678901234567890123456789";
  const std::vector<RulesCase> cases = {
      {false, NameRow, 1, all, "a1.2.3456789012345678901"},
      {false, SubbandsRow, 1, "x.0", "0"},
      {false, UplinkRow, 1, all, "1.2345678"},
      {false, DownlinkRow, 1, all, "1.2345678"},
      {false, StartRow, 1, all, "1234567"},
      {false, StopRow, 1, all, "1234567"},
      {false, BandwidthRow, 1, all, "1.2345678"},
      {false, SpacingRow, 1, all, "1.2345678"},
      {false, StepRow, 1, all, "1234567"},
      {true, 0, UplinkColumn, all, "1.2345678"},
      {true, 0, DownlinkColumn, all, "1.2345678"},
      {true, 0, StartColumn, all, "1234567"},
      {true, 0, StopColumn, all, "1234567"},
  };
  const Document document = Open(Group("A", 1));
  document.Window->resize(1300, 900);
  for (const RulesCase& given : cases) {
    Grid* const grid = given.OnBands ? document.Bands : document.Details;
    document.Overwrite(grid, given.Row, given.Column, given.Typed);
    EXPECT_EQ(document.Box->text(), given.Expected) << given.Row << ' ' << given.Column;
    EXPECT_EQ(grid->CellText(given.Row, given.Column), given.Expected) << given.Row << ' ' << given.Column;
    Press(Qt::Key_Escape);
  }
}

TEST_F(CellEditing, SubbandCountHoldsSevenDigits) {
  const Document document = Open(Standards(1));
  document.Overwrite(SubbandsRow, "123456789");
  EXPECT_EQ(document.Box->text(), "1234567");
  Press(Qt::Key_Escape);
}

TEST_F(CellEditing, SelectedTextMakesRoomInAFullName) {
  const Document document = Open({NamedRow("123456789012345678901234")});
  document.DoubleClick(document.Details, NameRow);
  Press(Qt::Key_End);
  Type("x");
  EXPECT_EQ(document.Box->text(), "123456789012345678901234");
  document.Box->setSelection(0, 2);
  Type("xyz");
  EXPECT_EQ(document.Box->text(), "xy3456789012345678901234");
  EXPECT_EQ(document.ListName(0), "xy3456789012345678901234");
}

// --- While it is open

TEST_F(CellEditing, RefusedPointLeavesTheTextAsItIs) {
  const Document document = Open(Standards(1));
  document.Overwrite(UplinkRow, "1.");
  document.State->Changed = false;
  Type(".");
  EXPECT_EQ(document.Detail(UplinkRow), "1.");
  Press(Qt::Key_Return);
  document.Overwrite(StartRow, "1");
  document.State->Changed = false;
  Type(".");
  EXPECT_EQ(document.Detail(StartRow), "1");
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, NameIsShownInTheListAsItIsTyped) {
  const Document document = Open(Standards(2));
  document.Click(document.List, 1);
  document.Overwrite(NameRow, "GS");
  EXPECT_EQ(document.Detail(NameRow), "GS");
  EXPECT_EQ(document.ListName(1), "GS");
  Type("M");
  EXPECT_EQ(document.ListName(1), "GSM");
  EXPECT_EQ(document.ListName(0), "S1");
  Press(Qt::Key_Escape);
  EXPECT_EQ(document.ListName(1), "S2");
  EXPECT_EQ(document.Detail(NameRow), "S2");
  EXPECT_EQ(NamesIn(document), (std::vector<std::string>{"S1", "S2"}));
}

TEST_F(CellEditing, PastedTextIsMirroredAndStored) {
  const Document document = Open(Group("A", 1));
  QGuiApplication::clipboard()->setText(" 901.50\n");
  document.DoubleClick(document.Details, UplinkRow);
  document.Box->selectAll();
  Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(document.Detail(UplinkRow), "901.50");
  EXPECT_TRUE(document.State->Changed);
  document.DoubleClick(document.Bands, 0, UplinkColumn);
  document.Box->selectAll();
  document.State->Changed = false;
  Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(document.Bands->CellText(0, UplinkColumn), "901.50");
  EXPECT_TRUE(document.State->Changed);
  Press(Qt::Key_Return);
  const SignalStandardTable table = TableIn(document);
  EXPECT_EQ(table.Row(0).UplinkStartFreq, 901.5);
  EXPECT_EQ(table.Row(1).UplinkStartFreq, 901.5);
}

TEST_F(CellEditing, PastedTextThatTheCellDoesNotTakeChangesNothingAndSaysSo) {
  const Document document = Open(Standards(1));
  const SignalStandardTable former = TableIn(document);
  for (const auto& [row, text] : std::vector<std::pair<int, QString>>{
           {UplinkRow, "824,04"}, {StopRow, "8.5"}, {NameRow, "a name of thirty-eight characters, all"}}) {
    document.DoubleClick(document.Details, row);
    document.Box->selectAll();
    QGuiApplication::clipboard()->setText(text);
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(frame.Status(), "\"" + text + "\" cannot stand in this cell, which stays as it is.");
    Press(Qt::Key_Return);
  }
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(TableIn(document), former);
}

struct ChangeCase {
  Qt::Key Key;
  bool Changes;
};

TEST_F(CellEditing, WhichKeysMarkTheDocumentChanged) {
  const Document document = Open(Standards(1));
  for (const ChangeCase& given : {ChangeCase{Qt::Key_Return, false},
                                  {Qt::Key_Enter, false},
                                  {Qt::Key_Escape, false},
                                  {Qt::Key_X, false},
                                  {Qt::Key_Left, false},
                                  {Qt::Key_Backspace, true},
                                  {Qt::Key_5, true}}) {
    document.DoubleClick(document.Details, StopRow);
    document.State->Changed = false;
    Press(given.Key);
    EXPECT_EQ(document.State->Changed, given.Changes) << given.Key;
    Press(Qt::Key_Escape);
  }
}

TEST_F(CellEditing, BackspaceInAnEmptyBoxIsAcceptedToo) {
  const Document document = Open(Standards(1));
  document.Overwrite(StopRow, "1");
  Press(Qt::Key_Backspace);
  document.State->Changed = false;
  Press(Qt::Key_Backspace);
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(CellEditing, EscapeRestoresTheTextFromBeforeTheEdit) {
  const Document document = Open(Group("A", 1));
  const SignalStandardTable former = TableIn(document);
  document.Overwrite(UplinkRow, "123");
  EXPECT_EQ(document.Detail(UplinkRow), "123");
  Press(Qt::Key_Escape);
  EXPECT_EQ(document.Detail(UplinkRow), "1850.2000");
  EXPECT_EQ(document.Box->text(), "1850.2000");
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_TRUE(document.Details->hasFocus());
  EXPECT_EQ(TableIn(document), former);
}

TEST_F(CellEditing, EscapeRestoresOneCellOnly) {
  const Document document = Open(Standards(1));
  document.Overwrite(StartRow, "5");
  Press(Qt::Key_Return);
  document.Overwrite(StopRow, "6");
  Press(Qt::Key_Escape);
  EXPECT_EQ(document.Detail(StartRow), "5");
  EXPECT_EQ(document.Detail(StopRow), "810");
}

TEST_F(CellEditing, EnterClosesTheBoxAndValidates) {
  const Document document = Open({NamedRow("A", 1), Band(1, 2, 3, 4)});
  document.Overwrite(UplinkRow, "9001");
  const int former = Validations();
  Press(Qt::Key_Return);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_TRUE(document.Details->hasFocus());
  EXPECT_GT(Validations(), former);
  EXPECT_EQ(frame.Warned.back(), "Warning:\tA\tStart frequency appears out of range.\r\n");
  EXPECT_EQ(document.Window->WarningsText(), frame.Warned.back());
}

TEST_F(CellEditing, LosingTheFocusClosesTheBoxAndValidates) {
  const Document document = Open(Group("A", 1));
  document.Overwrite(UplinkRow, "9001");
  const int former = Validations();
  document.List->setFocus();
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_GT(Validations(), former);
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 9001);
}

TEST_F(CellEditing, TabClosesTheBox) {
  const Document document = Open(Group("A", 1));
  document.Overwrite(UplinkRow, "901");
  Press(Qt::Key_Tab);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_TRUE(document.Details->hasFocus());
  EXPECT_EQ(document.Details->currentRow(), DownlinkRow);
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 901);
}

TEST_F(CellEditing, AnotherWindowOnTheScreenLeavesTheBoxOpen) {
  const Document document = Open(Standards(1));
  document.Overwrite(UplinkRow, "90");
  {
    QWidget program;
    program.show();
    program.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&program, LongestWait));
    EXPECT_TRUE(document.Box->isVisible());
  }
  Type("1");
  EXPECT_EQ(document.Detail(UplinkRow), "901");
}

TEST_F(CellEditing, EditorsCloseWhenTheUserComesBackToAnotherGrid) {
  const Document document = Open(Standards(1));
  for (const int row : {int{UplinkRow}, int{ModulationRow}}) {
    if (row == UplinkRow) {
      document.Overwrite(row, "901");
    } else {
      document.Click(document.Details, row);
      Type("N");
    }
    {
      QWidget program;
      program.show();
      program.activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&program, LongestWait));
      document.List->setFocus();
      EXPECT_FALSE(NothingOpen(document));
    }
    EXPECT_EQ(FocusWindow(), window.windowHandle());
    EXPECT_TRUE(document.List->hasFocus());
    EXPECT_TRUE(NothingOpen(document)) << row;
  }
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 901);
  EXPECT_EQ(TableIn(document).Row(0).State, "0");
}

TEST_F(CellEditing, ClickThatComesBeforeTheWindowIsActiveLeavesOneEditorOpen) {
  const Document document = Open(Standards(1));
  document.Overwrite(UplinkRow, "901");
  QWidget program;
  program.show();
  program.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&program, LongestWait));
  document.Click(document.Details, ModulationRow);
  EXPECT_TRUE(document.Modulation->isVisible());
  EXPECT_FALSE(document.Box->isVisible());
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 901);
}

TEST_F(CellEditing, LimitMessageComesInTheMiddleOfAClickElsewhere) {
  const Document document = Open(Standards(199));
  document.Overwrite(SubbandsRow, "1");
  answers.Give(QMessageBox::Ok);
  document.Click(document.List, 5);
  EXPECT_EQ(answers.Seen, std::vector{LimitReached});
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(document.Detail(NameRow), "S6");
  EXPECT_EQ(SavedTable(document), TableOf(Standards(199)));
}

TEST_F(CellEditing, BoxFollowsItsCellWhenTheGridIsScrolled) {
  const Document document = Open(Group("A", 40));
  document.Window->resize(900, 500);
  document.DoubleClick(document.Bands, 2, UplinkColumn);
  document.Bands->verticalScrollBar()->setValue(document.Bands->verticalScrollBar()->value() + 10);
  ASSERT_GT(document.Bands->verticalScrollBar()->value(), 0);
  EXPECT_EQ(document.Box->geometry(), CellRect(document, document.Bands));
}

TEST_F(CellEditing, CommandsLeaveTheFocusInTheGridThatWasEdited) {
  const Document document = Open(Group("A", 1));
  document.Overwrite(UplinkRow, "901");
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
  EXPECT_TRUE(document.Details->hasFocus());
  document.Overwrite(DownlinkRow, "902");
  document.Window->InsertBlank();
  EXPECT_TRUE(document.Details->hasFocus());
  document.Click(document.Details, ModulationRow);
  document.Window->InsertBlank();
  EXPECT_TRUE(document.Details->hasFocus());
}

// --- What comes of it in the table

struct StoreCase {
  int Row;
  const char* Typed;
  SignalStandardRecord Expected;
};

TEST_F(CellEditing, ValuesAreStored) {
  const std::vector<StoreCase> cases = {
      {NameRow, "New", {"2", 0, "New", 1, 2, 3, 4, 5, 6, 7}},
      {NameRow, " a ", {"2", 0, " a ", 1, 2, 3, 4, 5, 6, 7}},
      {UplinkRow, "890.2", {"2", 0, "A", 890.2, 2, 3, 4, 5, 6, 7}},
      {UplinkRow, ".", {"2", 0, "A", 0, 2, 3, 4, 5, 6, 7}},
      {DownlinkRow, ".5", {"2", 0, "A", 1, 0.5, 3, 4, 5, 6, 7}},
      {StartRow, "0012", {"2", 0, "A", 1, 2, 12, 4, 5, 6, 7}},
      {StopRow, "9999999", {"2", 0, "A", 1, 2, 3, 9999999, 5, 6, 7}},
      {BandwidthRow, "1.23456", {"2", 0, "A", 1, 2, 3, 4, 1.23456, 6, 7}},
      {SpacingRow, "0.00625", {"2", 0, "A", 1, 2, 3, 4, 5, 0.00625, 7}},
      {StepRow, "2", {"2", 0, "A", 1, 2, 3, 4, 5, 6, 2}},
  };
  for (const StoreCase& given : cases) {
    const Document document = Open({{"2", 0, "A", 1, 2, 3, 4, 5, 6, 7}});
    document.Overwrite(given.Row, given.Typed);
    Press(Qt::Key_Return);
    EXPECT_EQ(TableIn(document).Row(0), given.Expected);
  }
}

TEST_F(CellEditing, EmptyValueIsStoredAsZero) {
  const Document document = Open(Standards(1));
  for (const int row : {UplinkRow, StopRow}) {
    document.DoubleClick(document.Details, row);
    document.Box->selectAll();
    Press(Qt::Key_Backspace);
    EXPECT_EQ(document.Detail(row), "");
    Press(Qt::Key_Return);
  }
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 0);
  EXPECT_EQ(TableIn(document).Row(0).StopChannel, 0);
  EXPECT_EQ(document.Detail(UplinkRow), "0.0000");
  EXPECT_EQ(document.Detail(StopRow), "0");
}

TEST_F(CellEditing, BandsAreStored) {
  const Document document = Open({NamedRow("A", 2), Band(1, 2, 3, 4), Band(5, 6, 7, 8), NamedRow("B")});
  document.Window->resize(1300, 900);
  for (const auto& [column, typed] : std::vector<std::pair<int, const char*>>{
           {UplinkColumn, "890.25"}, {DownlinkColumn, "935.00001"}, {StartColumn, "12"}, {StopColumn, "34"}}) {
    document.Overwrite(document.Bands, 1, column, typed);
    Press(Qt::Key_Return);
    EXPECT_TRUE(document.Bands->hasFocus());
  }
  const SignalStandardTable table = TableIn(document);
  EXPECT_EQ(table.Row(2), (SignalStandardRecord{"0", 0, "A(B)", 890.25, 935.00001, 12, 34, 0.2, 0.25, 1}));
  EXPECT_EQ(table.Row(1), (SignalStandardRecord{"0", 0, "A(A)", 1, 2, 3, 4, 0.2, 0.25, 1}));
  EXPECT_EQ(table.Row(3), NamedRow("B"));
}

TEST_F(CellEditing, WhatWasNotEditedKeepsItsFullPrecision) {
  const SignalStandardRecord exact = {"2", 1, "A", 890.20001, 935.123456, 1, 124, 0.00005, 0.00625, 1};
  const Document document = Open({exact, Band(890.20001, 935.987654, 1, 2), NamedRow("B")});
  EXPECT_EQ(document.Detail(SpacingRow), "0.0063");
  document.Click(document.Details, NameRow);
  for (int row = NameRow; row <= StepRow; ++row) {
    document.Click(document.Details, row);
    Press(Qt::Key_Return);  // starts an edit where none has begun, and leaves the others
    Press(Qt::Key_Return);
  }
  document.Click(document.Bands, 0, UplinkColumn);
  document.Click(document.List, 1);
  document.Click(document.List, 0);
  document.Overwrite(StepRow, "3");
  Press(Qt::Key_Return);
  const SignalStandardTable saved = SavedTable(document);
  SignalStandardRecord expected = exact;
  expected.Step = 3;
  EXPECT_EQ(saved.Row(0), expected);
  EXPECT_EQ(saved.Row(1).UplinkStartFreq, 890.20001);
  EXPECT_EQ(saved.Row(1).DownlinkStartFreq, 935.987654);
}

TEST_F(CellEditing, WhatIsTypedIsMeantAlsoWhereItLooksLikeWhatWasThere) {
  const Document document = Open({{"2", 1, "A", 890.20004, 2, 3, 4, 5, 0.00625, 7}, Band(890.20004, 935.00001, 3, 4)});
  document.Overwrite(SpacingRow, "0.0063");
  Press(Qt::Key_Return);
  document.Overwrite(UplinkRow, "890.2000");
  Press(Qt::Key_Return);
  document.Overwrite(document.Bands, 0, UplinkColumn, "890.2000");
  Press(Qt::Key_Return);
  const SignalStandardTable table = TableIn(document);
  EXPECT_EQ(table.Row(0).Spacing, 0.0063);
  EXPECT_EQ(table.Row(0).UplinkStartFreq, 890.2);
  EXPECT_EQ(table.Row(1).UplinkStartFreq, 890.2);
  EXPECT_EQ(table.Row(1).DownlinkStartFreq, 935.00001);
}

// The first accepted key makes it an edit, whatever the text is in the end; Escape unmakes it.
TEST_F(CellEditing, EditedTextThatIsTheOldOneInTheEndIsStoredUnlessItIsCancelled) {
  for (const bool cancelled : {false, true}) {
    const Document document = Open({{"2", 0, "A", 890.20004, 2, 3, 4, 5, 6, 7}});
    document.DoubleClick(document.Details, UplinkRow);
    Press(Qt::Key_End);
    Press(Qt::Key_Backspace);
    Type("0");
    ASSERT_EQ(document.Box->text(), "890.2000");
    Press(cancelled ? Qt::Key_Escape : Qt::Key_Return);
    EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, cancelled ? 890.20004 : 890.2);
  }
}

TEST_F(CellEditing, UndoneEditGivesTheVeryTextBack) {
  const Document document = Open({{"2", 0, "a name of thirty-eight characters, all", 1, 2, 3, 4, 5, 6, 7}});
  document.Click(document.Details, NameRow);
  Type("G");
  Type("SM");
  while (document.Box->isUndoAvailable()) Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(document.Box->text(), "a name of thirty-eight characters, all");
  EXPECT_EQ(document.ListName(0), document.Box->text());
  Press(Qt::Key_End);
  Type("x");
  Press(Qt::Key_Return);
  EXPECT_EQ(NamesIn(document), std::vector<std::string>{"a name of thirty-eight characters, all"});
}

TEST_F(CellEditing, BandThatIsNoNumberKeepsItsOldValueAndSaysSo) {
  const Document document = Open({NamedRow("A", 1), Band(890.20001, 2, 3, 4)});
  for (const char* typed : {".", ""}) {
    document.DoubleClick(document.Bands, 0, UplinkColumn);
    document.Box->selectAll();
    Press(Qt::Key_Backspace);
    Type(typed);
    Press(Qt::Key_Return);
    EXPECT_EQ(document.Bands->CellText(0, UplinkColumn), "890.2000");
    EXPECT_EQ(frame.Status(),
              "Band A, Uplink Freq. (MHz): \"" + QString(typed) + "\" is not a number; the old value was kept.");
    EXPECT_EQ(TableIn(document).Row(1).UplinkStartFreq, 890.20001);
  }
}

TEST_F(CellEditing, CutBandThatIsLeftKeepsItsOldValueAndSaysSo) {
  const Document document = Open(Group("A", 2));
  document.Click(document.Bands, 0, StartColumn);
  document.Window->CopyCut(true);
  EXPECT_EQ(document.Bands->CellText(0, StartColumn), "");
  Press(Qt::Key_Down);
  EXPECT_EQ(document.Bands->CellText(0, StartColumn), "1");
  EXPECT_EQ(frame.Status(), "Band A, Start Channel: \"\" is not a number; the old value was kept.");
  Press(Qt::Key_Up);
  EXPECT_EQ(frame.Status(), "Double-click cell to edit parameter value.");
}

TEST_F(CellEditing, OtherBandsAreStoredBesideOneThatIsNoNumber) {
  const Document document = Open({NamedRow("A", 2), Band(1, 2, 3, 4), Band(5, 6, 7, 8)});
  document.Click(document.Bands, 0, UplinkColumn);
  document.Window->CopyCut(true);
  document.Overwrite(document.Bands, 1, UplinkColumn, "50");
  Press(Qt::Key_Return);
  EXPECT_EQ(TableIn(document).Row(1).UplinkStartFreq, 1);
  EXPECT_EQ(TableIn(document).Row(2).UplinkStartFreq, 50);
}

TEST_F(CellEditing, DuplicateNamesAreFoundAtTheCommit) {
  const Document document = Open(Group("A", 1) + Group("B", 0));
  document.Click(document.List, 1);
  document.Overwrite(NameRow, "A");
  Press(Qt::Key_Return);
  EXPECT_EQ(document.Window->WarningsText(), "Warning:\tA\tDuplicate Signal Standard name.\r\n");
}

TEST_F(CellEditing, SubbandsAreRenamedWithTheirStandard) {
  const Document document = Open(Group("A", 2));
  document.Overwrite(NameRow, "DCS");
  Press(Qt::Key_Return);
  EXPECT_EQ(NamesIn(document), (std::vector<std::string>{"DCS", "DCS(A)", "DCS(B)"}));
}

TEST_F(CellEditing, NameWithCharactersThatCannotBeTypedKeepsThem) {
  const std::string name = "Gr\xFC\xDF\x80\x81\xA0\xFF";
  const Document document = Open({NamedRow("A"), NamedRow(name)});
  document.Window->FindSSEntry(document.ListName(1));
  EXPECT_EQ(document.List->currentRow(), 1);
  document.DoubleClick(document.Details, NameRow);
  Press(Qt::Key_End);
  Type("x");
  Press(Qt::Key_Return);
  EXPECT_EQ(NamesIn(document), (std::vector<std::string>{"A", name + "x"}));
  EXPECT_EQ(RowNames(SavedTable(document)), (std::vector<std::string>{"A", name + "x"}));
}

TEST_F(CellEditing, NameThatWasCutIsGoneFromTheListOnceItIsStored) {
  const Document document = Open(Standards(2));
  document.Click(document.Details, NameRow);
  document.Window->CopyCut(true);
  document.Click(document.Details, UplinkRow);
  EXPECT_EQ(TableIn(document).Row(0).Name, "");
  EXPECT_EQ(document.ListName(0), "");
  EXPECT_EQ(document.ListName(1), "S2");
}

TEST_F(CellEditing, CutWhileTheBoxIsOpenEmptiesTheBox) {
  const Document document = Open(Standards(1));
  document.DoubleClick(document.Details, StopRow);
  document.Window->CopyCut(true);
  EXPECT_EQ(document.Box->text(), "");
  Type("7");
  Press(Qt::Key_Return);
  EXPECT_EQ(TableIn(document).Row(0).StopChannel, 7);
}

TEST_F(CellEditing, NameThatIsCutWhileItIsTypedIsCutFromTheListToo) {
  const Document document = Open({NamedRow("")});
  document.Overwrite(NameRow, "x");
  ASSERT_EQ(document.ListName(0), "x");
  document.Window->CopyCut(true);
  EXPECT_EQ(document.ListName(0), "");
  Press(Qt::Key_Return);
  EXPECT_EQ(document.ListName(0), "");
  EXPECT_EQ(TableIn(document).Row(0).Name, "");
}

// --- Leaving: the row that was left is stored, and no other one is written to

struct LeavingWay {
  const char* Name;
  void (*Leave)(const Document& document, const Document& other);
};

void PrintTo(const LeavingWay& given, std::ostream* output) { *output << given.Name; }

class Leaving : public CellEditing, public ::testing::WithParamInterface<LeavingWay> {};

const Rows LeavingRows = Group("A", 2) + Group("B", 2) + Group("C", 0);

TEST_P(Leaving, StoresTheDetailsOfTheRowThatWasLeft) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  SignalStandardTable expected = TableIn(document);
  const SignalStandardTable untouched = TableIn(other);
  expected.Row(0).StopChannel = 9;
  document.Overwrite(StopRow, "9");
  GetParam().Leave(document, other);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(TableIn(document), expected);
  EXPECT_EQ(TableIn(other), untouched);
}

TEST_P(Leaving, StoresTheBandsOfTheRowThatWasLeft) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  SignalStandardTable expected = TableIn(document);
  expected.Row(2).StartChannel = 9;
  document.Overwrite(document.Bands, 1, StartColumn, "9");
  GetParam().Leave(document, other);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(TableIn(document), expected);
}

TEST_P(Leaving, StoresANameWhereItWasTyped) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  document.Overwrite(NameRow, "N");
  GetParam().Leave(document, other);
  EXPECT_EQ(NamesIn(document), (std::vector<std::string>{"N", "N(A)", "N(B)", "B", "B(A)", "B(B)", "C"}));
  EXPECT_EQ(document.ListNames(), (std::vector<QString>{"N", "B", "C"}));
}

TEST_P(Leaving, StoresACountAndFindsTheOtherRowsBehindIt) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  document.Overwrite(SubbandsRow, "4");
  GetParam().Leave(document, other);
  EXPECT_EQ(NamesIn(document),
            (std::vector<std::string>{"A", "A(A)", "A(B)", "A(C)", "A(D)", "B", "B(A)", "B(B)", "C"}));
  document.Click(document.List, 1);
  EXPECT_EQ(document.Detail(NameRow), "B");
  EXPECT_EQ(document.Bands->rowCount(), 2);
}

TEST_P(Leaving, StoresAChoice) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  SignalStandardTable expected = TableIn(document);
  expected.Row(0).State = "3";
  document.Click(document.Details, ModulationRow);
  Type("C");
  GetParam().Leave(document, other);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(TableIn(document), expected);
}

TEST_P(Leaving, StoresACellThatWasCut) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  SignalStandardTable expected = TableIn(document);
  expected.Row(0).StopChannel = 0;
  document.Click(document.Details, StopRow);
  document.Window->CopyCut(true);
  GetParam().Leave(document, other);
  // The warnings are those of the table at the last commit.
  EXPECT_EQ(document.Window->WarningsText(), "Warning:\tA\tStop channel is less than start channel.\r\n");
  EXPECT_EQ(TableIn(document), expected);
}

TEST_P(Leaving, KeysThatFollowDoNotReachTheNextRow) {
  const Document other = Open(Group("X", 2), "other.sig");
  const Document document = Open(LeavingRows);
  const SignalStandardTable expected = TableIn(document);
  document.DoubleClick(document.Details, UplinkRow);
  GetParam().Leave(document, other);
  Press(Qt::Key_Escape);
  EXPECT_EQ(TableIn(document), expected);
}

INSTANTIATE_TEST_SUITE_P(
    CellEditing, Leaving,
    ::testing::Values(
        LeavingWay{"ByMouse", [](const Document& document, const Document&) { document.Click(document.List, 1); }},
        LeavingWay{"ByKeys",
                   [](const Document& document, const Document&) {
                     document.List->setFocus();
                     Press(Qt::Key_Down);
                   }},
        LeavingWay{"ByAName", [](const Document& document, const Document&) { document.Window->FindSSEntry("B"); }},
        LeavingWay{
            "ByAnotherDocument",
            [](const Document&, const Document& other) { other.Window->mdiArea()->setActiveSubWindow(other.Window); }},
        LeavingWay{"BySaving",
                   [](const Document& document, const Document&) {
                     document.Window->SaveChanplans(document.Window->windowTitle());
                   }}),
    [](const auto& given) { return given.param.Name; });

TEST_F(CellEditing, TableThatIsFetchedHasTheEditOnceThatIsStored) {
  const Document document = Open(Standards(1));
  document.Overwrite(StopRow, "9");
  document.Window->GetTable();
  EXPECT_EQ(shared.Passed[0].StopChannel, 810);
  EXPECT_TRUE(document.Box->isVisible());
  document.Window->CommitEdit();
  document.Window->GetTable();
  EXPECT_EQ(shared.Passed[0].StopChannel, 9);
}

// --- Keys that walk

// Through every value, list and sub-band and back, twice: nothing may be changed on the way.
TEST_F(CellEditing, KeysThatWalkChangeNothing) {
  const Document document =
      Open({{"131", 2, "A", 890.20004, 2, 3, 4, 5, 6, 7}, Band(1.00001, 2, 3, 4), Band(5, 6, 7, 8), NamedRow("B")});
  const SignalStandardTable former = TableIn(document);
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_PageDown, Qt::Key_PageUp,
                            Qt::Key_Home, Qt::Key_End})
    for (int row = NameRow; row <= StepRow; ++row) {
      document.Click(document.Details, row);
      for (int time = 0; time < 15; ++time) Press(key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(TableIn(document), former);
}

TEST_F(CellEditing, UpAndDownLeaveTheCellAsEnterDoesAndMoveOn) {
  const Document document = Open({{"2", 1, "A", 1, 2, 3, 4, 5, 6, 7}, Band(1, 2, 3, 4)});
  document.Overwrite(StopRow, "9");
  Press(Qt::Key_Up);
  EXPECT_EQ(document.Details->currentRow(), StartRow);
  EXPECT_EQ(document.Window->Table().Row(0).StopChannel, 9);
  document.Overwrite(UplinkRow, "900");
  Press(Qt::Key_Up);
  EXPECT_TRUE(document.Modulation->hasFocus());
  EXPECT_EQ(document.Window->Table().Row(0).UplinkStartFreq, 900);
  Type("C");
  Press(Qt::Key_Up);
  EXPECT_TRUE(document.Selected->hasFocus());
  EXPECT_EQ(document.Window->Table().Row(0).State, "3");
  Press(Qt::Key_Up);
  EXPECT_TRUE(document.Box->hasFocus());
  EXPECT_EQ(document.Box->text(), "1");
  Type("2");
  Press(Qt::Key_Down);
  EXPECT_TRUE(document.Selected->hasFocus());
  EXPECT_EQ(document.Bands->rowCount(), 2);
  document.Overwrite(document.Bands, 0, StartColumn, "7");
  Press(Qt::Key_Down);
  EXPECT_EQ(document.Bands->currentRow(), 1);
  EXPECT_EQ(document.Window->Table().Row(1).StartChannel, 7);
}

TEST_F(CellEditing, TabRunsThroughTheValuesToTheSubbandsAndBack) {
  const Document document = Open({NamedRow("A", 1), Band(1, 2, 3, 4)});
  document.List->setFocus();
  std::vector<std::pair<const Grid*, std::pair<int, int>>> stops;
  for (int row = NameRow; row <= StepRow; ++row) stops.push_back({document.Details, {row, 1}});
  for (int column = UplinkColumn; column <= StopColumn; ++column) stops.push_back({document.Bands, {0, column}});
  const auto at = [](const Grid* grid) { return std::pair(grid->currentRow(), grid->currentColumn()); };
  for (const auto& [grid, cell] : stops) {
    Press(Qt::Key_Tab);
    EXPECT_EQ(at(grid), cell);
    EXPECT_EQ(document.Box->hasFocus(), grid == document.Details && cell.first == SubbandsRow);
  }
  Press(Qt::Key_Tab);
  EXPECT_TRUE(document.List->hasFocus());
  for (auto stop = stops.rbegin(); stop != stops.rend(); ++stop) {
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(at(stop->first), stop->second);
  }
  Press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(document.List->hasFocus());
}

TEST_F(CellEditing, TabStoresWhatWasTypedAndFindsTheSubbandsThatCameOfIt) {
  const Document document = Open(Standards(1));
  document.Overwrite(SubbandsRow, "2");
  Press(Qt::Key_Tab);
  EXPECT_TRUE(document.Selected->hasFocus());
  EXPECT_EQ(document.Bands->rowCount(), 2);
  document.Overwrite(StepRow, "3");
  Press(Qt::Key_Tab);
  EXPECT_TRUE(document.Bands->hasFocus());
  EXPECT_EQ(document.Window->Table().Row(0).Step, 3);
}

TEST_F(CellEditing, KeysThatOpenAList) {
  const Document document = Open(Standards(1));
  for (const auto& [key, modifier] : std::vector<std::pair<Qt::Key, Qt::KeyboardModifier>>{
           {Qt::Key_Down, Qt::AltModifier}, {Qt::Key_F4, Qt::NoModifier}, {Qt::Key_Space, Qt::NoModifier}}) {
    document.Click(document.Details, ModulationRow);
    Press(key, modifier);
    ASSERT_TRUE(document.Modulation->view()->isVisible()) << key;
    Press(Qt::Key_Up);
    Press(Qt::Key_Return);
    EXPECT_FALSE(document.Modulation->view()->isVisible());
    EXPECT_EQ(document.Modulation->currentText(), "CDMA");
    Press(Qt::Key_Escape);
    EXPECT_EQ(document.Detail(ModulationRow), "GSM");
    document.Click(document.Details, UplinkRow);
  }
  EXPECT_EQ(TableIn(document).Row(0).State, "2");
}

TEST_F(CellEditing, WheelDoesNotTurnAClosedList) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, ModulationRow);
  for (const int turn : {120, -120}) {
    QWheelEvent wheel(QPointF(5, 5), document.Modulation->mapToGlobal(QPointF(5, 5)), {}, {0, turn}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(document.Modulation, &wheel);
    EXPECT_EQ(document.Modulation->currentText(), "GSM");
  }
}

// --- Commits

TEST_F(CellEditing, EachCommitValidatesOnceAndMovesValidateNothing) {
  const Document document = Open(Group("A", 1) + Group("B", 0));
  const auto validationsOf = [&](const std::function<void()>& act) {
    const int former = Validations();
    act();
    return Validations() - former;
  };
  document.Overwrite(StopRow, "900");
  EXPECT_EQ(validationsOf([&] { document.Window->SaveChanplans(PathText("saved.sig")); }), 1);
  EXPECT_EQ(validationsOf([&] { document.Window->SaveChanplans(PathText("saved.sig")); }), 1);
  document.Overwrite(StopRow, "901");
  EXPECT_EQ(validationsOf([&] { Press(Qt::Key_Return); }), 1);
  document.Overwrite(StopRow, "902");
  EXPECT_EQ(validationsOf([&] { document.Click(document.List, 1); }), 1);
  document.Overwrite(SubbandsRow, "3");
  EXPECT_EQ(validationsOf([&] { Press(Qt::Key_Down); }), 1);
  document.Click(document.Details, ModulationRow);
  Type("N");
  EXPECT_EQ(validationsOf([&] { document.Click(document.Bands, 0, UplinkColumn); }), 1);
  EXPECT_EQ(validationsOf([&] {
              for (int row = NameRow; row <= StepRow; ++row) document.Click(document.Details, row);
              document.Click(document.List, 0);
              Press(Qt::Key_Down);
              document.Click(document.Bands, 0, DownlinkColumn);
              document.DoubleClick(document.Bands, 0, DownlinkColumn);
              Press(Qt::Key_Escape);
              document.Window->CommitEdit();
            }),
            0);
}

TEST_F(CellEditing, CellThatWasCutGoesOnBeingEditedInTheBox) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, StopRow);
  document.Window->CopyCut(true);
  Press(Qt::Key_F2);
  EXPECT_EQ(document.Box->text(), "");
  Press(Qt::Key_Escape);
  EXPECT_EQ(document.Detail(StopRow), "810");
  document.Window->CopyCut(true);
  Press(Qt::Key_F2);
  Press(Qt::Key_Return);
  EXPECT_EQ(TableIn(document).Row(0).StopChannel, 0);
}

TEST_F(CellEditing, CountFollowsTheControlThatMirrorsIt) {
  const Document document = Open(Group("A", 1) + Group("B", 2));
  EXPECT_EQ(document.UpDown->value(), 1);
  document.Click(document.List, 1);
  EXPECT_EQ(document.UpDown->value(), 2);
  EXPECT_FALSE(document.State->Changed);
  document.UpDown->setValue(3);
  EXPECT_EQ(document.Window->Table().Count, 6);
  EXPECT_EQ(document.Detail(SubbandsRow), "3");
  EXPECT_EQ(document.Bands->rowCount(), 3);
  EXPECT_TRUE(document.State->Changed);
}

// --- State

TEST_F(CellEditing, ChoicesAreStoredAndMarkNothingAsChanged) {
  const Document document = Open({{"2", 0, "A", 1, 2, 3, 4, 5, 6, 7}});
  EXPECT_EQ(document.Selected->itemText(0), "Standby");
  EXPECT_EQ(document.Selected->itemText(1), "Now active");
  EXPECT_EQ(document.Selected->count(), 2);
  document.Click(document.Details, DisplayModeRow);
  Type("N");
  Press(Qt::Key_Return);
  EXPECT_EQ(document.Detail(DisplayModeRow), "Now active");
  EXPECT_EQ(TableIn(document).Row(0).State, "130");
  document.Click(document.Details, ModulationRow);
  Type("N");
  document.List->setFocus();
  EXPECT_EQ(document.Detail(ModulationRow), "None");
  EXPECT_EQ(TableIn(document).Row(0).State, "128");
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(CellEditing, EscapeInAListKeepsTheChoice) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, ModulationRow);
  Type("N");
  ASSERT_EQ(document.Modulation->currentText(), "None");
  Press(Qt::Key_Escape);
  EXPECT_TRUE(document.Details->hasFocus());
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(document.Detail(ModulationRow), "GSM");
  EXPECT_EQ(TableIn(document).Row(0).State, "2");
}

TEST_F(CellEditing, ChoiceIsMadeWithTheMouse) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, ModulationRow);
  QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                    document.Modulation->mapTo(&window, document.Modulation->rect().center()));
  ASSERT_TRUE(document.Modulation->view()->isVisible());
  EXPECT_TRUE(document.Modulation->isVisible());
  QAbstractItemView* const list = document.Modulation->view();
  QTest::mouseClick(list->window()->windowHandle(), Qt::LeftButton, {},
                    list->viewport()->mapTo(list->window(), list->visualRect(list->model()->index(3, 0)).center()));
  EXPECT_EQ(document.Modulation->currentText(), "CDMA/GSM");
  document.Click(document.List, 0);
  EXPECT_TRUE(NothingOpen(document));
  EXPECT_EQ(document.Detail(ModulationRow), "CDMA/GSM");
  EXPECT_EQ(TableIn(document).Row(0).State, "3");
}

struct BitsCase {
  const char* Former;
  const char* Letters;  // that choose a modulation type
  const char* Expected;
};

TEST_F(CellEditing, BitsWithoutAMeaningSurvive) {
  for (const BitsCase& given : {BitsCase{"127", "N", "124"},
                                {"255", "N", "252"},
                                {"4", "CDMA/", "7"},
                                {"1024", "CDMA/", "1027"},
                                {"0", "CDMA/", "3"},
                                {"-1", "N", "-4"}}) {
    const Document document = Open({{given.Former, 0, "A", 1, 2, 3, 4, 5, 6, 7}});
    document.Click(document.Details, ModulationRow);
    Type(given.Letters);
    Press(Qt::Key_Return);
    EXPECT_EQ(TableIn(document).Row(0).State, given.Expected) << given.Former;
  }
}

TEST_F(CellEditing, StateStaysAsItWasWhenOtherValuesAreEdited) {
  const Document document = Open({{"124", 0, "A", 1, 2, 3, 4, 5, 6, 7}, {"131", 0, "B", 1, 2, 3, 4, 5, 6, 7}});
  document.Overwrite(StepRow, "1");
  document.Click(document.List, 1);
  document.Overwrite(StepRow, "1");
  document.Click(document.List, 0);
  EXPECT_EQ(TableIn(document).Row(0).State, "124");
  EXPECT_EQ(TableIn(document).Row(1).State, "131");
}

TEST_F(CellEditing, StateDoesNotLeakIntoTheNextStandard) {
  const Document document = Open({{"131", 0, "A", 1, 2, 3, 4, 5, 6, 7}, {"4", 0, "B", 1, 2, 3, 4, 5, 6, 7}});
  document.Click(document.List, 1);
  document.Click(document.Details, ModulationRow);
  Type("C");
  document.Click(document.List, 0);
  EXPECT_EQ(TableIn(document).Row(0).State, "131");
  EXPECT_EQ(TableIn(document).Row(1).State, "5");
}

// --- The sub-band count

struct CountCase {
  const char* Typed;
  std::vector<std::string> Expected;
};

TEST_F(CellEditing, TypedCountAddsAndRemovesSubbands) {
  const std::vector<CountCase> cases = {
      {"3", {"A", "A(A)", "A(B)", "A(C)", "B"}},
      {"002", {"A", "A(A)", "A(B)", "B"}},
      {"1", {"A", "A(A)", "B"}},
      {"0", {"A", "B"}},
      {"", {"A", "B"}},
      {"5", {"A", "A(A)", "A(B)", "A(C)", "A(D)", "A(E)", "B"}},
  };
  for (const CountCase& given : cases) {
    const Document document = Open({NamedRow("A", 2), Band(1, 2, 3, 4), Band(5, 6, 7, 8), NamedRow("B")});
    document.DoubleClick(document.Details, SubbandsRow);
    document.Box->selectAll();
    Press(Qt::Key_Backspace);
    Type(given.Typed);
    Press(Qt::Key_Return);
    EXPECT_EQ(NamesIn(document), given.Expected);
    const int count = static_cast<int>(given.Expected.size()) - 2;
    EXPECT_EQ(TableIn(document).Row(0).Subbands, count);
    EXPECT_EQ(document.Detail(SubbandsRow), QString::number(count));
    EXPECT_EQ(document.Bands->rowCount(), count);
    EXPECT_TRUE(document.State->Changed);
    EXPECT_EQ(document.List->CellText(1, 2), QString::number(count + 1));
    document.Click(document.List, 1);
    EXPECT_EQ(document.Detail(NameRow), "B");
  }
}

TEST_F(CellEditing, SubbandsBeforeTheEndKeepTheirValues) {
  const Document document = Open({NamedRow("A", 2), Band(1.00001, 2, 3, 4), Band(5, 6, 7, 8), NamedRow("B")});
  document.Overwrite(SubbandsRow, "3");
  Press(Qt::Key_Return);
  document.Overwrite(SubbandsRow, "1");
  Press(Qt::Key_Return);
  EXPECT_EQ(TableIn(document),
            TableOf({NamedRow("A", 1), {"0", 0, "A(A)", 1.00001, 2, 3, 4, 0.2, 0.25, 1}, NamedRow("B")}));
}

TEST_F(CellEditing, CountIsNotTakenOverWhileItIsTyped) {
  const Document document = Open(Group("A", 2));
  document.Overwrite(SubbandsRow, "1");
  Type("2");
  EXPECT_EQ(document.Bands->rowCount(), 2);
  Press(Qt::Key_Escape);
  EXPECT_EQ(document.Bands->rowCount(), 2);
  EXPECT_EQ(TableIn(document).Row(0).Subbands, 2);
}

TEST_F(CellEditing, CountStopsAt199Records) {
  const Document document = Open(Standards(150) + Group("B", 0));
  document.Click(document.List, 149);
  document.Overwrite(SubbandsRow, "9999999");
  answers.Give(QMessageBox::Ok);
  Press(Qt::Key_Return);
  EXPECT_EQ(answers.Seen, std::vector{LimitReached});
  EXPECT_EQ(document.Detail(SubbandsRow), "48");
  EXPECT_EQ(document.Bands->rowCount(), 48);
  const SignalStandardTable table = SavedTable(document);
  EXPECT_EQ(table.Count, 199);
  EXPECT_EQ(table.Row(149).Subbands, 48);
  EXPECT_EQ(table.Row(198).Name, "B");
}

TEST_F(CellEditing, NoSubbandIsAddedTo199Records) {
  const Document document = Open(Standards(199));
  document.Overwrite(SubbandsRow, "1");
  answers.Give(QMessageBox::Ok);
  Press(Qt::Key_Return);
  EXPECT_EQ(answers.Seen, std::vector{LimitReached});
  EXPECT_EQ(document.Detail(SubbandsRow), "0");
  EXPECT_EQ(SavedTable(document), TableOf(Standards(199)));
}

TEST_F(CellEditing, CountThatPromisesTooMuchIsPutRightByTyping) {
  for (const auto& [typed, expected] : std::vector<std::pair<const char*, int>>{{"2", 2}, {"1", 1}, {"0", 0}}) {
    const Document document = Open({NamedRow("A"), NamedRow("B", 150), Band(1, 2, 3, 4)});
    document.Click(document.List, 1);
    document.Overwrite(SubbandsRow, typed);
    Press(Qt::Key_Return);
    EXPECT_EQ(TableIn(document).Row(1).Subbands, expected);
    EXPECT_EQ(NamesIn(document).size(), 2u + static_cast<std::size_t>(expected));
    EXPECT_EQ(document.Bands->rowCount(), expected);
  }
}

TEST_F(CellEditing, RefusedTextIsToldInOneShortLine) {
  const Document document = Open(Standards(1));
  document.DoubleClick(document.Details, NameRow);
  QGuiApplication::clipboard()->setText("a\nb\n" + QString(500, 'c'));
  Press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_TRUE(frame.Status().startsWith("\"a b cccc"));
  EXPECT_LT(frame.Status().size(), 100);
}

}  // namespace
}  // namespace chanplan::testing
