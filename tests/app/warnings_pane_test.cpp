// The warnings pane.
#include "app/warnings_pane.h"

#include <QAccessible>
#include <QClipboard>
#include <QListWidget>
#include <QRubberBand>
#include <QScrollBar>
#include <QTableWidget>

#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class Pane : public AppTest {
 protected:
  QListWidget& List() { return Get<QListWidget>("lstWarnings"); }
  QStringList Lines() {
    QStringList lines;
    for (int row = 0; row < List().count(); ++row) lines += List().item(row)->text();
    return lines;
  }
  int Selected() { return List().selectedItems().isEmpty() ? -1 : List().row(List().selectedItems().front()); }
  void ClickLine(int row) {
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualItemRect(List().item(row)).center());
  }
};

// Warnings of `count` standards, the last of them without its CR LF.
QString Five() {
  QStringList lines;
  for (const char* name : {"A", "B", "C", "D", "E"}) lines += QString("Warning:\t") + name + "\tDoubtful.";
  return lines.join("\r\n");
}

TEST_F(Pane, WidestLineCanBeScrolledTo) {
  Start();
  Frame().Warnings("short\r\nWarning:\tname\t" + QString(400, 'm') + "\r\n", -1);
  auto& list = Get<QListWidget>("lstWarnings");
  QCoreApplication::processEvents();
  const int textWidth = list.fontMetrics().horizontalAdvance(QString(400, 'm'));
  EXPECT_GT(list.horizontalScrollBar()->maximum() + list.viewport()->width(), textWidth);
  Frame().Warnings("short\r\n", -1);
  QCoreApplication::processEvents();
  EXPECT_EQ(list.horizontalScrollBar()->maximum(), 0);
}

TEST_F(Pane, FirstLineIsReachedByTheKeyForTheWarningsAndDown) {
  Start();
  Frame().Warnings("Warning:\ta\tone\r\nWarning:\tb\ttwo\r\n", -1);
  Key(Qt::Key_F6);
  Key(Qt::Key_Down);
  EXPECT_EQ(StatusPanel2(), " 1 of 3 warnings.");
  Key(Qt::Key_Down);
  EXPECT_EQ(StatusPanel2(), " 2 of 3 warnings.");
}

TEST_F(Pane, KeyForTheWarningsKeepsTheFocusWhereThePaneIsHidden) {
  Start();
  Choose("mnuViewWarnings");
  QWidget* former = QApplication::focusWidget();
  ASSERT_NE(former, nullptr);
  Key(Qt::Key_F6);
  EXPECT_EQ(QApplication::focusWidget(), former);
}

TEST_F(Pane, IsNeverMoreThanAThirdOfAFrameThatShrinks) {
  Start();
  auto& holder = Get<QWidget>("WarningHolder");
  Frame().resize(900, 900);
  QCoreApplication::processEvents();
  Frame().DropOnFrame("lblSplitter", -1000);
  ASSERT_EQ(holder.height(), qRound(Frame().frameGeometry().height() / 3.0));
  for (const int height : {700, 500, 400}) {
    Frame().resize(900, height);
    QCoreApplication::processEvents();
    EXPECT_EQ(holder.height(), qRound(Frame().frameGeometry().height() / 3.0)) << height;
  }
  const int lowest = holder.height();
  Frame().resize(900, 900);
  QCoreApplication::processEvents();
  EXPECT_EQ(holder.height(), lowest) << "it does not grow by itself";
}

TEST_F(Pane, SplitterShowsWhereItWouldDrop) {
  Start();
  auto& splitter = Get<QWidget>("lblSplitter");
  auto& line = Get<QRubberBand>("dropLine");
  auto& holder = Get<QWidget>("WarningHolder");
  const auto drag = [&](QEvent::Type type, int up) {
    const QPointF at(Frame().width() + 5, -up);
    QMouseEvent event(type, at, splitter.mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&splitter, &event);
  };
  drag(QEvent::MouseButtonPress, 0);
  for (const int up : {20, 5000, 40}) {
    drag(QEvent::MouseMove, up);
    ASSERT_TRUE(line.isVisible());
  }
  const int shown = line.mapToGlobal(QPoint(0, 0)).y();
  drag(QEvent::MouseButtonRelease, 40);
  EXPECT_FALSE(line.isVisible());
  QCoreApplication::processEvents();
  EXPECT_NEAR(holder.mapToGlobal(QPoint(0, 0)).y(), shown, 4);
}

}  // namespace

TEST_F(Pane, EmptyTextEmptiesIt) {
  StartWithStandIns();
  Frame().Warnings(Five(), -1);
  Frame().Warnings("", -1);
  EXPECT_EQ(Lines(), QStringList());
  EXPECT_EQ(StatusPanel2(), " 0 warnings.");
}

