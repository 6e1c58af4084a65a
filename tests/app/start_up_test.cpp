// Start-up, settings, recent files, and the numbers of documents.
#include <QScreen>
#include <QSignalSpy>
#include <QTableWidget>

#include "app/command_line.h"
#include "app/placement.h"
#include "editor/twips.h"
#include "tests/app/app_fixture.h"
#include "tests/console/program.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

QString RecentFileKey(int number) { return "Recent Files/RecentFile" + QString::number(number); }

class StartUp : public AppTest {
 protected:
  QStringList StoredRecentFiles() {
    QStringList files;
    for (int number = 1; number <= 6; ++number) files += Stored(RecentFileKey(number));
    return files;
  }
};

using RecentFiles = StartUp;
using DocumentNumbers = StartUp;
using Closing = StartUp;

}  // namespace

TEST_F(StartUp, FirstStartUsesTheDefaults) {
  Start();
  const QSize screen = QGuiApplication::primaryScreen()->size();
  EXPECT_EQ(app->Link.CommPort, 1);
  EXPECT_EQ(app->Link.BaudRate, "9600");
  EXPECT_EQ(Frame().pos(), QPoint(screen.width() / 20, screen.height() / 20));
  EXPECT_EQ(Frame().size(), screen * 0.6);
  EXPECT_FALSE(Frame().isMaximized());
  EXPECT_EQ(Frame().windowTitle(), "Handheld Chanplan Editor");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  for (int index = 0; index <= 5; ++index) EXPECT_FALSE(Item("mnuRecentFile" + QString::number(index)).isVisible());
}

TEST_F(StartUp, ProgramFolderBecomesTheCurrentOne) {
  Start();
  EXPECT_EQ(QDir::current(), QDir(app->ProgramFolder));
}

TEST_F(StartUp, KeyboardIsInTheListOfTheFirstDocument) {
  Start({Table("a.sig", {"A", "B"})});
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "GridList");
  Key(Qt::Key_Down);
  EXPECT_EQ(Frame().ActiveDocument()->findChild<QTableWidget*>("GridDetails")->item(0, 1)->text(), "B");
}

// Less than a document's least size would be seen of it.
TEST_F(StartUp, DocumentsOfWhichLittleIsInSightOpenMaximised) {
  SetStored("Settings/MainWidth", "6000");
  SetStored("Settings/MainHeight", "4500");
  Start();
  ASSERT_TRUE(app->Registry.Document(1)->isMaximized());
  Choose("mnuFileNew");
  for (int number = 1; number <= 2; ++number) {
    DocumentWindow& document = *app->Registry.Document(number);
    document.showNormal();
    EXPECT_EQ(document.size(), QSize(TwipsToPixelsX(9500, document), TwipsToPixelsY(5600, document))) << number;
  }
}

TEST_F(StartUp, DocumentsLargerThanTheAreaShowTheirUpperLeftCorner) {
  SetStored("Settings/MainWidth", "8400");
  SetStored("Settings/MainHeight", "7000");
  Start();
  Choose("mnuFileNew");
  const QSize area = Get<QMdiArea>("documents").viewport()->size();
  for (int number = 1; number <= 2; ++number) {
    const QRect document = app->Registry.Document(number)->geometry();
    ASSERT_GT(document.width(), area.width());
    ASSERT_GT(document.height(), area.height());
    EXPECT_EQ(document.topLeft(), QPoint(0, 0)) << number;
  }
}

TEST(EditorCommandLine, TakesNamesAddressesAndQuestions) {
  QDir::setCurrent(QDir::tempPath());  // an earlier test's folder may be gone
  const QString here = QDir::currentPath();
  EXPECT_EQ(ReadCommandLine(
                {"a.sig", "file:///plans/b%20c.sig", "file://localhost/e.sig", "--", "--version", "file:///d.sig"})
                .Files,
            QStringList({here + "/a.sig", "/plans/b c.sig", "/e.sig", here + "/--version", "/d.sig"}));
  EXPECT_TRUE(ReadCommandLine({"a.sig", "--help"}).Answer.startsWith("Usage: chanplan-editor"));
  EXPECT_TRUE(ReadCommandLine({"--version"}).Answer.startsWith("Chanplan Editor "));
  EXPECT_FALSE(ReadCommandLine({"--version"}).Wrong);
  for (const char* option : {"--loud", "-x", "-"}) EXPECT_TRUE(ReadCommandLine({option, "a.sig"}).Wrong) << option;
  EXPECT_EQ(ReadCommandLine({"--", "-x.sig"}).Files, QStringList({here + "/-x.sig"}));
  EXPECT_EQ(ReadCommandLine({"--\x1B[31mloud"}).Answer,
            "There is no option --?[31mloud; chanplan-editor --help names them all.\n");
}

