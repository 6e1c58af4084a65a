// The user goes to another program and comes back.
#include <QClipboard>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>

#include "app/compare_window.h"
#include "editor/grid_columns.h"
#include "tests/app/app_fixture.h"
#include "tests/core/table_of.h"
#include "tests/desktop/desktop.h"

namespace chanplan::testing {
namespace {

constexpr int StopRow = 7;

class AnotherProgram : public AppTest {
 protected:
  Desktop& desktop = TheDesktop();

  void Open(const QStringList& paths) {
    Start(paths);
    desktop.Settle(Frame());
  }
  QString TableFile(const QString& name, const SignalStandardTable& table) {
    EXPECT_FALSE(SaveSigFile(folder / name.toStdString(), table));
    return InFolder(qPrintable(name));
  }
  QString SomeTable() {
    return TableFile("some.sig", TableOf({NamedRow("A", 1), NamedRow("A(A)"), NamedRow("B"), NamedRow("B")}));
  }

  Grid& GridOf(const char* name) { return *Frame().ActiveDocument()->findChild<Grid*>(name); }
  void ClickCell(const char* name, int row) {
    Grid& grid = GridOf(name);
    grid.scrollToItem(grid.item(row, 1));
    desktop.Click(*grid.viewport(), grid.visualItemRect(grid.item(row, 1)).center() - QPoint(20, 0));
    EXPECT_EQ(grid.currentRow(), row);
  }
  void GoAndComeBack() {
    desktop.GoToTheOtherProgram();
    desktop.ComeBack(Frame());
  }
};

TEST_F(AnotherProgram, LeavesAnOpenEditOpen) {
  Open({SomeTable()});
  ClickCell("GridDetails", StopRow);
  desktop.Type("12");
  auto* box = Frame().ActiveDocument()->findChild<QLineEdit*>("txtEntry");
  ASSERT_TRUE(box->isVisible());
  EXPECT_EQ(box->text(), "12");
  desktop.GoToTheOtherProgram();
  EXPECT_TRUE(box->isVisible());
  EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).StopChannel, 810);
  desktop.ComeBack(Frame());
  desktop.Type("34");
  EXPECT_EQ(box->text(), "1234");
  desktop.Press({"Return"});
  EXPECT_FALSE(box->isVisible());
  EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).StopChannel, 1234);
}

TEST_F(AnotherProgram, SelectsWhatTheMiddleButtonPastes) {
  Open({SomeTable()});
  ClickCell("GridDetails", StopRow);
  desktop.Type("12");
  GoAndComeBack();
  EXPECT_TRUE(QTest::qWaitFor(
      [] { return QGuiApplication::clipboard()->text(QClipboard::Selection) == SelectedInTheOtherProgram; },
      LongestWait));
  auto* box = Frame().ActiveDocument()->findChild<QLineEdit*>("txtEntry");
  // In front of what was typed, which stands on the right: the button pastes where it is pressed.
  desktop.Click(*box, {4, box->height() / 2}, 2);
  EXPECT_EQ(box->text(), "3412");
  desktop.Press({"Return"});
  EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).StopChannel, 3412);
}

TEST_F(AnotherProgram, CommandsFindTheDocumentWhereverTheCursorStands) {
  const QString path = SomeTable();
  Open({path});
  QPointer<DocumentWindow> document = Frame().ActiveDocument();
  std::vector<std::pair<const char*, int>> places = {{"GridList", 1}, {"GridBands", 0}};
  for (int row = NameRow; row < static_cast<int>(DetailRows.size()); ++row) places.emplace_back("GridDetails", row);
  for (const auto& [grid, row] : places) {
    desktop.Click(*GridOf("GridList").viewport(),
                  GridOf("GridList").visualItemRect(GridOf("GridList").item(0, 1)).center());
    ClickCell(grid, row);
    GoAndComeBack();
    EXPECT_EQ(Frame().ActiveDocument(), document) << grid << row;
    document->State().Changed = true;
    QFile::remove(path);
    desktop.Press({"ctrl+s"});
    EXPECT_FALSE(document->State().Changed) << grid << row;
    EXPECT_TRUE(QFile::exists(path)) << grid << row;
  }
  desktop.Press({"ctrl+n"});
  EXPECT_EQ(Captions().size(), 2);
}

TEST_F(AnotherProgram, KeepsTheDocumentWhoseTitleBarLooksActive) {
  Open({SomeTable(), TableFile("other.sig", TableOf({NamedRow("X")}))});
  for (const int number : {1, 2, 1}) {
    Frame().ShowDocument(*app->Registry.Document(number));
    ClickCell("GridDetails", 2);
    GoAndComeBack();
    EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(number));
    EXPECT_TRUE(app->Registry.Document(number)->isActiveWindow());
    EXPECT_TRUE(app->Registry.Document(number)->isAncestorOf(QApplication::focusWidget()));
  }
}

TEST_F(AnotherProgram, EditIsStoredWhereAnotherDocumentTakesOverMeanwhile) {
  Open({SomeTable()});
  ClickCell("GridDetails", StopRow);
  desktop.Type("12");
  desktop.GoToTheOtherProgram();
  Item("mnuFileNew").trigger();
  EXPECT_EQ(app->Registry.Document(1)->Table().Row(0).StopChannel, 12);
  desktop.ComeBack(Frame());
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(2));
}

TEST_F(AnotherProgram, ComingBackKeepsTheChosenWarning) {
  Open({SomeTable()});
  desktop.Press({"F6", "Down"});
  const QString position = StatusPanel2();
  ASSERT_TRUE(position.startsWith(" 1 of")) << position.toStdString();
  desktop.Press({"F6"});
  GoAndComeBack();
  EXPECT_EQ(StatusPanel2(), position);
  EXPECT_GE(Get<QListWidget>("lstWarnings").currentRow(), 0);
}

TEST_F(AnotherProgram, ComparisonStaysAboveTheFrame) {
  Open({SomeTable(), TableFile("other.sig", TableOf({NamedRow("X")}))});
  Compare(Frame(), *app->Registry.Document(1), {app->Registry.Document(2)});
  const QPointer<CompareWindow> comparison = Frame().findChild<CompareWindow*>();
  comparison->resize(400, 300);
  comparison->move(Frame().pos() + QPoint(60, 80));
  desktop.Settle(*comparison);
  GoAndComeBack();
  QWidget& close = Get<QPushButton>("bttnCompareClose");
  ASSERT_TRUE(Frame().geometry().contains(QRect(close.mapToGlobal(QPoint()), close.size())));
  desktop.Click(close, close.rect().center());
  EXPECT_EQ(comparison, nullptr) << "the click went to the frame";
}

TEST_F(AnotherProgram, ListThatHasDroppedDownIsNotAChoice) {
  Open({SomeTable()});
  ClickCell("GridDetails", 3);
  desktop.Press({"alt+Down", "Up"});
  desktop.GoToTheOtherProgram();
  desktop.ComeBack(Frame());
  desktop.Press({"Escape", "Escape"});
  EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).State, "2");
}

}  // namespace
}  // namespace chanplan::testing