TEST_F(Pane, LastLineEndMakesAnEmptyLine) {
  StartWithStandIns();
  Frame().Warnings("a\r\nb\r\n", -1);
  EXPECT_EQ(Lines(), QStringList({"a", "b", ""}));
  EXPECT_EQ(StatusPanel2(), " 3 warnings.");
}

TEST_F(Pane, OnlyWholeLineEndsSeparateLines) {
  StartWithStandIns();
  Frame().Warnings("a\nb\rc\r\n\r\nd", -1);
  EXPECT_EQ(Lines(), QStringList({"a\nb\rc", "", "d"}));
}

TEST_F(Pane, SelectionAfterRefilling) {
  const struct {
    int Former;
    const char* Text;
    int SelIndex;
    int Selected;
  } cases[] = {
      {2, "a\r\nb\r\nc\r\nd\r\ne", -1, 2},  // the same number of lines
      {4, "a\r\nb", -1, -1},                // fewer lines than the old index
      {1, "a\r\nb", -1, 1},                 // fewer lines, the old index among them
      {2, "", -1, -1},
      {-1, "a\r\nb", -1, -1},
      {2, "a\r\nb\r\nc", 1, 1},   // an index to select wins
      {2, "a\r\nb\r\nc", 3, -1},  // there is no such line
  };
  StartWithStandIns();
  for (const auto& test : cases) {
    Frame().Warnings("", -1);
    Frame().Warnings(Five(), static_cast<qint16>(test.Former));
    ASSERT_EQ(Selected(), test.Former);
    Frame().Warnings(test.Text, static_cast<qint16>(test.SelIndex));
    EXPECT_EQ(Selected(), test.Selected) << test.Former << ' ' << test.Text << ' ' << test.SelIndex;
  }
  EXPECT_EQ(StandIn().Calls, QStringList()) << "selecting while filling is no click";
}

TEST_F(Pane, IndexBeyondTheSameLinesSelectsNothing) {
  StartWithStandIns();
  Frame().Warnings(Five(), 2);
  Frame().Warnings(Five(), 5);
  EXPECT_EQ(Selected(), -1);
}

TEST_F(Pane, ScreenReaderHearsTheCountAndTheStatus) {
  StartWithStandIns();
  Frame().Warnings(Five(), -1);
  Frame().ShowStatus("Done.");
  const auto heard = [this](const char* panel) {
    return QAccessible::queryAccessibleInterface(&Get<QLabel>(panel))->text(QAccessible::Name);
  };
  EXPECT_EQ(heard("sbStatusBarPanel1"), "Done.");
  EXPECT_EQ(heard("sbStatusBarPanel2"), " 5 warnings.");
}

TEST_F(Pane, ClickShowsThePositionAndGoesToTheStandard) {
  StartWithStandIns();
  Frame().Warnings(Five(), -1);
  ClickLine(0);
  EXPECT_EQ(StatusPanel2(), " 1 of 5 warnings.");
  ClickLine(2);
  EXPECT_EQ(StatusPanel2(), " 3 of 5 warnings.");
  EXPECT_EQ(StandIn().Calls, QStringList({"FindSSEntry A", "FindSSEntry C"}));
  ClickLine(2);
  EXPECT_EQ(StandIn().Calls.size(), 3) << "a second click on the same line goes there again";
}

TEST_F(Pane, KeysSelectLinesToo) {
  StartWithStandIns();
  Frame().Warnings(Five(), 0);
  Key(Qt::Key_F6);
  EXPECT_EQ(QApplication::focusWidget(), &List());
  Key(Qt::Key_Down);
  EXPECT_EQ(StatusPanel2(), " 2 of 5 warnings.");
  EXPECT_EQ(StandIn().Calls, QStringList({"FindSSEntry B"}));
  Key(Qt::Key_F6);
  EXPECT_TRUE(Frame().ActiveDocument()->isAncestorOf(QApplication::focusWidget()) ||
              QApplication::focusWidget() == Frame().ActiveDocument());
}

TEST_F(Pane, KeyForTheWarningsGoesBackToWhereTheUserWas) {
  Start({Table("a.sig", {"A", "B"})});
  const auto grid = [this](const char* name) { return Frame().ActiveDocument()->findChild<QTableWidget*>(name); };
  grid("GridBands")->setFocus();
  Key(Qt::Key_F6);
  EXPECT_EQ(QApplication::focusWidget(), &List());
  Key(Qt::Key_F6);
  EXPECT_EQ(QApplication::focusWidget(), grid("GridBands"));

  grid("GridDetails")->setFocus();
  Key(Qt::Key_F2);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "txtEntry");
  Key(Qt::Key_F6);
  Key(Qt::Key_F6);
  EXPECT_EQ(QApplication::focusWidget(), grid("GridDetails"));
}

