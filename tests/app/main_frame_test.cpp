// The main frame: menus, toolbar, the pane's height, help, and commands passed to the active document.
#include <QActionGroup>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTableWidget>
#include <QTextBlock>
#include <QTextBrowser>

#include "app/file_io.h"
#include "app/help_viewer.h"
#include "app/icons.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

using Menus = AppTest;
using Help = AppTest;
using Title = AppTest;

class Commands : public AppTest {
 protected:
  QString Status() { return Get<QLabel>("sbStatusBarPanel1").text(); }
};

class Splitter : public AppTest {
 protected:
  QWidget& Pane() { return Get<QWidget>("WarningHolder"); }
  QWidget& Bar() { return Get<QWidget>("lblSplitter"); }
  int LowestHeight() { return 2 * Get<QStatusBar>("sbStatusBar").height(); }
  // Press, move and release, the end given in the frame's coordinates.
  void DragTo(QPoint end) {
    const QPoint start(Bar().mapFrom(&Pane(), QPoint(50, 1)));
    QTest::mousePress(&Bar(), Qt::LeftButton, {}, start);
    QTest::mouseMove(&Bar(), Bar().mapFrom(&Frame(), end));
    QTest::mouseRelease(&Bar(), Qt::LeftButton, {}, Bar().mapFrom(&Frame(), end));
    QTest::qWait(1);
  }
};

// A picture of the frame, to see whether something is drawn.
class PaintCounter : public QObject {
 public:
  int Paints = 0;
  bool eventFilter(QObject*, QEvent* event) override {
    Paints += event->type() == QEvent::Paint;
    return false;
  }
};

TEST_F(Menus, PortAndSpeedAreChoicesOfOne) {
  Start();
  for (const auto& [first, second] : std::vector<std::pair<const char*, const char*>>{
           {"menuOptionsCom3", "menuOptionsCom4"}, {"menuOptionsBaud2", "menuOptionsBaud4"}}) {
    ASSERT_NE(Item(first).actionGroup(), nullptr);
    EXPECT_TRUE(Item(first).actionGroup()->isExclusive());
    Choose(first);
    Choose(first);
    EXPECT_TRUE(Item(first).isChecked());
    Choose(second);
    EXPECT_FALSE(Item(first).isChecked());
    EXPECT_TRUE(Item(second).isChecked());
  }
}

// The end of a path is what tells documents apart.
TEST_F(Menus, WindowListLeavesOutTheBeginningsOfLongPaths) {
  const QString longFolder = InFolder(std::string(120, 'f').c_str());
  QDir().mkpath(longFolder);
  const QString path = longFolder + "/plan & more.sig";
  WriteFile(path.toStdString(), "header\r\n");
  Start({path});
  QMenu& menu = DropDown("mnuWindow");
  const QAction& item = *menu.actions().back();
  PullUp();
  EXPECT_TRUE(item.text().startsWith(QString("&1 ") + QChar(0x2026))) << item.text().toStdString();
  EXPECT_TRUE(item.text().endsWith("/plan && more.sig")) << item.text().toStdString();
  EXPECT_TRUE(menu.toolTipsVisible());
  EXPECT_TRUE(item.toolTip().replace(QChar::Nbsp, ' ').contains("ffff/plan &amp; more.sig"))
      << item.toolTip().toStdString();
  EXPECT_EQ(Frame().ActiveDocument()->windowTitle(), path);
}

TEST_F(Commands, StatusIsOneLineWhateverIsQuoted) {
  Start();
  const int height = Frame().statusBar()->height();
  Frame().ShowStatus("one\r\ntwo\nthree");
  QCoreApplication::processEvents();
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "one two three");
  EXPECT_EQ(Frame().statusBar()->height(), height);
}

}  // namespace

