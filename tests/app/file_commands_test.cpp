// New, Open, Save, Save As, Close, recent files and the factory table.
#include <sys/stat.h>

#include <QComboBox>
#include <QListView>
#include <QTreeView>

#include "app/file_io.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

QComboBox& Types(const QFileDialog& dialog) { return *dialog.findChild<QComboBox*>("fileTypeCombo"); }

class Files : public AppTest {
 protected:
  void OpenByDialog(const QString& path) {
    AnswerFileDialog(path);
    Choose("mnuFileOpen");
  }
  // Looks at the dialog, then cancels it.
  void LookAtFileDialog(std::function<void(QFileDialog&)> look) {
    Answer([look = std::move(look)](QWidget& window) {
      EXPECT_EQ(window.objectName(), "CMDialog1");
      look(dynamic_cast<QFileDialog&>(window));
      QTest::keyClick(&window, Qt::Key_Escape);
    });
  }
  void ExpectProposal(const QString& name) {
    LookAtFileDialog([name](QFileDialog& dialog) {
      EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), name);
      EXPECT_EQ(Types(dialog).currentText(), "Signal Standard Files(*.sig)");
      EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    });
  }
  QString FactoryTable() { return Table("Matrivim.dgc", {"Factory"}); }
};

}  // namespace

TEST_F(Files, OpenUsesTheUntouchedFirstDocument) {
  Start();
  const QPointer<DocumentWindow> first = app->Registry.Document(1);
  OpenByDialog(Table("a.sig"));
  EXPECT_EQ(Captions(), QStringList({InFolder("a.sig")}));
  EXPECT_EQ(Frame().ActiveDocument(), first);
  OpenByDialog(Table("b.sig"));
  EXPECT_EQ(Captions(), QStringList({InFolder("a.sig"), InFolder("b.sig")}));
  EXPECT_FALSE(app->Registry.DocumentStates[1].Changed);
}

TEST_F(Files, SeveralAreOpenedAtOnce) {
  const QString a = Table("a.sig");
  const QString b = Table("b.sig");
  SetStored("Recent Files/RecentFile1", InFolder("c.sig"));  // so the dialog starts in this folder
  Start();
  Answer([](QWidget& window) {
    auto* list = window.findChild<QListView*>("listView");
    const auto row = [list](int number) { return list->model()->index(number, 0, list->rootIndex()); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return row(1).data() == "b.sig"; }, LongestWait));
    for (int number : {0, 1})
      QTest::mouseClick(list->viewport(), Qt::LeftButton, number == 0 ? Qt::NoModifier : Qt::ControlModifier,
                        list->visualRect(row(number)).center());
    QTest::keyClick(&window, Qt::Key_Return);
  });
  Choose("mnuFileOpen");
  EXPECT_EQ(Captions(), QStringList({a, b}));
  EXPECT_EQ(RecentMenu(), QStringList({b, a, InFolder("c.sig")}));
}

TEST_F(Files, OpenDialogOffersTablesFirst) {
  Start();
  LookAtFileDialog([](QFileDialog& dialog) {
    EXPECT_EQ(Types(dialog).itemText(0), "All Files (*.*)");
    EXPECT_EQ(Types(dialog).currentIndex(), 1);
    EXPECT_EQ(Types(dialog).currentText(), "Signal Standard Files(*.sig)");
    EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), "");
  });
  Press("Open");
}

TEST_F(Files, DialogsStartWhereTheNewestRecentFileIs) {
  Start();
  LookAtFileDialog([](QFileDialog& dialog) { EXPECT_EQ(dialog.directory(), QDir::home()); });
  Choose("mnuFileOpen");
  app->Recent.AddRecentFile(InFolder("a.sig"));
  app->Recent.LoadRecentFiles();
  LookAtFileDialog([this](QFileDialog& dialog) { EXPECT_EQ(dialog.directory(), QDir(InFolder(""))); });
  Choose("mnuFileSaveAs");
}

TEST_F(Files, DialogsStartWhereTheActiveDocumentIsAndNeverInAFolderThatIsGone) {
  std::filesystem::create_directory(folder / "plans");
  std::filesystem::create_directory(folder / "recent");
  SetStored("Recent Files/RecentFile1", "/gone/x.sig");
  SetStored("Recent Files/RecentFile2", InFolder("recent/x.sig"));
  Start();
  LookAtFileDialog([this](QFileDialog& dialog) { EXPECT_EQ(dialog.directory(), QDir(InFolder("recent"))); });
  Choose("mnuFileOpen");
  OpenTableFile(Frame(), Table("plans/a.sig"));
  LookAtFileDialog([this](QFileDialog& dialog) { EXPECT_EQ(dialog.directory(), QDir(InFolder("plans"))); });
  Choose("mnuFileOpen");
}

