// Two tables side by side: what differs, and going there.
#include <QToolButton>

#include "app/compare_window.h"
#include "editor/grid_columns.h"
#include "tests/app/transfer_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class Comparing : public TransferTest {
 protected:
  // Whether the menu of the document's title bar comes up when this is done. It runs a loop of its own.
  bool ShowsTitleBarMenu(DocumentWindow& document, const std::function<void()>& done) {
    bool shown = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
      shown = shown || document.systemMenu()->isVisible();
      PullUp();
    });
    look.start(1);
    done();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown; }, LongestWait));
    return shown;
  }
  QMenu& CompareMenuOf(DocumentWindow& document) { return *document.systemMenu()->findChild<QMenu*>("mnuCompare"); }
  // Drops the menu down, clicks the item that ends so: of a long path the menu shows the end.
  void ChooseIn(QMenu& menu, const QString& caption) {
    menu.popup(Frame().mapToGlobal(QPoint(50, 50)));
    for (QAction* item : menu.actions())
      if (item->text().endsWith(caption)) {
        ClickItem(menu, *item);
        PullUp();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return;
      }
    PullUp();
    ADD_FAILURE() << "there is no " << caption.toStdString();
  }
  void CompareDocuments(int left, int right) {
    const QString caption = app->Registry.Document(right)->windowTitle();
    ChooseIn(CompareMenuOf(*app->Registry.Document(left)), QFileInfo(caption).fileName());
  }
  CompareWindow* Window() { return Frame().findChild<CompareWindow*>(); }
  QTableWidget& List() { return Get<QTableWidget>("lstDifferences"); }
  // What the window shows, line by line, once it has caught up.
  QStringList Lines() {
    QCoreApplication::processEvents();
    QStringList lines;
    for (int row = 0; row < List().rowCount(); ++row) {
      QStringList cells;
      for (int column = 0; column < List().columnCount(); ++column) cells += List().item(row, column)->text();
      lines += cells.join(" | ");
    }
    return lines;
  }
  void ClickCell(int row, int column) {
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualItemRect(List().item(row, column)).center());
  }
  Grid& GridOf(int document, const char* name) { return *app->Registry.Document(document)->findChild<Grid*>(name); }
  void Type(Grid& grid, int row, int column, const char* text) {
    for (const QPointer<DocumentWindow>& document : app->Registry.Documents)
      if (document != nullptr && document->isAncestorOf(&grid)) Frame().ShowDocument(*document);
    Activate();
    grid.setFocus();
    grid.SetCurrent(row, column);
    QTest::keyClick(&grid, Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), text);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  }
  // Leaves no question for the end.
  void TearDown() override {
    if (app != nullptr)
      for (auto& state : app->Registry.DocumentStates) state.Changed = false;
  }

  QString A() {
    return TableFile("a.sig", {"2|0|GSM|890.2|935.2|1|124|0.2|0.2|1", "1|0|Old|1|2|3|4|0.2|0.2|1",
                               "2|1|DCS|1710.2|1805.2|512|885|0.2|0.2|1", "0|0|DCS|1710.2|1805.2|512|885|0.2|0.2|1"});
  }
  QString B() {
    return TableFile("b.sig", {"130|0|GSM|890.2|935.2|1|125|0.2|0.2|1", "1|0|New|1|2|3|4|0.2|0.2|1",
                               "2|1|DCS|1710.2|1805.2|512|885|0.2|0.2|1", "0|0|DCS|1710.2|1805.2|512|800|0.2|0.2|1",
                               "2|0|Added|880|925|1|124|0.2|0.2|1"});
  }
};

}  // namespace

TEST_F(Comparing, IsOfferedInTheMenuOfATitleBarBesideItsOwnItems) {
  Start({A(), B()});
  QStringList items;
  for (const QAction* action : app->Registry.Document(1)->systemMenu()->actions())
    if (!action->isSeparator()) items += QString(action->text()).remove('&').section('\t', 0, 0);
  EXPECT_EQ(items,
            QStringList({"Restore", "Move", "Size", "Minimize", "Maximize", "Stay on Top", "Compare With", "Close"}));
  QMenu& compare = CompareMenuOf(*app->Registry.Document(1));
  emit compare.aboutToShow();
  ASSERT_EQ(VisibleItems(compare).size(), 2) << "not itself";
  EXPECT_TRUE(VisibleItems(compare).front().endsWith("b.sig"));
  EXPECT_EQ(VisibleItems(compare).back(), "&File...");
}

TEST_F(Comparing, MenuComesUpOnARightClick) {
  Start({A()});
  DocumentWindow& document = *app->Registry.Document(1);
  EXPECT_TRUE(ShowsTitleBarMenu(document, [&] {
    const QPoint place(document.width() / 2, 8);
    QTest::mouseMove(&document, place);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, document.mapToGlobal(place));
    QApplication::sendEvent(&document, &event);
  }));
}