TEST_F(Pane, ShowsTheTextOfTheDocumentThatBecameActiveInTheMiddleOfAnEdit) {
  Start({Table("a.sig"), Table("b.sig")});
  Frame().ShowDocument(*app->Registry.Document(1));
  QTableWidget* details = Frame().ActiveDocument()->findChild<QTableWidget*>("GridDetails");
  details->setFocus();
  details->setCurrentCell(4, 1);
  Key(Qt::Key_9);
  Key(Qt::Key_9);
  Key(Qt::Key_9);
  Key(Qt::Key_9);
  Frame().ShowDocument(*app->Registry.Document(2));
  EXPECT_EQ(Lines(), QStringList());
  Frame().ShowDocument(*app->Registry.Document(1));
  EXPECT_EQ(Lines(), QStringList({"Warning:\tDCS\tStart frequency appears out of range.", ""}));
  app->Registry.DocumentStates[0].Changed = false;
}

// The items of a menu that can be chosen.
static QStringList Possible(const QMenu& menu) {
  QStringList items;
  for (const QAction* item : menu.actions())
    if (!item->isSeparator() && item->isEnabled()) items += QString(item->text()).remove('&');
  return items;
}

TEST_F(Pane, ContextMenuCopiesWarningsAndTakesChangesBack) {
  WriteFile(folder / "a.sig",
            "header\r\n2\t1\tDCS\t9850\t1805.2\t885\t512\t0.2\t0.2\t1\r\n0\t0\t\t1\t1\t1\t2\t0.2\t0.2\t1\r\n");
  Start({InFolder("a.sig")});
  const auto choose = [this](const char* name) {
    Key(Qt::Key_F10, Qt::ShiftModifier);
    auto& menu = dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
    ClickItem(menu, *menu.findChild<QAction*>(name));
  };
  Key(Qt::Key_F6);
  Key(Qt::Key_F10, Qt::ShiftModifier);
  auto& menu = dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
  EXPECT_EQ(menu.objectName(), "mnuContextWarnings");
  EXPECT_EQ(Possible(menu), QStringList({"Copy All Warnings"}));
  menu.close();
  Key(Qt::Key_Down);
  choose("mnuContextCopyWarning");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Warning:\tDCS\tStart frequency appears out of range.");
  choose("mnuContextCopyWarnings");
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            "Warning:\tDCS\tStart frequency appears out of range.\n"
            "Warning:\tDCS\tStop channel is less than start channel.\n");

  Frame().ActiveDocument()->InsertBlank();
  choose("mnuContextUndo");
  EXPECT_EQ(Frame().ActiveDocument()->Table().Count, 2);
  EXPECT_EQ(QApplication::focusWidget(), &List());
  Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Frame().ActiveDocument()->Table().Count, 3);
  Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Frame().ActiveDocument()->Table().Count, 2) << "the keys do it from here, too";
  EXPECT_FALSE(Frame().ActiveDocument()->State().Changed);
}

TEST_F(Pane, ClickOrEnterPutsTheCursorOnTheValueThatIsMeant) {
  WriteFile(
      folder / "a.sig",
      "header\r\n2\t1\tDCS\t9850\t1805.2\t885\t512\t0.2\t0.2\t1\r\n0\t0\t\t1710\t9805\t512\t885\t0.2\t0.2\t1\r\n");
  Start({InFolder("a.sig")});
  const auto* details = Frame().ActiveDocument()->findChild<QTableWidget*>("GridDetails");
  const auto* bands = Frame().ActiveDocument()->findChild<QTableWidget*>("GridBands");
  ClickLine(1);
  EXPECT_TRUE(details->hasFocus());
  EXPECT_EQ(details->currentRow(), 7);
  Key(Qt::Key_F6);
  Key(Qt::Key_Down);
  EXPECT_EQ(QApplication::focusWidget(), &List()) << "arrow keys go on through the warnings";
  Key(Qt::Key_Return);
  EXPECT_TRUE(bands->hasFocus());
  EXPECT_EQ(bands->currentColumn(), 2);
  Key(Qt::Key_F6);
  Key(Qt::Key_Down);
  Key(Qt::Key_Return);
  EXPECT_EQ(QApplication::focusWidget(), &List()) << "the empty line is about nothing";
}

