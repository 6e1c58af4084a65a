#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

// A grid alone in a window: a title column and two columns of values.
class GridTest : public ::testing::Test {
 protected:
  GridTest() : grid(new Grid("Grid", 1, nullptr)) {
    window.setCentralWidget(grid);
    grid->setColumnCount(3);
    grid->SetRows(3, 20);
    for (int row = 0; row < 3; ++row)
      for (int column = 0; column < 3; ++column) grid->FillCell(row, column, QString("%1/%2").arg(row).arg(column));
    window.resize(500, 300);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, LongestWait));
    grid->setFocus();
  }

  std::pair<int, int> Current() const { return {grid->currentRow(), grid->currentColumn()}; }

  QMainWindow window;
  Grid* grid;
};

TEST_F(GridTest, TitleColumnIsNeverCurrent) {
  QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(grid->item(2, 0)).center());
  EXPECT_EQ(Current(), std::pair(2, 1));
  Press(Qt::Key_Left);
  EXPECT_EQ(Current(), std::pair(2, 1));
  Press(Qt::Key_Home);
  EXPECT_EQ(Current(), std::pair(2, 1));
  grid->setCurrentCell(0, 0);
  EXPECT_EQ(Current(), std::pair(0, 1));
}

TEST_F(GridTest, CellsThatAreNotThereAreEmpty) {
  EXPECT_EQ(grid->CellText(9, 9), "");
  EXPECT_EQ(grid->CellLabel(9, 9), "");
}

TEST_F(GridTest, LabelIsSpokenBeforeTheText) {
  grid->FillCell(0, 1, "890.2000", "Uplink");
  EXPECT_EQ(grid->item(0, 1)->data(Qt::AccessibleTextRole), "Uplink, 890.2000");
  grid->EditCell(0, 1, "7");
  EXPECT_EQ(grid->item(0, 1)->data(Qt::AccessibleTextRole), "Uplink, 7");
}

TEST_F(GridTest, KeysAskForAnEdit) {
  int requests = 0;
  std::string typed;
  QObject::connect(grid, &Grid::EditRequested, grid, [&] { ++requests; });
  QObject::connect(grid, &Grid::CellTyped, grid, [&](QChar character) { typed += character.toLatin1(); });
  Press(Qt::Key_F2);
  Press(Qt::Key_Return);
  Press(Qt::Key_Enter);
  EXPECT_EQ(requests, 3);
  EXPECT_EQ(typed, "");
  Type("a. 9");
  Press(Qt::Key_Backspace);
  EXPECT_EQ(typed, "a. 9\b");
  for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
    Press(Qt::Key_B, modifier);
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Escape, Qt::Key_Insert, Qt::Key_F5}) Press(key);
  EXPECT_EQ(typed, "a. 9\b");
  EXPECT_EQ(requests, 3);
}

TEST_F(GridTest, DeleteCountsWhenItIsReleased) {
  int deletions = 0;
  QObject::connect(grid, &Grid::DeleteReleased, grid, [&] { ++deletions; });
  QTest::keyPress(grid, Qt::Key_Delete);
  EXPECT_EQ(deletions, 0);
  QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_Delete, Qt::NoModifier, {}, true);
  QApplication::sendEvent(grid, &repeated);
  EXPECT_EQ(deletions, 0);
  QTest::keyRelease(grid, Qt::Key_Delete);
  EXPECT_EQ(deletions, 1);
}

TEST_F(GridTest, TellsWhichRowIsCurrentNow) {
  std::vector<int> rows;
  QObject::connect(grid, &Grid::CurrentCellMoved, grid, [&](int row) { rows.push_back(row); });
  grid->setCurrentCell(0, 2);
  grid->setCurrentCell(2, 2);
  grid->SetRows(0, 20);
  EXPECT_EQ(rows, (std::vector{0, 2, -1}));
}

TEST_F(GridTest, NewRowsAreAsHighAsAsked) {
  grid->SetRows(5, 33);
  EXPECT_EQ(grid->rowHeight(2), 20);
  EXPECT_EQ(grid->rowHeight(3), 33);
  EXPECT_EQ(grid->rowHeight(4), 33);
}