TEST_F(Comparing, MenuComesUpOnAltMinus) {
  Start({A()});
  EXPECT_TRUE(ShowsTitleBarMenu(*app->Registry.Document(1), [this] { Key(Qt::Key_Minus, Qt::AltModifier); }));
}

TEST_F(Comparing, ListsStandardsFieldsAndNewNames) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  EXPECT_EQ(Lines(),
            QStringList({"GSM | State | 2 (GSM, Standby) | 130 (GSM, Now active)", "GSM | Stop Channel | 124 | 125",
                         "Old | Renamed | Old | New", "DCS, Band A | Stop Channel | 885 | 800",
                         "Added | Signal Standard | missing | there"}));
  EXPECT_EQ(List().horizontalHeaderItem(2)->text(), "a.sig");
  EXPECT_EQ(List().horizontalHeaderItem(3)->text(), "b.sig");
  EXPECT_EQ(Get<QLabel>("lblCompare").text(), InFolder("a.sig") + "\n" + InFolder("b.sig"));
  EXPECT_EQ(Get<QLabel>("lblCompareCount").text(), "5 differences. A click goes to one.");
}

TEST_F(Comparing, ClickGoesToTheFieldInTheTableOfItsColumn) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  struct {
    int Row, Column, Document;
    const char* Standard;
    const char* In;
    int FieldRow, FieldColumn;
  } cases[] = {{1, 0, 1, "GSM", "GridDetails", 7, 1},   {1, 3, 2, "GSM", "GridDetails", 7, 1},
               {3, 2, 1, "DCS", "GridBands", 0, 4},     {3, 3, 2, "DCS", "GridBands", 0, 4},
               {4, 1, 2, "Added", "GridDetails", 0, 1}, {2, 1, 1, "Old", "GridDetails", 0, 1},
               {2, 3, 2, "New", "GridDetails", 0, 1},   {0, 2, 1, "GSM", "GridDetails", 2, 1}};
  for (const auto& given : cases) {
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window(), LongestWait));
    ClickCell(given.Row, given.Column);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Frame(), LongestWait));
    EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(given.Document)) << given.Row;
    const Grid& list = GridOf(given.Document, "GridList");
    EXPECT_EQ(list.CellText(list.currentRow(), 1), given.Standard);
    const Grid& grid = GridOf(given.Document, given.In);
    EXPECT_EQ(grid.currentRow(), given.FieldRow) << given.Standard;
    EXPECT_EQ(grid.currentColumn(), given.FieldColumn) << given.Standard;
    EXPECT_EQ(QApplication::focusWidget(), &grid) << given.Standard;
    EXPECT_FALSE(app->Registry.DocumentStates[0].Changed || app->Registry.DocumentStates[1].Changed);
  }
}

TEST_F(Comparing, EnterGoesThereTooAndEscapeCloses) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  ASSERT_TRUE(QTest::qWaitForWindowActive(Window(), LongestWait));
  List().setFocus();
  List().setCurrentCell(4, 0);
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(2));
  QTest::keyClick(&List(), Qt::Key_Escape);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(Comparing, WindowIsTheFramesOwnAndHasAButtonToClose) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  EXPECT_EQ(Window()->windowType(), Qt::Dialog) << "which stays above the window that it belongs to";
  EXPECT_EQ(Window()->windowHandle()->transientParent(), Frame().windowHandle());
  EXPECT_FALSE(Window()->isModal());
  EXPECT_TRUE(QTest::qWaitFor([this] { return List().hasFocus(); }, LongestWait));
  Key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "bttnCompareClose");
  Key(Qt::Key_Tab);
  EXPECT_TRUE(List().hasFocus()) << "there is nothing else";
  Key(Qt::Key_Tab);
  Key(Qt::Key_Return);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(Comparing, FollowsBothTables) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  List().setCurrentCell(3, 0);
  Type(GridOf(2, "GridDetails"), 7, 1, "124");
  EXPECT_EQ(Lines().value(1), "Old | Renamed | Old | New");
  EXPECT_EQ(List().currentRow(), 2) << "the difference that was chosen";
  Frame().ShowDocument(*app->Registry.Document(1));
  Choose("menuEditNewChanplan");
  EXPECT_TRUE(Lines().contains("[New Standard] | Signal Standard | there | missing"))
      << Lines().join("\n").toStdString();
}

TEST_F(Comparing, TellsTablesThatAreAlike) {
  const QString path = A();
  Start({path, path});
  ChooseIn(CompareMenuOf(*app->Registry.Document(1)), QFileInfo(path).fileName());
  EXPECT_EQ(Lines(), QStringList());
  EXPECT_EQ(Get<QLabel>("lblCompareCount").text(), "The tables are alike.");
}

TEST_F(Comparing, TellsAnotherOrder) {
  Start({Table("a.sig", {"A", "B"}), Table("b.sig", {"B", "A"})});
  // Sub-bands are the same, so these are not renamed: names go before everything else.
  CompareDocuments(1, 2);
  EXPECT_EQ(Lines(), QStringList({" | Order of the standards |  | another"}));
  ClickCell(0, 1);
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(2)) << "there is no place to go to";
}

