// The bar that looks for names, frequencies and channels.
#include <QCheckBox>
#include <QToolButton>

#include "editor/find_bar.h"
#include "editor/grid_columns.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class Finding : public AppTest {
 protected:
  void StartWith(const QStringList& more = {}) {
    WriteFile(folder / "plan.sig",
              "header\r\n"
              "2\t0\tP-GSM 900\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n"
              "2\t2\tE-GSM 900\t890\t935\t0\t1023\t0.2\t0.2\t1\r\n"
              "0\t0\t\t890\t935\t0\t124\t0.2\t0.2\t1\r\n"
              "0\t0\t\t880.2\t925.2\t975\t1023\t0.2\t0.2\t1\r\n"
              "2\t0\tDCS 1800\t1710.2\t1805.2\t512\t885\t0.2\t0.2\t1\r\n");
    Start(QStringList{InFolder("plan.sig")} + more);
    Frame().ShowDocument(*app->Registry.Document(1));
  }
  DocumentWindow& Active() { return *Frame().ActiveDocument(); }
  Grid& In(const char* name) { return *Active().findChild<Grid*>(name); }
  FindBar* Bar() { return Active().findChild<FindBar*>("FindBar"); }
  QString Outcome() { return Bar()->findChild<QLabel*>("lblFind")->accessibleName(); }
  void Find(const char* text) {
    Key(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(Bar() != nullptr && Bar()->txtFind->hasFocus());
    QTest::keyClicks(Bar()->txtFind, text);
  }
  // Where the cursor is: the standard, the grid's row and column.
  QString Place() {
    const Grid& list = In("GridList");
    const QString standard = list.CellText(list.currentRow(), 1);
    const auto cell = [](const Grid& grid) {
      return QString(" %1,%2").arg(grid.currentRow()).arg(grid.currentColumn());
    };
    return Outcome().contains(", Band") ? standard + " band" + cell(In("GridBands"))
                                        : standard + cell(In("GridDetails"));
  }
};

}  // namespace

TEST_F(Finding, IsInNoMenu) {
  StartWith();
  for (const QAction* item : Frame().findChildren<QAction*>()) EXPECT_NE(item->shortcut(), QKeySequence("Ctrl+F"));
  EXPECT_EQ(Bar(), nullptr) << "not there before it is asked for";
}

TEST_F(Finding, KeyForAllTablesCountsForTheEnterBehindIt) {
  StartWith({Table("other.sig")});
  Find("dcs");
  Key(Qt::Key_A, Qt::AltModifier);
  Key(Qt::Key_Return);
  Key(Qt::Key_Return);
  EXPECT_EQ(Active().windowTitle(), InFolder("other.sig"));
}

TEST_F(Finding, EnterGoesFromPlaceToPlaceAndRound) {
  StartWith();
  Find("935.4");
  EXPECT_EQ(Outcome(), "2 found");
  Key(Qt::Key_Return);
  EXPECT_EQ(Outcome(), "1 of 2: P-GSM 900, downlink, channel 2");
  EXPECT_EQ(Place(), "P-GSM 900 5,1");
  EXPECT_TRUE(Bar()->txtFind->hasFocus()) << "the next one is an Enter away";
  Key(Qt::Key_Enter);
  EXPECT_EQ(Outcome(), "2 of 2: E-GSM 900, Band A, downlink, channel 2");
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "") << "nobody asked how to edit";
  EXPECT_EQ(Place(), "E-GSM 900 band 0,2");
  Key(Qt::Key_Return);
  EXPECT_EQ(Place(), "P-GSM 900 5,1");
  Key(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(Place(), "E-GSM 900 band 0,2");
  EXPECT_FALSE(Active().State().Changed);
}

TEST_F(Finding, FindsNamesAndChannels) {
  StartWith();
  Find("dcs");
  Key(Qt::Key_Return);
  EXPECT_EQ(Outcome(), "1 of 1: DCS 1800");
  EXPECT_EQ(Place(), "DCS 1800 0,1");
  Find("channel 1000");
  Key(Qt::Key_Return);
  EXPECT_EQ(Outcome(), "1 of 1: E-GSM 900, Band B, channel 1000: 885.2 and 930.2 MHz");
  EXPECT_EQ(Place(), "E-GSM 900 band 1,3");
  Find("UMTS");
  EXPECT_EQ(Outcome(), "Not found");
  Key(Qt::Key_Return);
  EXPECT_EQ(Outcome(), "Not found");
}