TEST_F(Files, NumberBehindADotIsNoType) {
  WriteFile(folder / "taken.2.sig", "former");
  Start({Table("a.sig")});
  AnswerFileDialog(InFolder("v1.2"));
  Choose("mnuFileSaveAs");
  EXPECT_EQ(Captions(), QStringList({InFolder("v1.2.sig")}));
  AnswerFileDialog(InFolder("taken.2"));
  AnswerMessage(QMessageBox::No);
  Choose("mnuFileSaveAs");
  EXPECT_EQ(messages.back().Text, InFolder("taken.2.sig") + " already exists.\nDo you want to replace it?");
  EXPECT_EQ(ReadFile(folder / "taken.2.sig"), "former");
}

TEST_F(Files, FileThatIsOpenInAnotherWindowIsSaidToBe) {
  const QString path = Table("a.sig");
  Start({path});
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "");
  OpenByDialog(path);
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), path + " is open in another window, too.");
}

TEST_F(Files, WhatWasNotReadWholeIsSaidInTheStatusBar) {
  WriteFile(folder / "a.sig", "header\r\n2\t0\tA\t880,2\t925,2\t1\t2\t0.2\t0.2\t1\r\n");
  Start();
  OpenByDialog(InFolder("a.sig"));
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(),
            "2 remarks on the file; the first: line 2: \"880,2\" was read as 880.");
}

TEST_F(Files, RemarksOnSeveralThatAreOpenedTogetherAreAllTold) {
  WriteFile(folder / "a.sig", "header\r\n2\t0\tA\t880,2\t925.2\t1\t2\t0.2\t0.2\t1\r\n");
  WriteFile(folder / "c.sig", "header\r\n2\t0\tA\t880.2\t925,2\t1\t2\t0.2\t0.2\t1\r\n");
  Start({InFolder("a.sig"), Table("b.sig"), InFolder("c.sig"), Table("d.sig")});
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(),
            "a.sig: 1 remark on the file: line 2: \"880,2\" was read as 880. "
            "c.sig: 1 remark on the file: line 2: \"925,2\" was read as 925.");
}

TEST_F(Files, SaveOfOneWindowAsksInTheOther) {
  const QString path = Table("a.sig", {"A"});
  Start({path});
  OpenByDialog(path);
  Frame().ActiveDocument()->InsertBlank();
  Choose("mnuFileSave");
  Frame().ShowDocument(*app->Registry.Document(1));
  AnswerMessage(QMessageBox::SaveAll);
  AnswerFileDialog(InFolder("other.sig"));
  Choose("mnuFileSave");
  EXPECT_EQ(Captions(), QStringList({InFolder("other.sig"), path}));
  EXPECT_EQ(RecentMenu().value(0), InFolder("other.sig"));
}

TEST_F(Files, PipeIsNoTableAndHoldsNothingUp) {
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  Start();
  AnswerMessage();
  OpenTableFile(Frame(), InFolder("pipe"));
  EXPECT_EQ(messages.back().Text, "Can't open file: " + InFolder("pipe"));
}

TEST_F(Files, PipeThatTookAFilesPlaceHoldsNothingUpEither) {
  const QString path = Table("a.sig", {"A"});
  Start({path});
  Frame().ActiveDocument()->InsertBlank();
  ASSERT_TRUE(QFile::remove(path));
  ASSERT_EQ(mkfifo((folder / "a.sig").c_str(), 0600), 0);
  AnswerMessage();
  Choose("mnuFileSave");
  EXPECT_EQ(messages.back(), (Message{"Error Saving File", path + " is no file.", QMessageBox::Critical}));
  EXPECT_TRUE(Frame().ActiveDocument()->State().Changed);
}

