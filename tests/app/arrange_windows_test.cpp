// Child windows arranged by the Window menu.
#include "app/arrange_windows.h"

#include <QMdiSubWindow>

#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

TEST(Tiles, FillTheAreaWithoutAGap) {
  const QRect area(0, 0, 100, 50);
  EXPECT_EQ(Tiles(area, 3, Arrangement::TileHorizontal),
            QList<QRect>({{0, 0, 100, 16}, {0, 16, 100, 17}, {0, 33, 100, 17}}));
  EXPECT_EQ(Tiles(area, 3, Arrangement::TileVertical),
            QList<QRect>({{0, 0, 33, 50}, {33, 0, 33, 50}, {66, 0, 34, 50}}));
  EXPECT_EQ(Tiles(area, 0, Arrangement::TileVertical), QList<QRect>());
}

TEST(Steps, GoDownToTheRightAndStartAgain) {
  EXPECT_EQ(Steps(QRect(0, 0, 100, 80), 4, 10),
            QList<QRect>({{0, 0, 75, 60}, {10, 10, 75, 60}, {20, 20, 75, 60}, {0, 0, 75, 60}}));
  EXPECT_EQ(Steps(QRect(0, 0, 8, 8), 2, 10), QList<QRect>({{0, 0, 6, 6}, {0, 0, 6, 6}}));
}

namespace {

class WindowMenu : public AppTest {
 protected:
  // Stand-ins, as they may become as small as a tile.
  void StartWithThreeDocuments() {
    StartWithStandIns();
    Choose("mnuFileNew");
    Choose("mnuFileNew");
    QTest::qWait(1);
  }
  QMdiArea& Area() { return Get<QMdiArea>("documents"); }
  QMdiSubWindow& Window(int number) { return *app->Registry.Document(number); }
};

}  // namespace

TEST_F(WindowMenu, HorizontalTilesStandOneAboveTheOther) {
  StartWithThreeDocuments();
  Choose("mnuWindowTileHorizontal");
  const QRect area = Area().viewport()->rect();
  for (int number = 1; number <= 3; ++number) {
    EXPECT_EQ(Window(number).x(), 0) << number;
    EXPECT_EQ(Window(number).width(), area.width()) << number;
    EXPECT_EQ(Window(number).y(), area.height() * (number - 1) / 3) << number;
  }
}

TEST_F(WindowMenu, VerticalTilesStandSideBySide) {
  StartWithThreeDocuments();
  Window(2).showMaximized();
  Choose("mnuWindowTileVertical");
  const QRect area = Area().viewport()->rect();
  EXPECT_FALSE(Window(2).isMaximized());
  for (int number = 1; number <= 3; ++number) {
    EXPECT_EQ(Window(number).y(), 0) << number;
    EXPECT_EQ(Window(number).height(), area.height()) << number;
    EXPECT_EQ(Window(number).x(), area.width() * (number - 1) / 3) << number;
  }
}

TEST_F(WindowMenu, MinimisedWindowsKeepTheirPlaceUncovered) {
  StartWithThreeDocuments();
  Window(2).showMinimized();
  const QRect icon = Window(2).geometry();
  for (const char* command : {"mnuWindowTileHorizontal", "mnuWindowTileVertical"}) {
    Choose(command);
    EXPECT_EQ(Window(2).geometry(), icon) << command;
    EXPECT_FALSE(Window(1).geometry().intersects(icon)) << command;
    EXPECT_FALSE(Window(3).geometry().intersects(icon)) << command;
  }
}

TEST_F(WindowMenu, CascadedWindowsStepDownToTheRightTheActiveOneInFront) {
  StartWithThreeDocuments();
  Frame().resize(800, 600);
  Choose("mnuWindowTileHorizontal");
  Choose("mnuWindowCascade");
  EXPECT_EQ(Window(1).pos(), QPoint(0, 0));
  EXPECT_EQ(Window(2).x(), Window(2).y());
  EXPECT_GT(Window(2).y(), 0);
  EXPECT_EQ(Window(3).pos(), 2 * Window(2).pos());
  EXPECT_EQ(Frame().ActiveDocument(), &Window(3));
}

TEST_F(WindowMenu, IconsAreArrangedAlongTheLowerEdge) {
  StartWithThreeDocuments();
  for (const int number : {1, 3}) {
    Window(number).showMinimized();
    Window(number).move(50, 30 * number);
  }
  const QRect other = Window(2).geometry();
  Choose("mnuWindowArrangeIcons");
  const QRect area = Area().viewport()->rect();
  EXPECT_EQ(Window(1).geometry().bottomLeft(), area.bottomLeft());
  EXPECT_EQ(Window(3).geometry().bottomLeft(), QPoint(Window(1).width(), area.bottom()));
  EXPECT_EQ(Window(2).geometry(), other);
}

TEST_F(WindowMenu, IconsForWhichARowHasNoRoomStandInTheNext) {
  StartWithStandIns();
  Frame().resize(400, 600);
  for (int number = 2; number <= 8; ++number) Choose("mnuFileNew");
  for (int number = 1; number <= 8; ++number) Window(number).showMinimized();
  Choose("mnuWindowArrangeIcons");
  const QRect area = Area().viewport()->rect();
  const QSize size = Window(1).size();
  const int inARow = area.width() / size.width();
  ASSERT_TRUE(inARow >= 1 && inARow < 4) << inARow;
  for (int number = 1; number <= 8; ++number) {
    const int column = (number - 1) % inARow;
    const int row = (number - 1) / inARow;
    EXPECT_EQ(Window(number).pos(), QPoint(column * size.width(), area.height() - (row + 1) * size.height())) << number;
  }
}

TEST_F(WindowMenu, ListsTheOpenDocuments) {
  StartWithThreeDocuments();
  app->Registry.Document(2)->setWindowTitle("/R&D/a.sig");
  QMenu& menu = DropDown("mnuWindow");
  EXPECT_EQ(VisibleItems(menu).mid(5), QStringList({"&1 Untitled 1", "&2 /R&&D/a.sig", "&3 Untitled 3"}));
  EXPECT_FALSE(menu.actions().at(8)->isChecked());
  EXPECT_TRUE(menu.actions().at(9)->isChecked());
  QTest::keyClick(&menu, Qt::Key_2);
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(2));

  Choose("mnuFileClose");
  EXPECT_EQ(VisibleItems(DropDown("mnuWindow")).mid(5), QStringList({"&1 Untitled 1", "&2 Untitled 3"}));
  PullUp();
}

TEST_F(WindowMenu, OnlyTheFirstNineDocumentsHaveADigit) {
  StartWithStandIns();
  for (int number = 2; number <= 10; ++number) Choose("mnuFileNew");
  QMenu& menu = DropDown("mnuWindow");
  EXPECT_EQ(VisibleItems(menu).mid(13), QStringList({"&9 Untitled 9", "10 Untitled 10"}));
  QTest::keyClick(&menu, Qt::Key_1);
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(1));
}

TEST_F(WindowMenu, ChosenDocumentIsRestoredFromItsIcon) {
  StartWithThreeDocuments();
  Window(1).showMinimized();
  QTest::keyClick(&DropDown("mnuWindow"), Qt::Key_1);
  EXPECT_FALSE(Window(1).isMinimized());
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(1));
}

TEST_F(WindowMenu, NewWindowShowsItsMessage) {
  Start();
  AnswerMessage();
  Choose("mnuWindowNewWindow");
  EXPECT_EQ(messages.back().Text, "New Window Code goes here!");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
}