TEST_F(Pane, LineWithoutATabOnlyShowsThePosition) {
  StartWithStandIns();
  Frame().Warnings("a\r\nb", -1);
  ClickLine(1);
  EXPECT_EQ(StatusPanel2(), " 2 of 2 warnings.");
  EXPECT_EQ(StandIn().Calls, QStringList());
}

TEST_F(Pane, ClickWithoutADocumentDoesNoHarm) {
  Start();
  app->Registry.Document(1)->close();
  Frame().Warnings(Five(), -1);
  ClickLine(0);
  EXPECT_EQ(StatusPanel2(), " 1 of 5 warnings.");
}

TEST_F(Pane, TableWithWarningsShowsOneLineMoreThanItHas) {
  WriteFile(folder / "a.sig",
            "header\r\n2\t1\tDCS\t9850\t1805.2\t885\t512\t0.2\t0.2\t1\r\n0\t0\t\t1710\t1805\t512\t885\t0.2\t0.2\t1\r\n"
            "2\t0\tPCS\t1850\t1930\t-5\t885\t0.2\t0.2\t1\r\n");
  Start({InFolder("a.sig")});
  EXPECT_EQ(Lines(), QStringList({"Warning:\tDCS\tStart frequency appears out of range.",
                                  "Warning:\tDCS\tStop channel is less than start channel.",
                                  "Warning:\tPCS\tStart channel is less than zero.", ""}));
  EXPECT_EQ(StatusPanel2(), " 4 warnings.");

  ClickLine(2);
  EXPECT_EQ(StatusPanel2(), " 3 of 4 warnings.") << "although going there validated the table again";
  const QTableWidget* list = Frame().ActiveDocument()->findChild<QTableWidget*>("GridList");
  EXPECT_EQ(list->item(list->currentRow(), 1)->text(), "PCS");
}

TEST_F(Pane, ShowsTheActiveDocumentsWarnings) {
  StartWithStandIns();
  Choose("mnuFileNew");
  dynamic_cast<StandInDocument&>(*app->Registry.Document(1)).Text = "one";
  dynamic_cast<StandInDocument&>(*app->Registry.Document(2)).Text = "two\r\n";
  Frame().ShowDocument(*app->Registry.Document(1));
  EXPECT_EQ(Lines(), QStringList({"one"}));
  Frame().ShowDocument(*app->Registry.Document(2));
  EXPECT_EQ(Lines(), QStringList({"two", ""}));
  ClickLine(0);
  Frame().ShowDocument(*app->Registry.Document(2));
  EXPECT_EQ(StatusPanel2(), " 1 of 2 warnings.") << "activating the same document again changes nothing";

  Choose("mnuFileClose");
  EXPECT_EQ(Lines(), QStringList({"one"}));
  Choose("mnuFileClose");
  EXPECT_EQ(Lines(), QStringList());
  EXPECT_EQ(StatusPanel2(), " 0 warnings.");
}

TEST_F(Pane, KeepsTheActiveDocumentsWarningsWhenAnotherCloses) {
  StartWithStandIns();
  Choose("mnuFileNew");
  StandIn().Text = "two";
  Frame().Warnings("two", -1);
  app->Registry.Document(1)->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(Lines(), QStringList({"two"}));
}

TEST_F(Pane, KeepsTheActiveDocumentsWarningsWhenAnotherIsValidated) {
  WriteFile(folder / "doubtful.sig", "header\r\n2\t1\tDCS\t9850\t1805.2\t512\t885\t0.2\t0.2\t1\r\n");
  Start({InFolder("doubtful.sig"), Table("b.sig")});
  app->Registry.Document(1)->CommitEdit();
  EXPECT_EQ(Lines(), QStringList());
  app->Registry.DocumentStates[0].Changed = true;
  AnswerMessage(QMessageBox::Cancel);
  EXPECT_FALSE(app->Registry.Document(1)->close());
  EXPECT_EQ(Lines(), QStringList());
  Frame().ShowDocument(*app->Registry.Document(1));
  EXPECT_EQ(Lines(), QStringList({"Warning:\tDCS\tStart frequency appears out of range.", ""}));
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(Pane, FieldsStandAtTheTabStops) {
  StartWithStandIns();
  const auto width = [this](const QString& line) {
    Frame().Warnings(line, -1);
    return List().sizeHintForColumn(0);
  };
  const int none = width("\r\n");
  const double unit =
      List().fontMetrics().horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 208.0;
  EXPECT_NEAR(width("a\t") - none, 40 * unit, 1.5);
  EXPECT_NEAR(width("a\tb\t") - none, 160 * unit, 1.5);
  EXPECT_EQ(width("a\tb\tc"), width("Warning:\tPCS 1900\tc"));
}