TEST_F(Files, EnterLosesNothingWhereAFileIsAskedAbout) {
  const QString path = Table("a.sig", {"A"});
  WriteFile(folder / "v1.2.sig", "former");
  Start({path});
  Frame().ActiveDocument()->InsertBlank();
  WriteFile(folder / "a.sig", ReadFile(folder / "a.sig") + "2\t0\tB\t1\t2\t1\t2\t1\t1\t1\r\n");
  const std::string former = ReadFile(folder / "a.sig");
  Answer([this](QWidget& question) {
    AnswerFileDialog(InFolder("other.sig"));  // to keep both
    QTest::keyClick(&question, Qt::Key_Return);
  });
  Choose("mnuFileSave");
  EXPECT_EQ(ReadFile(folder / "a.sig"), former);
  EXPECT_EQ(Captions(), QStringList({InFolder("other.sig")}));
  AnswerFileDialog(InFolder("v1.2"));
  Answer([](QWidget& question) { QTest::keyClick(&question, Qt::Key_Return); });
  Choose("mnuFileSaveAs");
  EXPECT_EQ(ReadFile(folder / "v1.2.sig"), "former");
}

TEST_F(Files, AllFilesAreThoseWithoutATypeToo) {
  WriteFile(folder / "table", "header\r\n");
  SetStored("Recent Files/RecentFile1", InFolder("table"));  // so the dialog starts in this folder
  Start();
  LookAtFileDialog([](QFileDialog& dialog) {
    QTest::keyClick(&Types(dialog), Qt::Key_Up);
    const QTreeView* list = dialog.findChild<QTreeView*>("treeView");
    const auto shown = [list] {
      for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row)
        if (list->model()->index(row, 0, list->rootIndex()).data() == "table") return true;
      return false;
    };
    EXPECT_TRUE(QTest::qWaitFor(shown, LongestWait));
  });
  Choose("mnuFileOpen");
}

TEST_F(Files, CancellingTheOpenDialogChangesNothing) {
  SetStored("Recent Files/RecentFile1", "/a.sig");
  Start();
  CancelFileDialog();
  Choose("mnuFileOpen");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(RecentMenu(), QStringList({"/a.sig"}));
  EXPECT_EQ(Stored("Recent Files/RecentFile2"), "");
}

TEST_F(Files, FileThatCannotBeOpenedMakesNoDocument) {
  Start();
  AnswerFileDialog(InFolder("missing.sig"));
  AnswerMessage();
  Choose("mnuFileOpen");
  EXPECT_EQ(messages.back(), (Message{"", "Can't open file: " + InFolder("missing.sig"), QMessageBox::NoIcon}));
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(RecentMenu(), QStringList({InFolder("missing.sig")})) << "as every name that was chosen";
}

TEST_F(Files, FileThatCannotBeReadLeavesNoDocumentBehind) {
  WriteFile(folder / "bad.sig", "header\r\nnot a row\r\n");
  Start();
  Choose("mnuFileNew");
  AnswerFileDialog(InFolder("bad.sig"));
  Answer([this](QWidget& box) {
    messages.push_back({box.windowTitle(), dynamic_cast<QMessageBox&>(box).text(), QMessageBox::Critical});
    EXPECT_EQ(Frame().cursor().shape(), Qt::WaitCursor);
    EXPECT_EQ(box.cursor().shape(), Qt::ArrowCursor) << "nobody waits for the program";
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    QTest::keyClick(&box, Qt::Key_Return);
  });
  Choose("mnuFileOpen");
  EXPECT_EQ(messages.back(), (Message{"Chanplans", "Error loading " + InFolder("bad.sig"), QMessageBox::Critical}));
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "Line 2 has 1 field where 10 are needed.");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1", "Untitled 2"}));
  EXPECT_EQ(Frame().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Files, GarbageIsRefusedAndTheActiveDocumentStays) {
  std::string garbage;
  for (int byte = 0; byte < 4096; ++byte) garbage += static_cast<char>(byte * 7919 >> 3);
  WriteFile(folder / "garbage.sig", garbage);
  WriteFile(folder / "doubtful.sig", "header\r\n2\t1\tDCS\t9850\t1805.2\t512\t885\t0.2\t0.2\t1\r\n");
  Start({InFolder("doubtful.sig")});
  AnswerFileDialog(InFolder("garbage.sig"));
  AnswerMessage();
  Choose("mnuFileOpen");
  EXPECT_EQ(messages.back().Text, "Error loading " + InFolder("garbage.sig"));
  EXPECT_EQ(Captions(), QStringList({InFolder("doubtful.sig")}));
  EXPECT_EQ(Frame().ActiveDocument(), app->Registry.Document(1));
  EXPECT_EQ(StatusPanel2(), " 2 warnings.") << "those of the active document";
}

TEST_F(Files, OpenedFilesBecomeRecentFiles) {
  Start();
  OpenByDialog(Table("a.sig"));
  OpenByDialog(Table("b.sig"));
  EXPECT_EQ(RecentMenu(), QStringList({InFolder("b.sig"), InFolder("a.sig")}));
  EXPECT_EQ(Stored("Recent Files/RecentFile1"), InFolder("b.sig"));
}