TEST_F(Finding, EscapeClosesItAndLeavesTheCursorWhereItIs) {
  StartWith();
  Frame().resize(800, 800);
  const QRect list = In("GridList").geometry();
  Find("1000");
  EXPECT_LT(In("GridList").geometry().bottom(), list.bottom()) << "it stands below the grids";
  EXPECT_EQ(Bar()->geometry().bottom(), Bar()->parentWidget()->rect().bottom());
  Key(Qt::Key_Return);
  Key(Qt::Key_Escape);
  EXPECT_FALSE(Bar()->isVisible());
  EXPECT_EQ(In("GridList").geometry(), list);
  EXPECT_EQ(QApplication::focusWidget(), &In("GridBands"));
  EXPECT_EQ(In("GridBands").currentRow(), 1);
}

TEST_F(Finding, LooksInAllTablesWhenAsked) {
  StartWith({Table("other.sig", {"GSM-R", "DCS"})});
  Find("gsm");
  EXPECT_EQ(Outcome(), "2 found");
  QTest::mouseClick(Bar()->chkFindAll, Qt::LeftButton, {}, QPoint(8, Bar()->chkFindAll->height() / 2));
  EXPECT_EQ(Outcome(), "3 found");
  QStringList found;
  for (int time = 0; time < 4; ++time) {
    Key(Qt::Key_Return);
    EXPECT_TRUE(Bar()->isVisible() && Bar()->txtFind->hasFocus());
    found += Outcome() + " in " + Active().windowTitle();
  }
  const QString plan = " in " + InFolder("plan.sig");
  EXPECT_EQ(found, QStringList({"1 of 3: P-GSM 900" + plan, "2 of 3: E-GSM 900" + plan,
                                "3 of 3: GSM-R in " + InFolder("other.sig"), "1 of 3: P-GSM 900" + plan}));
  Key(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(Active().windowTitle(), InFolder("other.sig")) << "backwards, too";
  EXPECT_FALSE(app->Registry.Document(1)->findChild<FindBar*>()->isVisible()) << "there is one bar";
}

TEST_F(Finding, KeyOfTheBoxLeavesTheKeyboardToTheField) {
  StartWith({Table("other.sig", {"GSM-R", "DCS"})});
  Find("gsm");
  Key(Qt::Key_A, Qt::AltModifier);
  QTest::keyClicks(QApplication::focusWidget(), "-");
  EXPECT_EQ(Bar()->txtFind->text(), "gsm-") << "also while the box is shown pressed";
  EXPECT_TRUE(QTest::qWaitFor([this] { return Bar()->chkFindAll->isChecked(); }, LongestWait));
  EXPECT_EQ(Outcome(), "1 found");
  Key(Qt::Key_Return);
  EXPECT_EQ(Active().windowTitle(), InFolder("other.sig"));
  EXPECT_TRUE(Bar()->txtFind->hasFocus());
}

// A document is larger than the room for it where the screen is small.
TEST_F(Finding, StandsAtTheLowerEdgeOfWhatIsInSight) {
  StartWith();
  Frame().resize(900, 460);
  QMdiArea& area = Get<QMdiArea>("documents");
  const QWidget& seen = *area.viewport();
  const auto on = [&seen](const QWidget& widget, const QRect& place) {
    return QRect(widget.mapTo(&seen, place.topLeft()), place.size());
  };
  const auto barPlace = [&] { return on(*Bar(), Bar()->rect()); };
  const auto barIsAtTheEdge = [&] {
    return seen.rect().contains(barPlace()) && barPlace().bottom() == seen.rect().bottom();
  };
  const auto cellIsSeen = [&](Grid& grid) {
    const QRect cell = on(*grid.viewport(), grid.visualRect(grid.currentIndex()));
    return seen.rect().contains(cell) && (Bar()->isHidden() || !barPlace().intersects(cell));
  };
  const auto scrollToTheEnd = [&area] {
    QCoreApplication::processEvents();  // the bar's range follows by an event
    area.verticalScrollBar()->setValue(area.verticalScrollBar()->maximum());
  };
  ASSERT_GT(Active().geometry().bottom(), seen.rect().bottom() + 50);
  Find("channel 1000");
  EXPECT_TRUE(barIsAtTheEdge());
  Key(Qt::Key_Return);
  EXPECT_EQ(Place(), "E-GSM 900 band 1,3");
  EXPECT_TRUE(cellIsSeen(In("GridBands")));
  EXPECT_TRUE(seen.rect().contains(barPlace()));
  Find("p-gsm");
  Key(Qt::Key_Return);
  EXPECT_EQ(Place(), "P-GSM 900 0,1");
  EXPECT_TRUE(cellIsSeen(In("GridDetails")));
  EXPECT_TRUE(barIsAtTheEdge());
  area.verticalScrollBar()->setValue(10);
  EXPECT_TRUE(barIsAtTheEdge()) << "where the room is scrolled";
  scrollToTheEnd();
  EXPECT_EQ(Bar()->geometry().bottom(), Bar()->parentWidget()->rect().bottom());
  area.verticalScrollBar()->setValue(0);
  Frame().resize(900, 480);
  EXPECT_TRUE(barIsAtTheEdge()) << "where the room changes";
  Frame().resize(900, 800);
  EXPECT_EQ(Bar()->geometry().bottom(), Bar()->parentWidget()->rect().bottom());
  Frame().resize(900, 460);
  scrollToTheEnd();
  Key(Qt::Key_Escape);
  EXPECT_TRUE(cellIsSeen(In("GridDetails"))) << "the cursor is where the keyboard goes back to";
}

TEST_F(Finding, BringsADocumentIntoSightThatIsAtTheEdgeOrAnIcon) {
  StartWith();
  const QWidget& seen = *Get<QMdiArea>("documents").viewport();
  const auto fieldIsSeen = [&] {
    const QLineEdit& field = *Bar()->txtFind;
    return field.isVisible() && seen.rect().contains(QRect(field.mapTo(&seen, QPoint()), field.size()));
  };
  Active().move(seen.width() - 60, seen.height() - 40);
  Find("dcs");
  EXPECT_TRUE(fieldIsSeen());
  Key(Qt::Key_Escape);
  Active().showMinimized();
  Find("dcs");
  EXPECT_TRUE(fieldIsSeen());
  EXPECT_EQ(Bar()->txtFind->text(), "dcs");
}

TEST_F(Finding, StoresAnOpenEditFirst) {
  StartWith();
  Grid& details = In("GridDetails");
  details.setFocus();
  details.SetCurrent(NameRow, 1);
  QTest::keyClick(&details, 'R');
  QTest::keyClicks(QApplication::focusWidget(), "enamed");
  Find("renamed");
  EXPECT_EQ(Outcome(), "1 found");
  Active().State().Changed = false;
}

TEST_F(Finding, FollowsTheTable) {
  StartWith();
  Find("gsm");
  Choose("menuEditNewChanplan");
  EXPECT_EQ(Outcome(), "2 found");
  Active().State().Changed = false;
  In("GridList").SetCurrent(0, 1);
  In("GridList").setFocus();
  QTest::keyClick(&In("GridList"), Qt::Key_Delete);
  EXPECT_EQ(Outcome(), "1 found");
  Active().State().Changed = false;
}

TEST_F(Finding, TextIsTheBoxesOwnToEdit) {
  StartWith();
  Find("DCS");
  Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Bar()->txtFind->text(), "");
  QTest::keyClicks(Bar()->txtFind, "GSM");
  Key(Qt::Key_A, Qt::ControlModifier);
  Key(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(Bar()->txtFind->text(), "");
  EXPECT_EQ(Active().Table().Count, 5) << "not the document's standards";
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(Bar()->txtFind->text(), "GSM");
  QTest::keyClicks(Bar()->txtFind, "", {}, 0);
  Key(Qt::Key_Delete);
  EXPECT_EQ(Active().Table().Count, 5);
}

TEST_F(Finding, ComesFromTheWarningsTooAndBearsNoDocument) {
  StartWith();
  Get<QListWidget>("lstWarnings").setFocus();
  Find("gsm");
  Choose("mnuFileClose");
  Key(Qt::Key_F, Qt::ControlModifier);
}

TEST_F(Finding, FitsIntoTheSmallestDocument) {
  StartWith();
  Find("935.4");
  Key(Qt::Key_Return);
  const QSize least = Active().minimumSize();
  Active().resize(least);
  EXPECT_EQ(Active().size(), least);
  for (QWidget* part : Bar()->findChildren<QWidget*>()) EXPECT_TRUE(Bar()->rect().contains(part->geometry()));
  EXPECT_GE(Bar()->txtFind->width(), 40);
}