TEST_F(Menus, HaveTheseCaptionsAndKeys) {
  const struct {
    const char* Name;
    QStringList Items;
  } menus[] = {
      {"mnuFile",
       {"mnuFileNew|&New|Ctrl+N",
        "mnuFileOpen|&Open|Ctrl+O",
        "mnuFileClose|&Close|",
        "mnuFileBar1",
        "mnuFileSave|&Save|Ctrl+S",
        "mnuFileSaveAs|Save &As...|",
        "mnuFileBar2",
        "mnuFileReport|&Report |",
        "mnuFilePrint|&Print ...|",
        "mnuFileBar3",
        "menuFileDefault|Load &Default Table|",
        "mnuFileProperties|Table Propert&ies|",
        "mnuRecentFile0",
        "mnuRecentFile1||",
        "mnuRecentFile2||",
        "mnuRecentFile3||",
        "mnuRecentFile4||",
        "mnuRecentFile5||",
        "mnuFileBar6",
        "mnuFileExit|E&xit|"}},
      {"mnuEdit",
       {"mnuEditCut|Cu&t|Ctrl+X", "mnuEditCopy|&Copy|Ctrl+C", "mnuEditPaste|&Paste|Ctrl+V", "mnuEditBar2",
        "menuEditNewChanplan|&New Signal Standard|Ctrl+W"}},
      {"mnuView", {"mnuOptionToolbar|&Toolbar|", "mnuOptionStatusBar|Status &Bar|", "mnuViewWarnings|&Warnings|"}},
      {"menuOptionsComPort",
       {"menuOptionsCom1|COM 1|", "menuOptionsCom2|COM 2|", "menuOptionsCom3|COM 3|", "menuOptionsCom4|COM 4 |",
        "menuOptionsCom5|COM 5|", "menuOptionsCom6|COM 6|"}},
      {"menuOptionsBaudRate",
       {"menuOptionsBaud0|9600 bps|", "menuOptionsBaud1|19200 bps|", "menuOptionsBaud2|38400 bps|",
        "menuOptionsBaud3|57600 bps|", "menuOptionsBaud4|115200 bps|"}},
      {"mnuTools",
       {"mnuToolsUpload|&Upload Signal Standard Definitions|", "mnuToolsQuery|&Download Signal Standard Definitions|"}},
      {"mnuWindow",
       {"mnuWindowNewWindow|&New Window|", "mnuWindowBar1", "mnuWindowCascade|&Cascade|",
        "mnuWindowTileHorizontal|Tile &Horizontal|", "mnuWindowTileVertical|Tile &Vertical|",
        "mnuWindowArrangeIcons|&Arrange Icons|"}},
      {"mnuHelp",
       {"mnuHelpContents|&Contents|", "mnuHelpSearch|&Search For Help On...|", "mnuHelpBar1",
        "mnuHelpAbout|&About...|"}},
  };
  Start();
  QStringList captions;
  for (const QAction* action : Frame().menuBar()->actions()) captions += action->text();
  EXPECT_EQ(captions, QStringList({"&File", "&Edit", "&View", "&Options", "&Tools", "&Window", "&Help"}));
  for (const auto& menu : menus) {
    QStringList items;
    for (const QAction* action : Get<QMenu>(menu.Name).actions())
      items += action->isSeparator() ? action->objectName()
                                     : action->objectName() + "|" + action->text() + "|" +
                                           action->shortcut().toString(QKeySequence::PortableText);
    EXPECT_EQ(items, menu.Items) << menu.Name;
  }
  EXPECT_EQ(VisibleItems(Get<QMenu>("menuOptions")), QStringList({"COM Port", "Baud Rate"}));
}

TEST_F(Menus, WithoutADocumentItsCommandsAreGreyed) {
  Start();
  const QStringList ofADocument = {"mnuFileClose", "mnuFileSave",  "mnuFileSaveAs",       "mnuEditCut",
                                   "mnuEditCopy",  "mnuEditPaste", "menuEditNewChanplan", "mnuToolsUpload"};
  const QStringList always = {"mnuFileReport",     "mnuFilePrint",  "menuFileDefault",
                              "mnuFileProperties", "mnuToolsQuery", "mnuFileNew"};
  for (const bool open : {true, false}) {
    if (!open) Choose("mnuFileClose");
    for (const char* menu : {"mnuFile", "mnuEdit", "mnuTools"}) {
      DropDown(menu);
      PullUp();
    }
    for (const QString& item : ofADocument) EXPECT_EQ(Item(item).isEnabled(), open) << item.toStdString();
    for (const QString& item : always) EXPECT_TRUE(Item(item).isEnabled()) << item.toStdString();
  }
}

TEST_F(Menus, ShortcutsWorkAsSoonAsADocumentIsOpen) {
  StartWithStandIns();
  Choose("mnuFileClose");
  Key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(StandIn().Calls, QStringList({"Paste"}));
}

TEST_F(Menus, MnemonicsReachEveryCommand) {
  StartWithStandIns();
  Key(Qt::Key_E, Qt::AltModifier);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T);
  EXPECT_EQ(StandIn().Calls, QStringList({"CopyCut true"}));
}

TEST_F(Menus, ListOnlyThePortsOfThisMachine) {
  absentPorts = {2, 5};
  Start();
  EXPECT_EQ(VisibleItems(Get<QMenu>("menuOptionsComPort")), QStringList({"COM 1", "COM 3", "COM 4 ", "COM 6"}));
}

