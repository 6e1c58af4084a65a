// Copying, cutting, pasting, inserting and deleting, by the operations that the frame's commands run.
#include <QClipboard>
#include <algorithm>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

using Names = std::vector<std::string>;

const Message Truncation = {"The Application", "Too many bands are on the clipboard.  The list will be truncated.",
                            QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel};
const Message Full = {"Warning:  Maximum size reached.",
                      "You are at the limit (200) of allowed records.  Another signal standard or sub-band cannot be "
                      "added.",
                      QMessageBox::Critical, QMessageBox::Ok};

class Clipboard : public DocumentTest {
 protected:
  Names Copied() const {
    Names names;
    for (const SignalStandardRecord& row : shared.StandardClipboard) names.push_back(row.Name);
    return names;
  }

  // A file of 200 rows is one that may have been truncated, and says so.
  Document OpenFull() {
    answers.Give(QMessageBox::Ok);
    const Document document = Open(Standards(200));
    answers.Seen.clear();
    return document;
  }
};

struct SelectionCase {
  const char* Name;
  void (*Select)(const Document&);
  Names Selected;
  Names Rest;
};

void PrintTo(const SelectionCase& given, std::ostream* output) { *output << given.Name; }

class SelectedStandards : public Clipboard, public ::testing::WithParamInterface<SelectionCase> {};

TEST_P(SelectedStandards, AreCopiedWithTheirSubbands) {
  const Document document = Open(Group("A", 1) + Group("B", 3) + Group("C", 0));
  const SignalStandardTable former = TableIn(document);
  GetParam().Select(document);
  document.Window->CopyCut(false);
  EXPECT_EQ(Copied(), GetParam().Selected);
  EXPECT_TRUE(shared.StandardClipboardFull);
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(TableIn(document), former);
}

TEST_P(SelectedStandards, AreCutWithTheirSubbands) {
  const Document document = Open(Group("A", 1) + Group("B", 3) + Group("C", 0));
  GetParam().Select(document);
  document.Window->CopyCut(true);
  EXPECT_EQ(Copied(), GetParam().Selected);
  EXPECT_EQ(NamesIn(document), GetParam().Rest);
  EXPECT_TRUE(document.State->Changed);
}

TEST_P(SelectedStandards, AreDeletedWithTheDeleteKeyAndNotCopied) {
  const Document document = Open(Group("A", 1) + Group("B", 3) + Group("C", 0));
  GetParam().Select(document);
  Press(Qt::Key_Delete);
  EXPECT_EQ(NamesIn(document), GetParam().Rest);
  EXPECT_TRUE(document.State->Changed);
  EXPECT_FALSE(shared.StandardClipboardFull);
}

INSTANTIATE_TEST_SUITE_P(Clipboard, SelectedStandards,
                         ::testing::Values(SelectionCase{"First",
                                                         [](const Document& document) {
                                                           document.Click(document.List, 0);
                                                         },
                                                         {"A", "A(A)"},
                                                         {"B", "B(A)", "B(B)", "B(C)", "C"}},
                                           SelectionCase{"LastOfTwoHasThreeSubbands",
                                                         [](const Document& document) {
                                                           document.Click(document.List, 0);
                                                           document.Click(document.List, 1, 1, Qt::ShiftModifier);
                                                         },
                                                         {"A", "A(A)", "B", "B(A)", "B(B)", "B(C)"},
                                                         {"C"}},
                                           SelectionCase{"UpwardsByKeys",
                                                         [](const Document& document) {
                                                           document.Click(document.List, 2);
                                                           Press(Qt::Key_Up, Qt::ShiftModifier);
                                                         },
                                                         {"B", "B(A)", "B(B)", "B(C)", "C"},
                                                         {"A", "A(A)"}},
                                           SelectionCase{"AllByKeys",
                                                         [](const Document& document) {
                                                           document.Click(document.List, 1);
                                                           Press(Qt::Key_A, Qt::ControlModifier);
                                                         },
                                                         {"A", "A(A)", "B", "B(A)", "B(B)", "B(C)", "C"},
                                                         {}}),
                         [](const auto& given) { return given.param.Name; });