TEST(EditorCommandLine, AnswersQuestionsWhereThereIsNoScreen) {
  for (const auto& [question, answer] :
       {std::pair{"--help", "Usage: chanplan-editor"}, {"--version", "Chanplan Editor " CHANPLAN_VERSION "\n"}}) {
    const ProgramRun run = RunProgram({EDITOR_PROGRAM, question},
                                      {.Environment = {"QT_QPA_PLATFORM=xcb", "DISPLAY=", "WAYLAND_DISPLAY="}});
    EXPECT_TRUE(run.Output.starts_with(answer)) << run.Output;
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(EditorCommandLine, TellsWhenAnAnswerReachesNobody) {
  EXPECT_EQ(RunProgram({EDITOR_PROGRAM, "--help"}, {.OutputTo = "/dev/full"}).ExitStatus, 2);
}

TEST(EditorCommandLine, LeavesThePlatformLibraryItsOptions) {
  const ProgramRun run =
      RunProgram({EDITOR_PROGRAM, "--platform", "offscreen", "--loud"}, {.Environment = {"QT_QPA_PLATFORM=xcb"}});
  EXPECT_TRUE(run.Errors.ends_with("There is no option --loud; chanplan-editor --help names them all.\n"))
      << run.Errors;
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST_F(StartUp, OpensTheTablesItIsGiven) {
  const QString a = Table("a.sig");
  const QString b = Table("b.sig");
  AnswerMessage();
  Start({a, InFolder("missing.sig"), b});
  EXPECT_EQ(Captions(), QStringList({a, b}));
  EXPECT_EQ(messages.front().Text, "Can't open file: " + InFolder("missing.sig"));
}

TEST_F(StartUp, PlacementPortAndSpeedComeBack) {
  Start();
  Frame().move(100, 120);
  Frame().resize(500, 460);
  Choose("menuOptionsCom4");
  Choose("menuOptionsBaud4");
  Exit();
  EXPECT_EQ(Stored("Settings/MainLeft"), "1500");  // twips, 15 a pixel at 96 dots per inch
  EXPECT_EQ(Stored("Settings/MainTop"), "1800");
  EXPECT_EQ(Stored("Settings/MainWidth"), "7500");
  EXPECT_EQ(Stored("Settings/MainHeight"), "6900");
  EXPECT_EQ(Stored("Settings/MainState"), "0");
  EXPECT_EQ(Stored("Settings/CommPort"), "4");
  EXPECT_EQ(Stored("Settings/BaudRate"), "115200");

  Start();
  EXPECT_EQ(Frame().pos(), QPoint(100, 120));
  EXPECT_EQ(Frame().size(), QSize(500, 460));
  EXPECT_EQ(app->Link.CommPort, 4);
  EXPECT_EQ(app->Link.BaudRate, "115200");
}

TEST_F(StartUp, LinkRunsAt9600WhateverSpeedIsStored) {
  SetStored("Settings/BaudRate", "57600");
  Start();
  EXPECT_EQ(app->Link.BaudRate, "57600");
  EXPECT_EQ(app->Link.OpenCommPort(1), 1);
  EXPECT_EQ(app->Link.BaudRate, "9600");
}

TEST_F(StartUp, MaximisedFrameComesBackMaximised) {
  Start();
  Frame().showMaximized();
  Exit();
  EXPECT_EQ(Stored("Settings/MainState"), "2");
  Start();
  EXPECT_TRUE(Frame().isMaximized());
}

TEST_F(StartUp, ClosedWhileMinimisedKeepsTheFormerPlacement) {
  SetStored("Settings/MainLeft", "1500");
  Start();
  Frame().setGeometry(30, 30, 500, 460);
  app->Link.CommPort = 3;
  app->Link.BaudRate = "19200";
  Frame().showMinimized();
  QSignalSpy ended(&Frame(), &frmMain::Ended);
  EXPECT_TRUE(Frame().close());
  EXPECT_EQ(ended.size(), 1);
  EXPECT_EQ(Stored("Settings/MainLeft"), "1500");
  EXPECT_EQ(Stored("Settings/MainTop"), "");
  EXPECT_EQ(Stored("Settings/MainState"), "");
  EXPECT_EQ(Stored("Settings/CommPort"), "3");
  EXPECT_EQ(Stored("Settings/BaudRate"), "19200");
}

TEST_F(StartUp, UnreadableSettingsAreNamedOnceAndTheirDefaultsUsed) {
  SetStored("Settings/CommPort", "COM2");
  SetStored("Settings/MainLeft", "left");
  SetStored("Settings/MainState", "7");
  AnswerMessage();
  Start();
  const int screenWidth = QGuiApplication::primaryScreen()->size().width();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(
      messages.front().Text,
      "In section \"Settings\" of your settings, \"CommPort\" is \"COM2\", which is not a whole number from 1 to "
      "6. Its default, 1, is used.\n\n"
      "In section \"Settings\" of your settings, \"MainLeft\" is \"left\", which is not a number from -1000000 to "
      "1000000. Its default, " +
          QString::number(screenWidth * 15 / 20.0) +  // twips
          ", is used.\n\n"
          "In section \"Settings\" of your settings, \"MainState\" is \"7\", which is not a whole number from 0 to 2. "
          "Its default, 0, is used.");
  EXPECT_EQ(app->Link.CommPort, 1);
  EXPECT_EQ(Frame().x(), qRound(screenWidth / 20.0));
  EXPECT_FALSE(Frame().isMaximized());
}

TEST_F(StartUp, SettingsFileThatCannotBeReadIsNamed) {
  const QString file = QString::fromStdString(SettingsFile());
  WriteFile(file.toStdString(), "[Settings\nCommPort");
  AnswerMessage();
  Start();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.front(), (Message{"Chanplans",
                                       "Your settings file " + file +
                                           " is damaged or cannot be read. Defaults are used for what it lacks.",
                                       QMessageBox::Warning}));
  EXPECT_EQ(app->Link.CommPort, 1);
}

TEST_F(StartUp, PlacementOutsideTheScreenIsBroughtBack) {
  SetStored("Settings/MainLeft", "900000");
  SetStored("Settings/MainTop", "-900000");
  Start();
  const int right = QGuiApplication::primaryScreen()->size().width() - Frame().width();
  EXPECT_EQ(Frame().y(), 0);
  EXPECT_LE(Frame().x(), right);
  EXPECT_GE(Frame().x(), right - 20);  // room for borders
}

TEST_F(StartUp, FrameLargerThanTheScreenLeavesRoomForItsTitleBar) {
  SetStored("Settings/MainWidth", "900000");
  SetStored("Settings/MainHeight", "900000");
  Start();
  const QSize screen = QGuiApplication::primaryScreen()->size();
  EXPECT_LE(Frame().width(), screen.width());
  EXPECT_LE(Frame().height(), screen.height() - Frame().style()->pixelMetric(QStyle::PM_TitleBarHeight));
  EXPECT_GE(Frame().height(), screen.height() - 60);
}

TEST_F(StartUp, PortThatTheMenuDoesNotHaveIsNamed) {
  SetStored("Settings/CommPort", "7");
  AnswerMessage();
  Start();
  EXPECT_EQ(messages.front().Text,
            "In section \"Settings\" of your settings, \"CommPort\" is \"7\", which is not a whole number from 1 to 6. "
            "Its default, 1, is used.");
}

TEST_F(StartUp, MillionsOfTwipsAreNamed) {
  SetStored("Settings/MainWidth", "2000000");
  AnswerMessage();
  Start();
  EXPECT_TRUE(messages.front().Text.startsWith("In section \"Settings\" of your settings, \"MainWidth\""));
}

TEST_F(StartUp, DamagedSectionIsNamedBeforeItIsOverwritten) {
  WriteFile(SettingsFile(), "[Settings]\nCommPort=2\nthis is no setting\n[Recent%20Files]\nRecentFile1=/a.sig\n");
  AnswerMessage();
  Start();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_TRUE(messages.front().Text.endsWith(
      "Lines of section \"Settings\" cannot be read; they will be lost when settings are written."))
      << messages.front().Text.toStdString();
  EXPECT_EQ(app->Link.CommPort, 2);
}

TEST(FittedToScreen, TakesTheOneThatShowsMost) {
  const QList<QRect> screens = {{0, 0, 1000, 800}, {1000, 0, 1000, 800}};
  const struct {
    QRect Placement;
    QRect Result;
  } cases[] = {
      {{100, 100, 600, 400}, {100, 100, 600, 400}},    // inside
      {{1900, 700, 600, 400}, {1400, 400, 600, 400}},  // a corner on the second screen
      {{700, 100, 600, 400}, {400, 100, 600, 400}},    // half on either
      {{701, 100, 600, 400}, {1000, 100, 600, 400}},   // more on the second
      {{200, 100, 1500, 900}, {0, 0, 1000, 800}},      // larger than any
      {{2100, 100, 600, 400}, {400, 100, 600, 400}},   // to the right of both
      {{-700, 100, 600, 400}, {0, 100, 600, 400}},     // to the left
      {{100, -500, 600, 900}, {100, 0, 600, 800}},     // its title bar above the screen, and too high
      {{100, 900, 2000, 400}, {0, 400, 1000, 400}},    // below, and too wide
  };
  for (const auto& test : cases) EXPECT_EQ(FittedToScreen(test.Placement, screens), test.Result);
}

TEST_F(RecentFiles, ProgramsThatRunAtOnceShareThem) {
  Start();
  app->Recent.AddRecentFile("A");
  // The other program's, written by hand: two stores of one program are one.
  const std::string other = "[Recent%20Files]\nRecentFile1=from the other\nRecentFile2=A\n";
  WriteFile(SettingsFile(), other);
  app->Recent.AddRecentFile("B");
  EXPECT_EQ(StoredRecentFiles(), QStringList({"B", "from the other", "A", "", "", ""}));
}

TEST_F(RecentFiles, FilesGivenAtTheStartAreAmongThem) {
  const QString first = Table("a.sig"), second = Table("b.sig");
  Start({first, second});
  EXPECT_EQ(RecentMenu(), QStringList({second, first}));
}

TEST_F(RecentFiles, LongPathsAreShortenedInTheMenuAndOpenedAllTheSame) {
  std::filesystem::create_directory(folder / std::string(200, 'n'));
  const QString path = Table((std::string(200, 'n') + "/tab\there & there.sig").c_str());
  SetStored(RecentFileKey(1), path);
  Start();
  const QString shown = RecentMenu().value(0);
  EXPECT_TRUE(shown.endsWith("tab here & there.sig")) << shown.toStdString();
  EXPECT_TRUE(shown.contains(QChar(0x2026))) << shown.toStdString();
  EXPECT_LT(shown.size(), 130);
  Choose("mnuRecentFile1");
  EXPECT_EQ(Captions(), QStringList({path}));
}

TEST_F(RecentFiles, SamePathMayBeThereTwice) {
  Start();
  for (const char* path : {"A", "B", "A"}) app->Recent.AddRecentFile(path);
  EXPECT_EQ(StoredRecentFiles(), QStringList({"A", "B", "A", "", "", ""}));
}

TEST_F(RecentFiles, SixthDropsTheOldest) {
  Start();
  for (const char* path : {"A", "B", "C", "D", "E", "F"}) app->Recent.AddRecentFile(path);
  EXPECT_EQ(StoredRecentFiles(), QStringList({"F", "E", "D", "C", "B", ""}));
}

TEST_F(RecentFiles, KeyAboveAnEmptyOneKeepsItsValue) {
  SetStored(RecentFileKey(1), "A");
  SetStored(RecentFileKey(3), "C");
  Start();
  app->Recent.AddRecentFile("N");
  EXPECT_EQ(StoredRecentFiles(), QStringList({"N", "A", "C", "C", "", ""}));
}

TEST_F(RecentFiles, AreShownInTheMenuFromTheStart) {
  SetStored(RecentFileKey(1), "/R&D, new/a.sig");
  SetStored(RecentFileKey(2), "/b.sig");
  Start();
  EXPECT_TRUE(Item("mnuRecentFile0").isVisible());
  EXPECT_EQ(Item("mnuRecentFile1").text(), "/R&&D, new/a.sig");  // a mnemonic's mark is doubled
  EXPECT_EQ(RecentMenu(), QStringList({"/R&D, new/a.sig", "/b.sig"}));
  EXPECT_FALSE(Item("mnuRecentFile3").isVisible());
}

// Another program of the same user may have emptied the list meanwhile.
TEST_F(RecentFiles, ShownOnceStayInTheMenuUntilOthersTakeTheirPlace) {
  SetStored(RecentFileKey(1), "/a.sig");
  SetStored(RecentFileKey(2), "/b.sig");
  Start();
  Store().clear();
  app->Recent.LoadRecentFiles();
  EXPECT_EQ(RecentMenu(), QStringList({"/a.sig", "/b.sig"}));
  EXPECT_TRUE(Item("mnuRecentFile0").isVisible());
  EXPECT_TRUE(app->Recent.RecentMenuContains("/b.sig"));
  app->Recent.AddRecentFile("/c.sig");
  app->Recent.LoadRecentFiles();
  EXPECT_EQ(RecentMenu(), QStringList({"/c.sig", "/b.sig"}));
  EXPECT_EQ(app->Recent.Files(), RecentMenu());
}

TEST_F(RecentFiles, NoneAreShownWithoutANewestOne) {
  SetStored(RecentFileKey(2), "/b.sig");
  Start();
  EXPECT_EQ(RecentMenu(), QStringList());
  EXPECT_FALSE(Item("mnuRecentFile0").isVisible());
}

TEST_F(DocumentNumbers, ReleasedNumberIsGivenAwayAgain) {
  Start();
  Choose("mnuFileNew");
  Choose("mnuFileNew");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1", "Untitled 2", "Untitled 3"}));
  EXPECT_TRUE(app->Registry.Document(2)->close());
  EXPECT_TRUE(app->Registry.DocumentStates[1].Released);
  Choose("mnuFileNew");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1", "Untitled 2", "Untitled 3"}));
  EXPECT_EQ(app->Registry.Documents.size(), 3U);
  EXPECT_EQ(app->Registry.Documents.size(), app->Registry.DocumentStates.size());
}

TEST_F(DocumentNumbers, AreFreeAtOnceWhenTheirDocumentCloses) {
  Start();
  app->Registry.Document(1)->close();  // its window goes only when events are handled
  Frame().NewDocument();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_TRUE(app->Registry.AnyDocumentOpen());
}

TEST_F(DocumentNumbers, NumberUsedAgainKeepsNothingOfItsFormerDocument) {
  Start();
  app->Registry.DocumentStates[0].Changed = true;
  AnswerMessage(QMessageBox::No);
  app->Registry.Document(1)->close();
  EXPECT_TRUE(app->Registry.DocumentStates[0].Changed) << "nothing was saved";
  Frame().NewDocument();
  EXPECT_FALSE(app->Registry.DocumentStates[0].Changed);
  EXPECT_FALSE(app->Registry.DocumentStates[0].Released);
  EXPECT_TRUE(app->Registry.Document(1)->close()) << "without a question";
}

TEST_F(DocumentNumbers, UntouchedFirstDocumentIsUsedAgainUnlessANewOneIsAskedFor) {
  Start();
  EXPECT_EQ(app->Registry.GetFreeDocumentSlot(false), 1);
  EXPECT_EQ(app->Registry.Documents.size(), 1U);
  app->Registry.DocumentStates[0].Changed = true;
  EXPECT_EQ(app->Registry.GetFreeDocumentSlot(false), 2);
}

TEST_F(DocumentNumbers, NewDocumentLeavesTheUntouchedFirstOne) {
  Start();
  EXPECT_EQ(app->Registry.GetFreeDocumentSlot(true), 2);
}

TEST_F(DocumentNumbers, FirstDocumentWithAFileIsNotUsedAgain) {
  Start();
  app->Registry.Document(1)->setWindowTitle("/a.sig");
  EXPECT_EQ(app->Registry.GetFreeDocumentSlot(false), 2);
}

TEST_F(DocumentNumbers, AnyDocumentOpenUntilTheLastOneCloses) {
  Start();
  EXPECT_TRUE(app->Registry.AnyDocumentOpen());
  app->Registry.Document(1)->close();
  EXPECT_FALSE(app->Registry.AnyDocumentOpen());
}

TEST_F(Closing, DocumentThatRefusesKeepsTheFrame) {
  StartWithStandIns();
  Choose("mnuFileNew");
  dynamic_cast<StandInDocument&>(*app->Registry.Document(2)).Closes = [] { return false; };
  Choose("mnuFileExit");
  EXPECT_TRUE(Frame().isVisible());
  EXPECT_EQ(Captions(), QStringList({"Untitled 2"}));
  EXPECT_EQ(Stored("Settings/CommPort"), "");
}

TEST_F(Closing, ChangedDocumentAsksBeforeTheProgramEnds) {
  Start();
  Choose("mnuFileNew");
  app->Registry.DocumentStates[0].Changed = true;
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuFileExit");
  EXPECT_TRUE(Frame().isVisible());
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(1));
  AnswerMessage(QMessageBox::No);
  Exit();
  EXPECT_EQ(messages.back().Text, "The contents in [Untitled 1] has changed.\nDo you want to save the changes?");
}

TEST_F(Closing, CancelOnTheSecondOfThreeChangedDocumentsKeepsItAndTheThird) {
  Start();
  Choose("mnuFileNew");
  Choose("mnuFileNew");
  for (DocumentState& state : app->Registry.DocumentStates) state.Changed = true;
  AnswerMessage(QMessageBox::No);
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuFileExit");
  EXPECT_TRUE(Frame().isVisible());
  EXPECT_EQ(Captions(), QStringList({"Untitled 2", "Untitled 3"}));
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(2));
  EXPECT_TRUE(app->Registry.DocumentStates[1].Changed);
  EXPECT_EQ(Stored("Settings/CommPort"), "");
  AnswerMessage(QMessageBox::No);
  AnswerMessage(QMessageBox::No);
  Exit();
  EXPECT_EQ(messages.size(), 4U);
}