TEST_F(Menus, LookForPortsWheneverTheyDropDown) {
  absentPorts = {1, 2, 3, 4, 5, 6};
  Start();
  absentPorts = {1, 2, 3, 5, 6};
  DropDown("menuOptions");
  EXPECT_EQ(VisibleItems(Get<QMenu>("menuOptionsComPort")), QStringList({"COM 4 "}));
  PullUp();
  absentPorts.insert(4);
  DropDown("menuOptions");
  PullUp();
  for (int port = 1; port <= 6; ++port) EXPECT_FALSE(Item("menuOptionsCom" + QString::number(port)).isVisible());
}

TEST_F(Menus, KeepThePortsWhileOneIsInUseByATransfer) {
  Start();
  const QStringList before = VisibleItems(Get<QMenu>("menuOptionsComPort"));
  QStringList meanwhile;
  AnswerMessage();  // nobody is there
  QTimer::singleShot(0, [&] {
    absentPorts = {1, 2, 3, 4, 5};
    ASSERT_TRUE(Frame().Transferring());
    DropDown("menuOptions");
    meanwhile = VisibleItems(Get<QMenu>("menuOptionsComPort"));
    PullUp();
    QTest::keyClick(&Frame(), Qt::Key_Escape);
  });
  Choose("mnuToolsQuery");
  EXPECT_EQ(meanwhile, before);
}

TEST_F(Menus, SayWhyThereIsNoPort) {
  absentPorts = {1, 2, 3, 4, 5, 6};
  Start();
  const QMenu& menu = Get<QMenu>("menuOptionsComPort");
  EXPECT_EQ(VisibleItems(menu), QStringList({"COM 1: there is no port 1"}));
  EXPECT_FALSE(menu.actions().back()->isEnabled());
  busyPorts = {3, 4};
  DropDown("menuOptions");
  EXPECT_EQ(VisibleItems(menu), QStringList({"COM 3: port 3 is busy"})) << "what is there tells more";
  PullUp();
}

TEST_F(Menus, CheckTheChosenPortAndSpeed) {
  Start();
  Choose("menuOptionsCom3");
  Choose("menuOptionsBaud2");
  EXPECT_EQ(app->Link.CommPort, 3);
  EXPECT_EQ(app->Link.BaudRate, "38400");
  DropDown("menuOptions");
  for (int port = 1; port <= 6; ++port)
    EXPECT_EQ(Item("menuOptionsCom" + QString::number(port)).isChecked(), port == 3) << port;
  for (int baud = 0; baud <= 4; ++baud)
    EXPECT_EQ(Item("menuOptionsBaud" + QString::number(baud)).isChecked(), baud == 2) << baud;
  PullUp();
  Choose("menuOptionsCom3");
  EXPECT_EQ(app->Link.CommPort, 3) << "choosing it again does not take it away";
}

TEST_F(Menus, ViewShowsAndHides) {
  const struct {
    const char* Item;
    const char* Control;
  } parts[] = {
      {"mnuOptionToolbar", "ToolBar"}, {"mnuOptionStatusBar", "sbStatusBar"}, {"mnuViewWarnings", "WarningHolder"}};
  Start();
  EXPECT_TRUE(Item("mnuOptionToolbar").isChecked());
  EXPECT_TRUE(Item("mnuOptionStatusBar").isChecked());
  EXPECT_FALSE(Item("mnuViewWarnings").isChecked()) << "until the menu drops down";
  for (const auto& part : parts)
    for (const bool visible : {false, true}) {
      Choose(part.Item);
      EXPECT_EQ(Get<QWidget>(part.Control).isVisible(), visible) << part.Control;
      DropDown("mnuView");
      EXPECT_EQ(Item(part.Item).isChecked(), visible) << part.Item;
      PullUp();
    }
}

TEST_F(Commands, ToolbarRunsThem) {
  StartWithStandIns();
  const struct {
    const char* Key;
    const char* ToolTip;
    QStringList Calls;
  } buttons[] = {
      {"New", "New file", {}},
      {"Open", "Open", {}},
      {"Save", "Save", {"SaveChanplans /a.sig"}},
      {"Print", "Print Signal Standard List", {}},
      {"Cut", "Cut", {"CopyCut true"}},
      {"Copy", "Copy", {"CopyCut false"}},
      {"Paste", "Paste", {"Paste"}},
      {"Add", "Add a new Signal Standard", {"InsertBlank"}},
      {"Upload", "Upload current table to unit", {}},
      {"Query", "Down load Signal Standards from unit.", {}},
  };
  const QList<QAction*> actions = Get<QToolBar>("ToolBar").actions();
  ASSERT_EQ(actions.size(), 10);
  qsizetype position = 0;
  for (const auto& button : buttons) {
    const QAction* action = actions[position++];
    EXPECT_EQ(action->objectName(), QString("ToolBar") + button.Key);
    EXPECT_EQ(action->toolTip(), button.ToolTip);
    EXPECT_FALSE(action->icon().isNull()) << button.Key;
    if (button.Calls.isEmpty()) continue;
    StandIn().Calls.clear();
    StandIn().setWindowTitle("/a.sig");
    Press(button.Key);
    EXPECT_EQ(StandIn().Calls, button.Calls) << button.Key;
  }
  Press("New");
  EXPECT_EQ(Captions(), QStringList({"/a.sig", "Untitled 2"}));
}