TEST_F(Comparing, FileIsReadAgainWhenItHasChanged) {
  Start({A()});
  const QString path = B();
  AnswerFileDialog(path);
  ChooseIn(CompareMenuOf(*app->Registry.Document(1)), "&File...");
  ASSERT_EQ(Lines().size(), 5);
  EXPECT_EQ(Captions(), QStringList({InFolder("a.sig")})) << "it is not opened";
  EXPECT_EQ(List().horizontalHeaderItem(3)->text(), "b.sig on the disk");
  ClickCell(4, 3);
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "Added is only in the file.");
  WriteFile(folder / "b.sig", ReadFile(folder / "a.sig"));
  Activate();
  Window()->activateWindow();
  EXPECT_TRUE(QTest::qWaitFor([this] { return Lines().isEmpty(); }, LongestWait));
  std::filesystem::remove(folder / "b.sig");
  Choose("menuEditNewChanplan");
  EXPECT_EQ(Lines().size(), 1);
  EXPECT_EQ(Get<QLabel>("lblCompareCount").text(),
            "1 difference. A click goes to it. The file cannot be read any more: it is compared as it was.");
}

TEST_F(Comparing, FileIsAskedForWithWhatItIsFor) {
  Start({A()});
  Answer([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Compare With");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  ChooseIn(CompareMenuOf(*app->Registry.Document(1)), "&File...");
  EXPECT_EQ(Window(), nullptr);
}

// What was changed since the last save.
TEST_F(Comparing, DocumentIsComparedWithItsOwnFile) {
  const QString path = A();
  Start({path});
  Choose("menuEditNewChanplan");
  AnswerFileDialog(path);
  ChooseIn(CompareMenuOf(*app->Registry.Document(1)), "&File...");
  EXPECT_EQ(Lines().size(), 1);
  Choose("mnuFileSave");
  Window()->activateWindow();
  EXPECT_TRUE(QTest::qWaitFor([this] { return Lines().isEmpty(); }, LongestWait));
}

TEST_F(Comparing, FileThatCannotBeReadIsTold) {
  WriteFile(folder / "bad.sig", "header\r\nnot a row\r\n");
  Start({A()});
  for (const auto& [name, text] : {std::pair{"bad.sig", "Error loading "}, {"gone.sig", "Can't open file: "}}) {
    AnswerFileDialog(InFolder(name));
    AnswerMessage();
    ChooseIn(CompareMenuOf(*app->Registry.Document(1)), "&File...");
    EXPECT_EQ(messages.back().Text, text + InFolder(name));
    EXPECT_EQ(Window(), nullptr);
  }
}

TEST_F(Comparing, EndsWithEitherDocument) {
  for (const int closed : {1, 2}) {
    Start({A(), B()});
    CompareDocuments(1, 2);
    ASSERT_NE(Window(), nullptr);
    Frame().ShowDocument(*app->Registry.Document(closed));
    Choose("mnuFileClose");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(Window(), nullptr);
    app.reset();
  }
}

TEST_F(Comparing, AnotherOneTakesTheWindowsPlace) {
  Start({A(), B()});
  CompareDocuments(1, 2);
  CompareDocuments(2, 1);
  EXPECT_EQ(Frame().findChildren<CompareWindow*>().size(), 1);
  EXPECT_EQ(List().horizontalHeaderItem(2)->text(), "b.sig");
}

TEST_F(Comparing, IsOfferedAfterADownload) {
  const std::string band = "0|0|the unit's|890.2|935.2|1|60|0|0|0";
  StartUnit({"2|1|GSM|890.2|935.2|1|125|0.2|0.2|1", band});
  Start({TableFile("a.sig", {"2|1|GSM|890.2|935.2|1|124|0.2|0.2|1", band})});
  auto& offer = Get<QToolButton>("bttnCompare");
  EXPECT_FALSE(offer.isVisible());
  const int height = Get<QStatusBar>("sbStatusBar").height();
  Download();
  EXPECT_TRUE(offer.isVisible());
  EXPECT_EQ(Get<QStatusBar>("sbStatusBar").height(), height);
  EXPECT_EQ(Status(), "Process complete.  Transfered 2 signal standards (including sub-bands).");
  ChooseIn(*offer.menu(), "a.sig");
  EXPECT_EQ(Lines(), QStringList({"GSM | Stop Channel | 125 | 124"}));
  Frame().ShowDocument(*app->Registry.Document(1));
  EXPECT_FALSE(offer.isVisible()) << "this one is no unit's";
  Frame().ShowDocument(*app->Registry.Document(2));
  EXPECT_TRUE(offer.isVisible());
  AnswerFileDialog(InFolder("unit.sig"));
  Choose("mnuFileSaveAs");
  EXPECT_FALSE(offer.isVisible()) << "it is a file's now";
}