TEST_F(GridTest, CtrlAndClicksBesideTheRowsLeaveTheCurrentCellSelected) {
  for (const auto behavior : {QAbstractItemView::SelectItems, QAbstractItemView::SelectRows}) {
    grid->setSelectionBehavior(behavior);
    grid->setSelectionMode(behavior == QAbstractItemView::SelectRows ? QAbstractItemView::ContiguousSelection
                                                                     : QAbstractItemView::SingleSelection);
    grid->SetCurrent(1, 1);
    const auto click = [&](const QPoint& at, Qt::KeyboardModifiers held) {
      QTest::mouseClick(grid->viewport(), Qt::LeftButton, held, at);
      EXPECT_TRUE(grid->selectionModel()->isSelected(grid->currentIndex()));
    };
    click(grid->visualItemRect(grid->item(1, 1)).center(), Qt::ControlModifier);
    EXPECT_EQ(Current(), std::pair(1, 1));
    click(grid->viewport()->rect().bottomRight() - QPoint(2, 2), Qt::NoModifier);
    EXPECT_EQ(Current(), std::pair(1, 1));
    click(grid->visualItemRect(grid->item(2, 1)).center(), Qt::ControlModifier);
    EXPECT_EQ(Current(), std::pair(2, 1));
  }
}

TEST_F(GridTest, LettersAndHomeAndEndFindRowsWhereRowsAreSelected) {
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  for (int row = 0; row < 3; ++row) grid->FillCell(row, 1, QStringList({"GSM 900", "CDMA", "UMTS"})[row]);
  grid->SetCurrent(0, 1);
  Type("u");
  EXPECT_EQ(Current(), std::pair(2, 1));
  Press(Qt::Key_Home);
  EXPECT_EQ(Current(), std::pair(0, 1));
  Press(Qt::Key_End);
  EXPECT_EQ(Current(), std::pair(2, 1));
  EXPECT_EQ(grid->selectedRanges().size(), 1);
  EXPECT_EQ(grid->selectedRanges().front().topRow(), 2);
}

// Of a rounded value the exact one is shown, of a text that does not fit all of it, as it stands.
TEST_F(GridTest, ToolTipsTellWhatACellCannot) {
  grid->setColumnWidth(1, 60);
  grid->FillCell(0, 1, "0.0063", "", "0.00625");
  grid->FillCell(1, 1, "<b>a name that is far too long</b>");
  grid->FillCell(2, 1, "short");
  const auto toolTipAt = [&](int row) {
    const QPoint at = grid->visualItemRect(grid->item(row, 1)).center();
    QHelpEvent help(QEvent::ToolTip, at, grid->viewport()->mapToGlobal(at));
    QApplication::sendEvent(grid->viewport(), &help);
    QTextDocument text;
    text.setHtml(QToolTip::text());
    return text.toPlainText();
  };
  EXPECT_EQ(toolTipAt(0), "0.00625");
  EXPECT_EQ(toolTipAt(1), "<b>a name that is far too long</b>");
  QToolTip::hideText();
  ASSERT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, LongestWait));
  EXPECT_EQ(toolTipAt(2), "");
}

TEST_F(GridTest, EmptyGridShowsThatItHasTheFocus) {
  QLineEdit other(&window);
  other.show();
  grid->SetRows(0, 20);
  const auto picture = [&](QWidget& focused) {
    focused.setFocus();
    QCoreApplication::processEvents();
    return grid->viewport()->grab().toImage();
  };
  EXPECT_NE(picture(*grid), picture(other));
}

// The current cell stays the marked one, where a title would be clicked or gone to.
TEST_F(GridTest, TitlesTakeNoMarkAway) {
  const auto marked = [&] { return grid->selectionModel()->isSelected(grid->currentIndex()); };
  grid->SetCurrent(1, 1);
  Press(Qt::Key_Left);
  EXPECT_TRUE(marked());
  QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(grid->item(2, 0)).center());
  EXPECT_EQ(Current(), std::pair(2, 1));
  EXPECT_TRUE(marked());
}

}  // namespace
}  // namespace chanplan::testing