TEST_F(Commands, UnknownButtonDoesNothing) {
  StartWithStandIns();
  Frame().ToolBar_ButtonClick("Calculator");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(StandIn().Calls, QStringList());
}

TEST_F(Commands, GoToTheActiveDocument) {
  StartWithStandIns();
  Choose("mnuFileNew");
  Frame().ShowDocument(*app->Registry.Document(1));
  for (int number : {1, 2}) dynamic_cast<StandInDocument&>(*app->Registry.Document(number)).Calls.clear();
  Key(Qt::Key_X, Qt::ControlModifier);
  Key(Qt::Key_C, Qt::ControlModifier);
  Key(Qt::Key_V, Qt::ControlModifier);
  Key(Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(StandIn().Calls, QStringList({"CopyCut true", "CopyCut false", "Paste", "InsertBlank"}));
  EXPECT_EQ(dynamic_cast<StandInDocument&>(*app->Registry.Document(2)).Calls, QStringList());
}

TEST_F(Commands, NewStandardKeyIsTheFramesInAMaximisedDocumentToo) {
  StartWithStandIns();
  StandIn().showMaximized();
  Key(Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(StandIn().Calls, QStringList({"InsertBlank"}));
  Key(Qt::Key_F4, Qt::ControlModifier);
  EXPECT_FALSE(app->Registry.AnyDocumentOpen());
}

TEST_F(Commands, KeysGoFromDocumentToDocument) {
  Start();
  Choose("mnuFileNew");
  ASSERT_EQ(Frame().ActiveDocument(), app->Registry.Document(2));
  Key(Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(1));
  EXPECT_TRUE(app->Registry.Document(1)->isAncestorOf(QApplication::focusWidget()));
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "GridList");
}

TEST_F(Commands, OtherDocumentsStoreTheirEditsWhenOneBecomesTheActiveOne) {
  StartWithStandIns();
  Choose("mnuFileNew");
  Frame().ShowDocument(*app->Registry.Document(1));
  for (int number : {1, 2}) dynamic_cast<StandInDocument&>(*app->Registry.Document(number)).Calls.clear();
  Frame().ShowDocument(*app->Registry.Document(2));
  EXPECT_EQ(dynamic_cast<StandInDocument&>(*app->Registry.Document(1)).Calls, QStringList("CommitEdit"));
  EXPECT_EQ(dynamic_cast<StandInDocument&>(*app->Registry.Document(2)).Calls, QStringList());
}

TEST_F(Commands, ClosingADocumentGoesBackToTheOneUsedBefore) {
  Start();
  for (int number = 2; number <= 4; ++number) Choose("mnuFileNew");
  for (int number : {3, 1, 4, 2}) Frame().ShowDocument(*app->Registry.Document(number));
  for (int number : {2, 4, 1, 3}) {
    ASSERT_EQ(Frame().ActiveDocument(), app->Registry.Document(number));
    Choose("mnuFileClose");
  }
  EXPECT_EQ(Frame().ActiveDocument(), nullptr);
}

TEST_F(Commands, WithoutADocumentTheyDoNothing) {
  Start();
  Choose("mnuFileClose");
  for (const char* key : {"Save", "Print", "Cut", "Copy", "Paste", "Add", "Upload"}) Press(key);
  Choose("mnuFileReport");
  Choose("mnuFileProperties");
  EXPECT_FALSE(app->Registry.AnyDocumentOpen());
}

TEST_F(Commands, PropertiesAreShown) {
  StartWithStandIns();
  AnswerMessage();
  Choose("mnuFileProperties");
  EXPECT_EQ(StandIn().Calls, QStringList({"CommitEdit", "TableProperties"})) << "of the table as the user sees it";
  EXPECT_EQ(messages.back(),
            (Message{"Table Properties", "Record count:     \t8 of 200\nSignal Standards: \t3", QMessageBox::NoIcon}));
}

TEST_F(Commands, StatusTextGoesToTheFirstPanel) {
  Start();
  Frame().ShowStatus("<b>Done</b>");
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "<b>Done</b>");
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").textFormat(), Qt::PlainText);
}