TEST_F(Files, FirstFourRecentFilesKeepTheirPlaceAndTheFifthMovesToTheTop) {
  QStringList paths;
  for (const char* name : {"a.sig", "b.sig", "c.sig", "d.sig", "e.sig"}) paths += Table(name);
  for (int number = 1; number <= 5; ++number)
    SetStored("Recent Files/RecentFile" + QString::number(number), paths[number - 1]);
  Start();
  for (int number = 1; number <= 4; ++number) {
    OpenByDialog(paths[number - 1]);
    EXPECT_EQ(RecentMenu(), paths) << number;
  }
  OpenByDialog(paths[4]);
  EXPECT_EQ(RecentMenu(), QStringList({paths[4], paths[0], paths[1], paths[2], paths[3]}));
}

TEST_F(Files, RecentFileIsOpenedFromTheMenu) {
  SetStored("Recent Files/RecentFile1", Table("R&D.sig"));
  SetStored("Recent Files/RecentFile2", InFolder("gone.sig"));
  Start();
  Choose("mnuRecentFile1");
  EXPECT_EQ(Captions(), QStringList({InFolder("R&D.sig")}));
  AnswerMessage();
  Choose("mnuRecentFile2");
  EXPECT_EQ(messages.back().Text, "Can't open file: " + InFolder("gone.sig"));
  EXPECT_EQ(RecentMenu(), QStringList({InFolder("R&D.sig"), InFolder("gone.sig")}));
}

TEST_F(Files, SaveWritesToTheFileOfTheCaption) {
  StartWithStandIns();
  StandIn().setWindowTitle("/a.sig");
  StandIn().State().Changed = true;
  Choose("mnuFileSave");
  EXPECT_EQ(StandIn().Calls, QStringList({"SaveChanplans /a.sig"}));
  EXPECT_FALSE(StandIn().State().Changed);
}

TEST_F(Files, DocumentStaysChangedWhenSavingFails) {
  StartWithStandIns();
  StandIn().setWindowTitle("/a.sig");
  StandIn().Saves = false;
  Press("Save");
  EXPECT_TRUE(StandIn().State().Changed);
}

TEST_F(Files, SaveAsksForANameWhereThereIsNone) {
  const struct {
    const char* Caption;
    QString Proposed;
  } cases[] = {
      {"Untitled 1", "Untitled.lst"},
      {"Untitled(Query) 1", "Untitled.lst"},
      {"Factory Default (Read-Only)", ""},
  };
  for (const auto& test : cases)
    for (const char* command : {"mnuFileSave", "mnuFileSaveAs"}) {
      StartWithStandIns();
      StandIn().setWindowTitle(test.Caption);
      ExpectProposal(test.Proposed);
      Choose(command);
      EXPECT_EQ(StandIn().Calls, QStringList()) << test.Caption;
      EXPECT_EQ(StandIn().windowTitle(), test.Caption);
      app.reset();
    }
}

TEST_F(Files, SaveAsProposesTheFileOfTheCaption) {
  const QString path = Table("a.sig");
  Start({path});
  LookAtFileDialog([path](QFileDialog& dialog) { EXPECT_EQ(dialog.selectedFiles(), QStringList({path})); });
  Choose("mnuFileSaveAs");
}

TEST_F(Files, SavedUnderANewNameItIsARecentFile) {
  Start();
  app->Registry.DocumentStates[0].Changed = true;
  AnswerFileDialog(InFolder("new"));
  Choose("mnuFileSaveAs");
  EXPECT_EQ(Captions(), QStringList({InFolder("new.sig")})) << "a name without a type is one of a table";
  EXPECT_TRUE(std::filesystem::exists(folder / "new.sig"));
  EXPECT_FALSE(app->Registry.DocumentStates[0].Changed);
  EXPECT_EQ(RecentMenu(), QStringList({InFolder("new.sig")}));
}