TEST_F(Clipboard, DeletingEveryStandardLeavesNothing) {
  const Document document = Open(Group("A", 1) + Group("B", 0));
  document.Click(document.List, 0);
  PressTimes(2, Qt::Key_Delete);
  EXPECT_EQ(TableIn(document).Count, 0);
  EXPECT_EQ(document.List->rowCount(), 0);
  EXPECT_EQ(document.Detail(NameRow), "");
  EXPECT_EQ(document.Bands->rowCount(), 0);
  EXPECT_EQ(SavedTable(document).Count, 0);
  Press(Qt::Key_Delete);
  document.Window->CopyCut(true);
  EXPECT_EQ(TableIn(document).Count, 0);
}

TEST_F(Clipboard, DeletionKeepsTheRowCurrentAndStopsAtTheLast) {
  const Document document = Open(Standards(4));
  document.Click(document.List, 1);
  Press(Qt::Key_Delete);
  EXPECT_EQ(document.List->currentRow(), 1);
  EXPECT_EQ(document.Detail(NameRow), "S3");
  Press(Qt::Key_Delete);
  EXPECT_EQ(document.Detail(NameRow), "S4");
  Press(Qt::Key_Delete);
  EXPECT_EQ(document.List->currentRow(), 0);
  EXPECT_EQ(document.Detail(NameRow), "S1");
}

TEST_F(Clipboard, DeletionShowsTheBandsOfTheNextStandard) {
  const Document document = Open(Group("A", 3) + Group("B", 1) + Group("C", 0));
  document.Click(document.Bands, 2, UplinkColumn);
  document.Click(document.List, 0);
  Press(Qt::Key_Delete);
  EXPECT_EQ(document.Detail(NameRow), "B");
  EXPECT_EQ(document.Bands->rowCount(), 1);
  EXPECT_EQ(NamesIn(document), (Names{"B", "B(A)", "C"}));
}