// Where each of them is said, and what comes next.
TEST_F(Commands, RemarksGoWithWhatTheyAreAbout) {
  const auto undo = [this] {
    Choose("menuEditNewChanplan");
    Key(Qt::Key_Z, Qt::ControlModifier);
  };
  using Steps = std::vector<std::pair<const char*, std::function<void()>>>;
  const Steps remarks = {
      {"Undone: new standard.", undo},
      {"Done again: new standard.",
       [&] {
         undo();
         Key(Qt::Key_Y, Qt::ControlModifier);
       }},
      {"[New Standard] is number 2 of the list.", [this] { Choose("menuEditNewChanplan"); }},
      {"b.sig is open in another window, too.", [this] { OpenTableFile(Frame(), InFolder("b.sig")); }},
      {"1 remark on the file: line 2: \"1850,2\" was read as 1850.",
       [this] { OpenTableFile(Frame(), InFolder("comma.sig")); }},
  };
  const Steps ends = {
      {"another document", [this] { Frame().ShowDocument(*app->Registry.Document(1)); }},
      {"its end", [this] { Frame().ActiveDocument()->close(); }},
      {"the end of all",
       [this] {
         for (const auto& document : app->Registry.Documents)
           if (document != nullptr) document->close();
       }},
      {"a table that is opened", [this] { OpenTableFile(Frame(), InFolder("c.sig")); }},
      {"a new one", [this] { Choose("mnuFileNew"); }},
      {"a save", [this] { Choose("mnuFileSave"); }},
      {"an edit",
       [this] {
         Frame().ActiveDocument()->findChild<Grid*>("GridList")->setFocus();
         Key(Qt::Key_Delete);
       }},
  };
  Table("c.sig");
  for (const auto& [text, remark] : remarks)
    for (const auto& [name, end] : ends) {
      SCOPED_TRACE(std::string(text) + " before " + name);
      WriteFile(folder / "comma.sig", "header\r\n2\t0\tA\t1850,2\t925.2\t1\t2\t0.2\t0.2\t1\r\n");
      Start({Table("a.sig"), Table("b.sig")});
      remark();
      EXPECT_TRUE(Status().endsWith(text)) << Status().toStdString();
      for (auto& state : app->Registry.DocumentStates) state.Changed = false;
      Frame().ShowDocument(*Frame().ActiveDocument());
      EXPECT_TRUE(Status().endsWith(text)) << "the same one is shown";
      end();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      EXPECT_EQ(Status(), "");
      for (auto& state : app->Registry.DocumentStates) state.Changed = false;
      app.reset();
    }
}

TEST_F(Commands, RefusalOfAnEditIsToldAlthoughTheTableIsLookedAtAgain) {
  Start({Table("a.sig")});
  Grid& bands = *Frame().ActiveDocument()->findChild<Grid*>("GridBands");
  bands.setFocus();
  bands.SetCurrent(0, 3);
  Key(Qt::Key_F2);
  Key(Qt::Key_Delete);
  Key(Qt::Key_Return);
  EXPECT_EQ(Status(), "Band A, Start Channel: \"\" is not a number; the old value was kept.");
  Choose("mnuFileSave");
  EXPECT_EQ(Status(), "");
}

TEST_F(Commands, OutcomesStayWhateverBecomesOfDocuments) {
  Start({Table("a.sig"), Table("b.sig")});
  Frame().ShowStatus("Process complete.");
  Frame().ShowDocument(*app->Registry.Document(1));
  Choose("menuEditNewChanplan");
  EXPECT_EQ(Status(), "[New Standard] is number 2 of the list.");
  Frame().ShowStatus("Process complete.");
  Key(Qt::Key_Delete);
  Choose("mnuFileSave");
  Choose("mnuFileNew");
  EXPECT_EQ(Status(), "Process complete.");
}

TEST_F(Commands, LongStatusEndsInAnEllipsisAndIsWholeInItsToolTip) {
  Start();
  Frame().resize(700, 500);
  QLabel& panel = Get<QLabel>("sbStatusBarPanel1");
  const QString text = QString("it is what was sent, ").repeated(20);
  Frame().ShowStatus(text);
  QCoreApplication::processEvents();
  const QImage seen = panel.grab().toImage();
  EXPECT_EQ(Frame().width(), 700);
  EXPECT_EQ(panel.toolTip(), text);
  const QString cut = panel.fontMetrics().elidedText(text, Qt::ElideRight, panel.width());
  ASSERT_TRUE(cut.endsWith(QChar(0x2026)));
  Frame().ShowStatus(cut);
  EXPECT_EQ(panel.grab().toImage(), seen);
}

TEST_F(Commands, StatusBehindAnUndoStaysWhenTheDocumentCloses) {
  Start({Table("a.sig")});
  Choose("menuEditNewChanplan");
  Key(Qt::Key_Z, Qt::ControlModifier);
  Frame().ShowStatus("Something else.");
  Choose("mnuFileClose");
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "Something else.");
}