TEST_F(Files, OverwritingIsAskedFor) {
  const QString path = Table("a.sig");
  const std::string former = ReadFile(folder / "a.sig");
  Start();
  Answer([this, path](QWidget& window) {
    AnswerMessage(QMessageBox::No);
    QLineEdit* edit = window.findChild<QLineEdit*>("fileNameEdit");
    edit->selectAll();
    QTest::keyClicks(edit, path);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(window.isVisible());
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  Choose("mnuFileSaveAs");
  EXPECT_EQ(messages.size(), 1U);
  EXPECT_EQ(ReadFile(folder / "a.sig"), former);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
}

TEST_F(Files, ReportsAreOfferedForOtherTypes) {
  Start();
  LookAtFileDialog([](QFileDialog& dialog) {
    EXPECT_EQ(Types(dialog).itemText(0), "All Files (*.*)");
    EXPECT_EQ(Types(dialog).currentText(), "Report Files(*.htm)");
  });
  EXPECT_EQ(Frame().PromptSaveFileName("a.htm", ".htm"), "");
}

TEST_F(Files, CloseClosesTheActiveDocument) {
  Start();
  Choose("mnuFileNew");
  Frame().ShowDocument(*app->Registry.Document(1));
  Choose("mnuFileClose");
  EXPECT_EQ(Captions(), QStringList({"Untitled 2"}));
  EXPECT_EQ(app->Registry.Document(1), nullptr);
}

TEST_F(Files, FactoryTableIsReadOnly) {
  FactoryTable();
  Start();
  Choose("menuFileDefault");
  EXPECT_EQ(Captions(), QStringList({"Factory Default (Read-Only)"}));
}

TEST_F(Files, WithoutAFactoryTableTheCommandDoesNothing) {
  Start();
  Choose("menuFileDefault");
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
}

TEST_F(Files, OnesOwnAreTakenFromBesideTheProgramElseFromTheDataFolderOfWhatIsInstalled) {
  std::filesystem::create_directories(folder / "bin");
  std::filesystem::create_directories(folder / "share/chanplan-editor");
  Start();
  app->ProgramFolder = InFolder("bin");
  EXPECT_EQ(app->OwnFile("Matrivim.dgc"), InFolder("bin/Matrivim.dgc")) << "nowhere";
  const QString installed = Table("share/chanplan-editor/Matrivim.dgc");
  EXPECT_EQ(app->OwnFile("Matrivim.dgc"), installed);
  Choose("menuFileDefault");
  EXPECT_EQ(Captions(), QStringList({"Factory Default (Read-Only)"}));
  const QString beside = Table("bin/Matrivim.dgc");
  EXPECT_EQ(app->OwnFile("Matrivim.dgc"), beside);
}

TEST_F(Files, FactoryTableIsNeverOverwrittenBySave) {
  FactoryTable();
  const std::string former = ReadFile(folder / "Matrivim.dgc");
  Start();
  Choose("menuFileDefault");
  Choose("menuEditNewChanplan");
  AnswerFileDialog(InFolder("mine.sig"));
  Choose("mnuFileSave");
  EXPECT_EQ(ReadFile(folder / "Matrivim.dgc"), former);
  EXPECT_EQ(Captions(), QStringList({InFolder("mine.sig")}));

  Choose("menuEditNewChanplan");
  Choose("mnuFileSave");  // an ordinary table from now on: nothing is asked
  EXPECT_FALSE(app->Registry.DocumentStates[0].Changed);
}

TEST_F(Files, CopiesOfTheFactoryTableAreReadOnlyByTheirName) {
  Start({Table("my MATRIVIM.DGC.bak"), Table("other.sig")});
  EXPECT_EQ(Captions(), QStringList({"Factory Default (Read-Only)", InFolder("other.sig")}));
}

TEST_F(Files, PropertiesTellWhereTheTableComesFrom) {
  FactoryTable();
  const QString path = Table("a.sig", {"A", "B", "C"});
  const QString counts = "Record count:     \t6 of 200\nSignal Standards: \t3\nSub-bands:        \t3";
  const struct {
    const char* Command;
    QString Beginning;
    QString End;
  } cases[] = {
      {nullptr, path + "\n\nFile size:      \t", "\n\n" + counts},
      {"menuFileDefault", "Factory Default Signal Standards\n\nRecord count:     \t2 of 200\n",
       "Sub-bands:        \t1"},
      {"mnuFileNew", "File:             \tUnsaved\n\nRecord count:     \t0 of 200\n", "Sub-bands:        \t0"},
  };
  Start({path});
  for (const auto& test : cases) {
    if (test.Command != nullptr) Choose(test.Command);
    AnswerMessage();
    Choose("mnuFileProperties");
    EXPECT_EQ(messages.back().Title, "Table Properties");
    EXPECT_TRUE(messages.back().Text.startsWith(test.Beginning)) << messages.back().Text.toStdString();
    EXPECT_TRUE(messages.back().Text.endsWith(test.End)) << messages.back().Text.toStdString();
  }
}
