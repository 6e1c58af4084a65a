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
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
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

}  // namespace
}  // namespace chanplan::testing