TEST_F(Splitter, DroppedHighUpGivesAThirdOfTheFrame) {
  Start();
  const int borders = Frame().frameGeometry().height() - Frame().height();
  Frame().resize(600, 540 - borders);
  QTest::qWait(1);
  DragTo({50, 100});
  EXPECT_EQ(Pane().height(), qRound(Frame().frameGeometry().height() / 3.0));
}

TEST_F(Splitter, DroppedBelowTheBottomGivesTwiceTheStatusBar) {
  Start();
  DragTo({50, Frame().height() + 40});
  EXPECT_EQ(Pane().height(), LowestHeight());
}

TEST_F(Splitter, FollowsTheMouseOverDocumentsAndList) {
  Start();
  const QRect pane = Pane().geometry();
  const int top = Pane().mapTo(&Frame(), QPoint(0, 0)).y();
  for (const int distance : {-20, 30}) {
    const int former = Pane().height();
    const int formerTop = Pane().mapTo(&Frame(), QPoint(0, 0)).y();
    DragTo({50, formerTop + distance});
    // Over the list, heights count from its upper edge, which is a splitter's height lower.
    EXPECT_EQ(Pane().height(), former - distance + (distance > 0 ? Bar().height() : 0)) << distance;
  }
  EXPECT_NE(Pane().geometry(), pane);
  EXPECT_LT(top, Frame().height());
}

TEST_F(Splitter, ToolbarCountsOnlyWhileItIsShown) {
  Start();
  Choose("mnuOptionToolbar");
  QTest::qWait(1);
  const int former = Pane().height();
  DragTo({50, Pane().mapTo(&Frame(), QPoint(0, 0)).y() - 20});
  EXPECT_EQ(Pane().height(), former + 20);
}

TEST_F(Splitter, ReleasedOnItselfOrWithoutADragChangesNothing) {
  Start();
  const int former = Pane().height();
  DragTo(Bar().mapTo(&Frame(), Bar().mapFrom(&Pane(), QPoint(90, 2))));
  EXPECT_EQ(Pane().height(), former);
}

TEST_F(Splitter, OtherSourcesChangeNothing) {
  Start();
  const int former = Pane().height();
  for (const char* source : {"lstWarnings", "", "LBLSPLITTER"}) {
    Frame().DropOnFrame(source, 0);
    Frame().DropOnWarnings(source, -30);
    EXPECT_EQ(Pane().height(), former) << source;
  }
  Frame().DropOnWarnings("lblSplitter", -30);
  EXPECT_EQ(Pane().height(), former + 30);
}

TEST_F(Splitter, IsNextToTheWarningsForTheTabKey) {
  Start();
  Key(Qt::Key_F6);
  Key(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(QApplication::focusWidget(), &Bar());
  Key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), &Get<QWidget>("lstWarnings"));
}

TEST_F(Splitter, IsMovedByKeysToo) {
  Start();
  const int former = Pane().height();
  Bar().setFocus();
  Key(Qt::Key_Up);
  EXPECT_GT(Pane().height(), former);
  Key(Qt::Key_Down);
  EXPECT_EQ(Pane().height(), former);
}

TEST_F(Splitter, SpansThePaneAboveTheList) {
  Start();
  QTest::qWait(1);
  EXPECT_EQ(Bar().geometry(), QRect(-Frame().width(), 0, 3 * Frame().width(), 3));
  EXPECT_EQ(Get<QWidget>("lstWarnings").geometry(), QRect(0, 3, Pane().width(), Pane().height() - 3));
}

TEST_F(Splitter, LayoutIsRepeatedAndRepairsThePaneButPaintsNothingInVain) {
  Start();
  QTest::qWait(50);
  QWidget& list = Get<QWidget>("lstWarnings");
  list.resize(10, 10);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.width() == Pane().width(); }, LongestWait));
  QTest::qWait(100);
  PaintCounter counter;
  for (QWidget* widget : Frame().findChildren<QWidget*>()) widget->installEventFilter(&counter);
  QTest::qWait(700);
  EXPECT_TRUE(Get<QTimer>("ResizeTimer").isActive());
  EXPECT_EQ(Get<QTimer>("ResizeTimer").interval(), 200);
  EXPECT_EQ(counter.Paints, 0);
}

TEST_F(Help, MissingFileIsNamedWithTheSystemsWords) {
  Start();
  for (const char* command : {"mnuHelpContents", "mnuHelpSearch"}) {
    AnswerMessage();
    Choose(command);
    EXPECT_EQ(messages.back(),
              (Message{"Chanplans", InFolder("Chanplan.hlp") + ": No such file or directory", QMessageBox::NoIcon}));
  }
}