TEST_F(Clipboard, DeleteKeyInOtherGridsDeletesNothing) {
  const Document document = Open(Group("A", 1));
  for (Grid* const grid : {document.Details, document.Bands}) {
    document.Click(grid, 0, 1);
    Press(Qt::Key_Delete);
  }
  EXPECT_EQ(document.List->rowCount(), 1);
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(Clipboard, StandardsMoveBetweenDocuments) {
  const Document source = Open({{"131", 1, "A", 890.20001, 935.2, 1, 124, 0.2, 0.00625, 1}, Band(1.00001, 2, 3, 4)});
  source.Click(source.List, 0);
  source.Window->CopyCut(false);
  const Document target = Open(Standards(2), "target.sig");
  target.Click(target.List, 1);
  target.Window->Paste();
  EXPECT_EQ(NamesIn(target), (Names{"S1", "A", "A(A)", "S2"}));
  EXPECT_EQ(TableIn(target).Row(1), TableIn(source).Row(0));
  EXPECT_EQ(TableIn(target).Row(2), TableIn(source).Row(1));
  EXPECT_TRUE(target.State->Changed);
  EXPECT_FALSE(source.State->Changed);
}

TEST_F(Clipboard, PasteInsertsBeforeAStandardNeverIntoIt) {
  const Document document = Open(Group("A", 2) + Group("B", 2));
  document.Click(document.List, 0);
  document.Window->CopyCut(false);
  document.Click(document.List, 1);
  document.Window->Paste();
  EXPECT_EQ(NamesIn(document), (Names{"A", "A(A)", "A(B)", "A", "A(A)", "A(B)", "B", "B(A)", "B(B)"}));
  EXPECT_EQ(document.List->currentRow(), 1);
  EXPECT_EQ(document.Detail(NameRow), "A");
}

TEST_F(Clipboard, PasteFillsAnEmptyDocument) {
  const Document source = Open(Group("A", 1));
  source.Window->CopyCut(false);
  const Document target = OpenEmpty("Untitled 2");
  target.Window->Paste();
  EXPECT_EQ(NamesIn(target), (Names{"A", "A(A)"}));
  EXPECT_EQ(target.Detail(NameRow), "A");
  EXPECT_EQ(target.Bands->rowCount(), 1);
}

TEST_F(Clipboard, PasteInAnotherGridInsertsNothingButMarksChanged) {
  const Document document = Open(Group("A", 1));
  document.Window->CopyCut(false);
  for (Grid* const grid : {document.Details, document.Bands}) {
    document.State->Changed = false;
    document.Click(grid, 0, 1);
    document.Window->Paste();
    EXPECT_EQ(NamesIn(document), (Names{"A", "A(A)"}));
    EXPECT_TRUE(document.State->Changed);
  }
}

TEST_F(Clipboard, PasteBeforeAnythingWasCopiedInsertsNothingButMarksChanged) {
  const Document document = Open(Standards(1));
  document.Window->Paste();
  EXPECT_EQ(NamesIn(document), Names{"S1"});
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(Clipboard, CopiedCellLeavesTheStandardsThatWereCopied) {
  const Document document = Open(Group("A", 1));
  document.Window->CopyCut(false);
  document.Click(document.Details, UplinkRow);
  document.Window->CopyCut(false);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "1850.2000");
  EXPECT_FALSE(document.State->Changed);
  document.Click(document.Bands, 0, StopColumn);
  document.Window->CopyCut(true);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "1");
  EXPECT_EQ(Copied(), (Names{"A", "A(A)"}));
  EXPECT_TRUE(shared.StandardClipboardFull);
}

TEST_F(Clipboard, CutStandardsDoNotTouchTheTextClipboard) {
  QGuiApplication::clipboard()->setText("before");
  const Document document = Open(Standards(2));
  document.Window->CopyCut(true);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "before");
}

TEST_F(Clipboard, CutCellIsEmptyAtOnceAndStoredWhenItIsLeft) {
  // Without a stop channel the validation complains, and only about what the table holds.
  const QString complaint = "Warning:\tA\tStop channel is less than start channel.\r\n";
  const Document document = Open(Group("A", 1));
  document.Click(document.Details, StopRow);
  document.Window->CopyCut(true);
  EXPECT_EQ(document.Detail(StopRow), "");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "810");
  EXPECT_TRUE(document.State->Changed);
  EXPECT_EQ(document.Detail(StartRow), "512");
  EXPECT_EQ(document.Window->WarningsText(), "");
  Press(Qt::Key_Down);
  EXPECT_EQ(document.Window->WarningsText(), complaint);
  EXPECT_EQ(document.Detail(StopRow), "0");
  EXPECT_EQ(TableIn(document).Row(0).StopChannel, 0);
}

struct RoomCase {
  int Rows;
  int Pasted;
  bool Asks;
};

TEST_F(Clipboard, PasteAsksWhenTheTableWouldBeFull) {
  for (const RoomCase& given : {RoomCase{189, 10, false}, {190, 10, true}, {199, 1, true}, {0, 199, false}}) {
    shared.StandardClipboard = Standards(given.Pasted);
    shared.StandardClipboardFull = true;
    const Document document = Open(Standards(given.Rows));
    answers.Seen.clear();
    if (given.Asks) answers.Give(QMessageBox::Ok);
    document.Window->Paste();
    EXPECT_EQ(answers.Seen, given.Asks ? std::vector{Truncation} : std::vector<Message>()) << given.Rows;
    EXPECT_EQ(TableIn(document).Count, given.Rows + given.Pasted);
    EXPECT_TRUE(document.State->Changed);
  }
}