TEST_F(Closing, IsRefusedWhileAMessageBoxIsUp) {
  Start();
  Choose("menuEditNewChanplan");
  QSignalSpy ended(&Frame(), &frmMain::Ended);
  for (const char* command : {"mnuFileProperties", "mnuHelpAbout", "mnuFileOpen", "mnuFileClose"}) {
    Answer([this](QWidget& dialog) {
      EXPECT_FALSE(Frame().close());
      Frame().ActiveDocument()->close();
      EXPECT_TRUE(app->Registry.AnyDocumentOpen());
      QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Choose(command);
    EXPECT_TRUE(Frame().isVisible()) << command;
    EXPECT_EQ(Captions(), QStringList({"Untitled 1"})) << command;
  }
  EXPECT_EQ(ended.size(), 0);
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(Closing, SettingsThatCannotBeWrittenAreReportedWhenTheyWereDamagedToo) {
  qputenv("XDG_CONFIG_HOME", (folder / "configuration").string().c_str());
  std::filesystem::create_directory(folder / "configuration");
  WriteFile(SettingsFile(), "[Settings]\nno setting\n");
  AnswerMessage();
  Start();
  std::filesystem::remove_all(folder / "configuration");
  WriteFile(folder / "configuration", "");
  AnswerMessage();
  Choose("mnuFileExit");
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_TRUE(messages.back().Text.startsWith("Your settings cannot be written to "));
}

TEST_F(Closing, SettingsWhoseFolderWasRemovedAreStoredInANewOne) {
  qputenv("XDG_CONFIG_HOME", (folder / "configuration").string().c_str());
  std::filesystem::create_directory(folder / "configuration");
  Start();
  std::filesystem::remove_all(folder / "configuration");
  app->Recent.AddRecentFile(InFolder("a.sig"));
  std::filesystem::remove_all(folder / "configuration");
  Choose("mnuFileExit");
  EXPECT_TRUE(messages.empty());
  EXPECT_NE(ReadFile(SettingsFile()).find("[Settings]"), std::string::npos);
}

TEST_F(Closing, SettingsThatCannotBeWrittenAreReportedOnceAndTheProgramEnds) {
  WriteFile(folder / "file", "");
  qputenv("XDG_CONFIG_HOME", (folder / "file").string().c_str());  // no folder, so nothing can be stored in it
  Start({Table("a.sig")});
  app->Recent.AddRecentFile(InFolder("a.sig"));
  AnswerMessage();
  QSignalSpy ended(&Frame(), &frmMain::Ended);
  Choose("mnuFileExit");
  EXPECT_EQ(ended.size(), 1);
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.front(), (Message{"Chanplans",
                                       "Your settings cannot be written to " + QString::fromStdString(SettingsFile()) +
                                           ". The next start will not know about this one.",
                                       QMessageBox::Warning}));
}