TEST_F(Help, WithoutAFileNameThereIsNone) {
  Start();
  Frame().HelpFile.clear();
  for (const char* command : {"mnuHelpContents", "mnuHelpSearch"}) {
    AnswerMessage();
    Choose(command);
    EXPECT_EQ(messages.back(),
              (Message{"Chanplans", "Unable to display Help Contents. There is no Help associated with this project.",
                       QMessageBox::Information}));
  }
}

TEST_F(Help, FileThatIsNoneIsSaidToBeSo) {
  WriteFile(folder / "Chanplan.hlp", "help");
  Start();
  AnswerMessage();
  Choose("mnuHelpContents");
  EXPECT_EQ(messages.back(),
            (Message{"Chanplans", InFolder("Chanplan.hlp") + " is no help file of this program", QMessageBox::NoIcon}));
}

TEST_F(Help, FileThatIsDamagedAnywhereIsRefused) {
  const std::string whole = ReadFile(QCoreApplication::applicationDirPath().toStdString() + "/Chanplan.hlp");
  Start();
  for (const std::size_t place : {std::size_t{8}, std::size_t{40}, whole.size() / 2, whole.size() - 60}) {
    std::string damaged = whole;
    damaged[place] = static_cast<char>(~damaged[place]);
    WriteFile(folder / "Chanplan.hlp", damaged);
    AnswerMessage();
    Choose("mnuHelpContents");
    EXPECT_TRUE(messages.back().Text.endsWith("Chanplan.hlp is no help file of this program")) << place;
  }
}

TEST_F(Help, IsFoundInTheDataFolderOfWhatIsInstalled) {
  std::filesystem::create_directories(folder / "bin");
  std::filesystem::create_directories(folder / "share/chanplan-editor");
  std::filesystem::copy((QCoreApplication::applicationDirPath() + "/Chanplan.hlp").toStdString(),
                        folder / "share/chanplan-editor");
  Start();
  app->ProgramFolder = InFolder("bin");
  Choose("mnuHelpContents");
  EXPECT_TRUE(Get<QTextBrowser>("txtHelpGuide").isVisible());
}

// The help that the programs come with.
struct Guide : Help {
  void SetUp() override {
    Help::SetUp();
    std::filesystem::copy_file((QCoreApplication::applicationDirPath() + "/Chanplan.hlp").toStdString(),
                               folder / "Chanplan.hlp");
    Start();
  }
  QString Marked() { return Get<QTextBrowser>("txtHelpGuide").textCursor().selectedText(); }
  int Place() { return Get<QTextBrowser>("txtHelpGuide").textCursor().position(); }
};

TEST_F(Guide, IsShownFromItsStart) {
  Choose("mnuHelpContents");
  QTextBrowser& guide = Get<QTextBrowser>("txtHelpGuide");
  EXPECT_TRUE(guide.isVisible());
  EXPECT_TRUE(guide.toPlainText().startsWith("User guide\n"));
  EXPECT_EQ(guide.verticalScrollBar()->value(), 0);
  const QSize room = guide.screen()->availableSize();
  EXPECT_EQ(guide.window()->size().boundedTo(room), guide.window()->size()) << "it would reach beyond the screen";
  EXPECT_FALSE(
      guide.document()->resource(QTextDocument::ImageResource, QUrl("images/upload.png")).value<QImage>().isNull());
  // All pictures are in the file, so that none is looked for elsewhere.
  int pictures = 0;
  for (QTextBlock block = guide.document()->begin(); block.isValid(); block = block.next())
    for (auto part = block.begin(); !part.atEnd(); ++part)
      if (const QTextImageFormat format = part.fragment().charFormat().toImageFormat(); format.isValid()) {
        ++pictures;
        const QVariant image = guide.document()->resource(QTextDocument::ImageResource, QUrl(format.name()));
        EXPECT_FALSE(image.value<QImage>().isNull()) << format.name().toStdString();
      }
  EXPECT_GT(pictures, 3);
  QListWidget& chapters = Get<QListWidget>("lstHelpChapters");
  ASSERT_GT(chapters.count(), 4);
  chapters.setCurrentRow(2);
  EXPECT_TRUE(guide.cursorRect().top() >= 0 && guide.cursorRect().top() < guide.viewport()->height() / 4);
  EXPECT_EQ(guide.textCursor().block().text(), chapters.item(2)->text());
  // Once more it goes to the start again, in the same window.
  Choose("mnuHelpContents");
  EXPECT_EQ(Frame().findChildren<HelpViewer*>().size(), 1);
  EXPECT_EQ(guide.verticalScrollBar()->value(), 0);
}