TEST_F(Clipboard, PasteDropsFromTheEndWhatDoesNotFit) {
  shared.StandardClipboard = {NamedRow("X"), NamedRow("Y")};
  shared.StandardClipboardFull = true;
  const Document document = Open(Standards(199));
  answers.Give(QMessageBox::Ok);
  document.Window->Paste();
  const Names names = NamesIn(document);
  EXPECT_EQ(names.size(), 200u);
  EXPECT_EQ(names.front(), "X");
  EXPECT_EQ(names.back(), "S198");
  EXPECT_EQ(document.List->rowCount(), 200);
}

TEST_F(Clipboard, CancelledPasteChangesNothing) {
  shared.StandardClipboard = Standards(10);
  shared.StandardClipboardFull = true;
  const Document document = Open(Standards(195));
  answers.Give(QMessageBox::Cancel);
  document.Window->Paste();
  EXPECT_EQ(TableIn(document), TableOf(Standards(195)));
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(Clipboard, GroupThatIsCutShortByPastingIsStillShown) {
  shared.StandardClipboard = Group("X", 2);
  shared.StandardClipboardFull = true;
  const Document document = Open(Standards(190) + Group("L", 8));
  answers.Give(QMessageBox::Ok);
  document.Window->Paste();
  document.Window->FindSSEntry("L");
  EXPECT_EQ(document.Detail(SubbandsRow), "8");
  EXPECT_EQ(document.Bands->rowCount(), 6);
}

TEST_F(Clipboard, BlankStandardGoesToTheEndWhateverIsSelected) {
  const Document document = Open(Group("A", 1) + Group("B", 1));
  document.Click(document.List, 0);
  document.Window->InsertBlank();
  EXPECT_EQ(NamesIn(document), (Names{"A", "A(A)", "B", "B(A)", "[New Standard]"}));
  EXPECT_EQ(TableIn(document).Row(4), (SignalStandardRecord{"0", 0, "[New Standard]", 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(document.List->currentRow(), 0);
  EXPECT_EQ(document.ListName(2), "[New Standard]");
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(Clipboard, BlankStandardInAnEmptyDocumentIsSelected) {
  const Document document = OpenEmpty();
  document.Window->InsertBlank();
  EXPECT_EQ(document.Detail(NameRow), "[New Standard]");
  EXPECT_EQ(document.Detail(ModulationRow), "None");
  EXPECT_EQ(document.Detail(DisplayModeRow), "Standby");
}

TEST_F(Clipboard, BlankStandardTakesThe200thPlace) {
  const Document document = Open(Standards(199));
  document.Window->InsertBlank();
  EXPECT_EQ(TableIn(document).Count, 200);
  document.State->Changed = false;
  answers.Give(QMessageBox::Ok);
  document.Window->InsertBlank();
  EXPECT_EQ(answers.Seen, std::vector{Full});
  EXPECT_EQ(TableIn(document).Count, 200);
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(Clipboard, FullTableTakesNothingButCanBeEmptied) {
  const Document document = OpenFull();
  answers.Give(QMessageBox::Ok);
  document.Window->InsertBlank();
  EXPECT_EQ(answers.Seen, std::vector{Full});
  document.List->setFocus();
  Press(Qt::Key_A, Qt::ControlModifier);
  document.Window->CopyCut(true);
  EXPECT_EQ(Copied().size(), 200u);
  EXPECT_EQ(document.List->rowCount(), 0);
}

TEST_F(Clipboard, GroupThatWasCutShortKeepsToItselfWhereverItGoes) {
  const Document document = Open({NamedRow("A"), NamedRow("B", 5), Band(1, 2, 3, 4)});
  document.Click(document.List, 1);
  document.Window->CopyCut(false);
  EXPECT_EQ(Copied(), (Names{"B", "B(A)", "", "", "", ""}));
  document.Window->InsertBlank();
  EXPECT_EQ(document.ListNames(), (std::vector<QString>{"A", "B", "[New Standard]"}));
  EXPECT_EQ(TableIn(document).Row(1).Subbands, 1);
  document.Click(document.List, 0);
  document.Window->Paste();
  EXPECT_EQ(document.ListNames(), (std::vector<QString>{"B", "A", "B", "[New Standard]"}));
  EXPECT_EQ(document.Bands->rowCount(), 5);
  EXPECT_EQ(NamesIn(document)[5], "B(E)");
}

TEST_F(Clipboard, GroupThatPromisesMoreThanATableTakesIsAskedAbout) {
  const Document document = Open({NamedRow("A"), NamedRow("B", 2147483647), Band(1, 2, 3, 4)});
  document.Click(document.List, 1);
  document.Window->CopyCut(true);
  EXPECT_EQ(Copied().size(), 200u);
  EXPECT_EQ(NamesIn(document), Names{"A"});
  answers.Give(QMessageBox::Cancel);
  document.Window->Paste();
  EXPECT_EQ(NamesIn(document), Names{"A"});
}

// --- The selection

std::vector<int> SelectedRows(const Document& document) {
  std::vector<int> rows;
  for (const QModelIndex& index : document.List->selectionModel()->selectedRows()) rows.push_back(index.row());
  std::ranges::sort(rows);
  return rows;
}

struct HeldKeysCase {
  const char* Name;
  void (*Run)(const Document&);
  int Current;
};

// Keys that are still down must not make a selection of what the program makes current.
TEST_F(Clipboard, OnlyTheCurrentRowIsSelectedAfterACommandWhateverKeysAreHeld) {
  const std::vector<HeldKeysCase> cases = {
      {"cut", [](const Document& document) { document.Window->CopyCut(true); }, 2},
      {"paste", [](const Document& document) { document.Window->Paste(); }, 2},
      {"insert", [](const Document& document) { document.Window->InsertBlank(); }, 4},
      {"find", [](const Document& document) { document.Window->FindSSEntry("S1"); }, 0},
      {"delete", [](const Document& document) { QTest::keyRelease(document.List, Qt::Key_Delete); }, 2},
      {"count", [](const Document& document) { document.UpDown->setValue(2); }, 4}};
  for (const Qt::KeyboardModifiers held :
       {Qt::KeyboardModifiers(Qt::ControlModifier), Qt::KeyboardModifiers(Qt::ShiftModifier),
        Qt::ControlModifier | Qt::ShiftModifier})
    for (const HeldKeysCase& given : cases) {
      shared.StandardClipboard = {NamedRow("X")};
      shared.StandardClipboardFull = true;
      const Document document = Open(Standards(8));
      document.Click(document.List, 2);
      document.Click(document.List, 4, 1, Qt::ShiftModifier);
      ASSERT_EQ(SelectedRows(document), (std::vector{2, 3, 4}));
      HoldKeys(held);
      given.Run(document);
      HoldKeys(Qt::NoModifier);
      EXPECT_EQ(document.List->currentRow(), given.Current) << given.Name;
      EXPECT_EQ(SelectedRows(document), std::vector{given.Current}) << given.Name;
    }
}

TEST_F(Clipboard, CutAndPasteIsAWayBackHoweverTheRowsWereSelected) {
  for (const bool downwards : {true, false}) {
    const Document document = Open(Standards(6));
    const SignalStandardTable former = TableIn(document);
    document.Click(document.List, downwards ? 1 : 3);
    for (int row = 0; row < 2; ++row) Press(downwards ? Qt::Key_Down : Qt::Key_Up, Qt::ShiftModifier);
    document.Window->CopyCut(true);
    EXPECT_EQ(document.List->currentRow(), 1);
    document.Window->Paste();
    EXPECT_EQ(TableIn(document), former);
  }
}

TEST_F(Clipboard, PasteGoesBeforeTheFirstSelectedStandard) {
  const Document document = Open(Standards(4));
  document.Click(document.List, 0);
  document.Window->CopyCut(false);
  document.Click(document.List, 1);
  document.Click(document.List, 3, 1, Qt::ShiftModifier);
  document.Window->Paste();
  EXPECT_EQ(NamesIn(document), (Names{"S1", "S1", "S2", "S3", "S4"}));
  EXPECT_EQ(document.List->currentRow(), 1);
}

TEST_F(Clipboard, NewStandardOfALongListIsShownAndNamed) {
  const Document document = Open(Standards(120));
  document.Click(document.List, 3);
  document.Window->InsertBlank();
  const QRect row = document.List->visualItemRect(document.List->item(120, 1));
  EXPECT_GE(row.top(), 0);
  EXPECT_LE(row.bottom(), document.List->viewport()->height());
  EXPECT_EQ(frame.Status(), "[New Standard] is number 121 of the list.");
  EXPECT_EQ(document.List->currentRow(), 3);
}

// --- Warnings

TEST_F(Clipboard, EveryChangeOfTheTableIsValidated) {
  const QString duplicate = "Warning:\tA\tDuplicate Signal Standard name.\r\n";
  const Document document = Open(Group("A", 1) + Group("B", 0));
  document.Click(document.List, 0);
  document.Window->CopyCut(false);
  document.Window->Paste();
  EXPECT_EQ(frame.Warned.back(), duplicate);
  Press(Qt::Key_Delete);
  EXPECT_EQ(frame.Warned.back(), "");
  document.Window->Paste();
  ASSERT_EQ(frame.Warned.back(), duplicate);
  document.Window->CopyCut(true);
  EXPECT_EQ(frame.Warned.back(), "");
  document.Window->InsertBlank();
  EXPECT_EQ(frame.Warned.back(), "");
  document.UpDown->setValue(0);
  EXPECT_TRUE(frame.Warned.back().contains("Step size may be out of range."));
}

TEST_F(Clipboard, LastStandardTakesItsWarningsAlong) {
  const Document document = Open({{"2", 0, "A", 9001, 2, 3, 4, 5, 6, 7}});
  ASSERT_NE(frame.Warned.back(), "");
  Press(Qt::Key_Delete);
  EXPECT_EQ(frame.Warned.back(), "");
  EXPECT_EQ(document.Window->WarningsText(), "");
}

// Every command that changes the table takes what is being typed with it.
struct CommandCase {
  const char* Name;
  void (*Run)(const Document&);
  Names Expected;
};

void PrintTo(const CommandCase& given, std::ostream* output) { *output << given.Name; }

class CommandsDuringAnEdit : public Clipboard, public ::testing::WithParamInterface<CommandCase> {};

TEST_P(CommandsDuringAnEdit, StoreItFirst) {
  shared.StandardClipboard = {NamedRow("X")};
  shared.StandardClipboardFull = true;
  const Document document = Open(Standards(2));
  document.Overwrite(NameRow, "typed");
  GetParam().Run(document);
  EXPECT_FALSE(document.Box->isVisible());
  EXPECT_EQ(NamesIn(document), GetParam().Expected);
}

INSTANTIATE_TEST_SUITE_P(Clipboard, CommandsDuringAnEdit,
                         ::testing::Values(CommandCase{"InsertBlank",
                                                       [](const Document& document) { document.Window->InsertBlank(); },
                                                       {"typed", "S2", "[New Standard]"}},
                                           CommandCase{"Paste",
                                                       [](const Document& document) {
                                                         document.List->setFocus();
                                                         document.Window->Paste();
                                                       },
                                                       {"X", "typed", "S2"}},
                                           CommandCase{"Delete",
                                                       [](const Document& document) {
                                                         document.Click(document.List, 1);
                                                         Press(Qt::Key_Delete);
                                                       },
                                                       {"typed"}}),
                         [](const auto& given) { return given.param.Name; });

}  // namespace
}  // namespace chanplan::testing