TEST_F(Guide, FindsWordsFromPlaceToPlaceAndFromTheEndToTheStart) {
  Choose("mnuHelpSearch");
  QLineEdit& sought = Get<QLineEdit>("txtHelpSearch");
  QTest::keyClicks(&sought, "printer");
  QTest::keyClick(&sought, Qt::Key_Return);
  EXPECT_EQ(Marked().toLower(), "printer");
  const int first = Place();
  int places = 0;
  do {
    QTest::keyClick(&sought, Qt::Key_F3);
    EXPECT_EQ(Marked().toLower(), "printer");
  } while (Place() != first && ++places < 100);
  EXPECT_LT(places, 100);
  sought.clear();
  QTest::keyClicks(&sought, "no such word");
  QTest::keyClick(&sought, Qt::Key_Return);
  EXPECT_EQ(Get<QLabel>("lblHelpOutcome").text(), "Not found");
  EXPECT_EQ(Place(), first);
}

TEST_F(Guide, ClosesOnEscapeAndComesAgain) {
  Choose("mnuHelpContents");
  QTest::keyClick(&Get<QTextBrowser>("txtHelpGuide"), Qt::Key_Escape);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Frame().findChildren<HelpViewer*>().isEmpty(); }, LongestWait));
  Choose("mnuHelpSearch");
  EXPECT_EQ(Frame().findChildren<HelpViewer*>().size(), 1);
}

TEST(DrawnIcons, AreOpaqueSomewhereAndDifferFromEachOther) {
  std::set<std::string> pictures;
  const QStringList keys = {"New",   "Open", "Save",   "Print", "Cut",    "Copy",
                            "Paste", "Add",  "Upload", "Query", "Program"};
  for (const QString& key : keys) {
    const QImage image = DrawnIcon(key).pixmap(24, 24).toImage().convertToFormat(QImage::Format_ARGB32);
    pictures.insert(
        std::string(reinterpret_cast<const char*>(image.constBits()), static_cast<std::size_t>(image.sizeInBytes())));
  }
  EXPECT_EQ(pictures.size(), static_cast<std::size_t>(keys.size()));
  EXPECT_TRUE(DrawnIcon("Calculator").isNull());
}

TEST(DrawnIcons, AreTheSameInACopyThatIsChanged) {
  const QIcon icon = DrawnIcon("Save");
  QIcon copy = icon;
  copy.setIsMask(true);  // which the original is not
  EXPECT_FALSE(icon.isMask());
  EXPECT_EQ(copy.pixmap(24, 24).toImage(), icon.pixmap(24, 24).toImage());
}

// Of a window that is modified it would ask for a place in the title; a file's name has none.
TEST_F(Title, WithTheSignGivesTheLibraryNothingToComplainAbout) {
  static QStringList complaints;
  complaints.clear();
  Start({Table("a.sig")});
  const auto former = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.startsWith("This plugin does not support")) complaints += text;  // a screen that is none
  });
  Choose("menuEditNewChanplan");
  Frame().ActiveDocument()->showMaximized();
  for (QEvent::Type type : {QEvent::WindowDeactivate, QEvent::WindowActivate}) {  // to another program and back
    QEvent event(type);
    QApplication::sendEvent(&Frame(), &event);
  }
  Frame().ActiveDocument()->showNormal();
  qInstallMessageHandler(former);
  EXPECT_EQ(complaints.join("\n"), "");
  app->Registry.DocumentStates[0].Changed = false;
}

// The title bar of a maximised document is the frame's own.
TEST_F(Title, OfTheFrameHasTheSignOfAMaximisedDocument) {
  const QString path = Table("a[*].sig");
  Start({path});
  const QString maximised = "Handheld Chanplan Editor - [" + path + "]";
  const auto shown = [this] { return Frame().windowHandle()->title(); };
  EXPECT_EQ(shown(), "Handheld Chanplan Editor");
  Frame().ActiveDocument()->showMaximized();
  EXPECT_EQ(shown(), maximised) << "with every letter of the name";
  Choose("menuEditNewChanplan");
  EXPECT_EQ(shown(), "Handheld Chanplan Editor - [" + path + "*]");
  EXPECT_EQ(Frame().windowTitle(), maximised);
  Choose("mnuFileSave");
  EXPECT_EQ(shown(), maximised);
  Choose("menuEditNewChanplan");
  Frame().ActiveDocument()->showNormal();
  EXPECT_EQ(shown(), "Handheld Chanplan Editor");
  EXPECT_EQ(Frame().windowTitle(), "Handheld Chanplan Editor");
  EXPECT_EQ(Frame().ActiveDocument()->windowTitle(), path);
  app->Registry.DocumentStates[0].Changed = false;
}
