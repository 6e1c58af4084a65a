// What an upload keeps of the unit's table, and what it looks at afterwards.
#include <sys/resource.h>

#include <QAccessible>
#include <QRegularExpression>
#include <csignal>

#include "app/compare_window.h"
#include "app/frm_upload_optns.h"
#include "app/kept_table.h"
#include "tests/app/transfer_fixture.h"
#include "unit/wire_encoding.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

const QString Keep = "chkKeepCopy";
const QString ReadBack = "chkReadBack";
const QString NotWhole =
    "The table of the unit could not be read whole, so nothing was uploaded: check the cable and start again.";
const QString NotConfirmed =
    "The unit did not confirm the upload, so its table may be incomplete: check that the unit is switched on and that "
    "the cable sits, and upload the table again.";
const QString ReadBackSame = " The unit's table was read back: it is what was sent.";
const QString NotCompared = " The table was uploaded, but not read back to compare it.";

const std::vector<std::string> WithSubbands = {"2|2|X|1850.2|1930.2|512|810|0.2|0.25|1",
                                               "0|0|X|1850.2|1930.2|512|600|0.2|0.25|1",
                                               "0|0|X|1870.2|1950.2|601|810|0.2|0.25|1"};

class UploadChecks : public TransferTest {
 protected:
  UploadChecks() {
    std::filesystem::create_directory(documentsFolder);
    WriteFile(folder / "user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"" + documentsFolder.string() + "\"\n");
  }
  void TearDown() override {
    if (app != nullptr)
      for (auto& state : app->Registry.DocumentStates) state.Changed = false;
  }

  using Buttons = std::vector<QMessageBox::StandardButton>;
  /// With these boxes checked, and answers to the messages that come.
  void UploadWith(const QStringList& boxes, Choice choice = Choice::Overwrite,
                  const Buttons& given = {QMessageBox::Ok}) {
    AnswerOptions(choice, boxes);
    for (const QMessageBox::StandardButton answer : given) AnswerMessage(answer);
    Choose("mnuToolsUpload");
  }
  QStringList KeptFiles() {
    return QDir(QString::fromStdString(documentsFolder))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
  }
  QString KeptPath() { return QString::fromStdString(documentsFolder) + "/" + KeptFiles().value(0); }
  QString KeptText() { return "The unit's table from before is in " + KeptPath() + "."; }
  long CountOf(const std::string& event) {
    return QString::fromStdString(unit->Output()).count(QString::fromStdString(event));
  }
  void ExpectNothingUploaded() {
    EXPECT_FALSE(UnitGotATable());
    EXPECT_FALSE(Frame().Transferring());
    ExpectPortFree();
  }
  void ExpectMessage(const QString& text, QMessageBox::Icon icon = QMessageBox::Warning) {
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages.front().Text, text);
    EXPECT_EQ(messages.front().Icon, icon);
    messages.clear();
  }
  /// What the unit gets of `table`.
  static std::string Message(const QString& table) {
    return EncodeTable(LoadSigFile(table.toStdString()).Table, UploadTag(0));
  }

  std::filesystem::path documentsFolder = unitFolder / "Documents";
};

using UploadOptions = UploadChecks;
using KeepingACopy = UploadChecks;
using ReadingBack = UploadChecks;

}  // namespace

// The options

TEST_F(UploadOptions, BoxesStandBelowTheChoicesUncheckedAtFirst) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([](QWidget& dialog) {
    const auto& overwrite = *dialog.findChild<QRadioButton*>("optnReplace");
    const auto& upload = *dialog.findChild<QPushButton*>("bttnUpload");
    const auto& keep = *dialog.findChild<QCheckBox*>(Keep);
    const auto& readBack = *dialog.findChild<QCheckBox*>(ReadBack);
    EXPECT_EQ(keep.text(), "&Keep a copy of the unit's table");
    EXPECT_EQ(readBack.text(), "Read &back and compare");
    for (const QCheckBox* box : {&keep, &readBack}) {
      EXPECT_FALSE(box->isChecked());
      EXPECT_TRUE(box->isEnabled());
      EXPECT_EQ(QAccessible::queryAccessibleInterface(const_cast<QCheckBox*>(box))->text(QAccessible::Name),
                QString(box->text()).remove('&'));
      EXPECT_NE(QAccessible::queryAccessibleInterface(const_cast<QCheckBox*>(box))->text(QAccessible::Description), "");
    }
    EXPECT_LT(overwrite.geometry().bottom(), keep.y());
    EXPECT_LT(keep.geometry().bottom(), readBack.y());
    EXPECT_LT(readBack.geometry().bottom(), upload.y());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Choose("mnuToolsUpload");
}

TEST_F(UploadOptions, BoxesAreReachedByKeysOfTheirOwn) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([](QWidget& dialog) {
    std::vector<QKeySequence> keys;
    for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
      if (!button->shortcut().isEmpty()) keys.push_back(button->shortcut());
    for (const QKeySequence& key : keys) EXPECT_EQ(std::ranges::count(keys, key), 1) << key.toString().toStdString();
    for (const auto& [name, key] : {std::pair{Keep, Qt::Key_K}, {ReadBack, Qt::Key_B}}) {
      const auto& box = *dialog.findChild<QCheckBox*>(name);
      QTest::keyClick(dialog.focusWidget(), key, Qt::AltModifier);
      EXPECT_TRUE(QTest::qWaitFor([&] { return box.isChecked(); }, LongestWait)) << name.toStdString();
    }
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Choose("mnuToolsUpload");
}

TEST_F(UploadOptions, BoxesAreRememberedFromOneStartToTheNext) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  UploadWith({ReadBack});
  EXPECT_EQ(Stored("Settings/UploadReadBack"), "1") << "already, should the program be killed";
  UploadWith({}, Choice::Cancel, {});
  Exit();
  EXPECT_EQ(Stored("Settings/UploadKeepCopy"), "0");
  EXPECT_EQ(Stored("Settings/UploadReadBack"), "1");
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([](QWidget& dialog) {
    EXPECT_FALSE(dialog.findChild<QCheckBox*>(Keep)->isChecked());
    EXPECT_TRUE(dialog.findChild<QCheckBox*>(ReadBack)->isChecked());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Choose("mnuToolsUpload");
}

TEST_F(UploadOptions, CancelledForgetWhatWasChecked) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  UploadWith({Keep, ReadBack}, Choice::Cancel, {});
  EXPECT_FALSE(app->Transfers.UploadKeepCopy);
  EXPECT_FALSE(app->Transfers.UploadReadBack);
}

TEST_F(UploadOptions, ThatCannotBeReadInTheSettingsAreNamed) {
  SetStored("Settings/UploadKeepCopy", "yes");
  AnswerMessage();
  Start();
  EXPECT_EQ(messages.front().Text,
            "In section \"Settings\" of your settings, \"UploadKeepCopy\" is \"yes\", which is not a whole number from "
            "0 to 1. Its default, 0, is used.");
  EXPECT_FALSE(app->Transfers.UploadKeepCopy);
}

TEST_F(UploadOptions, UncheckedLeaveTheConversationAsItIs) {
  StartUnit(NumberedRows(1));
  const QString mine = TableFile("mine.sig", NumberedRows(2));
  Start({mine});
  const std::string identified = "E\xFF";
  const auto uploaded = [](const std::string& message) { return "EN" + message + "\xFF\xFF"; };
  Upload(Choice::Overwrite);
  EXPECT_EQ(port->Sent, identified + uploaded(Message(mine)));
  port->Sent.clear();
  Upload(Choice::Append);
  EXPECT_EQ(port->Sent, identified + identified + "EO\xFF\xFF" + uploaded(Message(mine)));
  EXPECT_EQ(KeptFiles(), QStringList());
}

// Keeping a copy

TEST_F(KeepingACopy, PutsTheUnitsTableIntoADatedFileThatTheOutcomeNames) {
  StartUnit(WithSubbands);
  const QString mine = TableFile("mine.sig", NumberedRows(2));
  Start({mine});
  const QStringList recent = RecentMenu();
  UploadWith({Keep});
  ASSERT_EQ(KeptFiles().size(), 1);
  EXPECT_TRUE(QRegularExpression("^Unit \\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.sig$").match(KeptFiles()[0]).hasMatch())
      << KeptFiles()[0].toStdString();
  EXPECT_EQ(Status(), CompletedText(2) + " " + KeptText());
  ExpectMessage(CompletedText(2) + "\n\n" + KeptText(), QMessageBox::Information);
  EXPECT_EQ(Captions(), QStringList({mine})) << "it is in no window";
  EXPECT_EQ(RecentMenu(), recent);
  EXPECT_EQ(LoadSigFile(KeptPath().toStdString()).Table, LoadSigFile(unitFolder / "unit.sig").Table);
  EXPECT_EQ(port->Sent,
            "E\xFF"
            "EO\xFF\xFF"
            "EN" +
                Message(mine) + "\xFF\xFF");
  ExpectAnotherProgramReachesTheUnit();
  EXPECT_EQ(UnitsNames(), QStringList({"S1", "S2"}));
}

TEST_F(KeepingACopy, MakesAFileThatOpensAsAnyOther) {
  StartUnit(WithSubbands);
  Start({TableFile("mine.sig", NumberedRows(2))});
  UploadWith({Keep});
  AnswerFileDialog(KeptPath());
  Choose("mnuFileOpen");
  EXPECT_EQ(ActiveCaption(), KeptPath());
  EXPECT_EQ(ActiveNames(), QStringList({"X", "X(A)", "X(B)"}));
  EXPECT_EQ(Status(), CompletedText(2) + " " + KeptText()) << "there is nothing to remark";
}

TEST_F(KeepingACopy, NeverTakesTheNameOfAnotherFile) {
  const QDateTime now(QDate(2026, 11, 21), QTime(18, 45, 59));
  const SignalStandardTable table = TableOf({{.State = "2", .Name = "A"}});
  const auto fileName = [&] { return QFileInfo(KeepTable(table, now).Path).fileName(); };
  EXPECT_EQ(fileName(), "Unit 2026-11-21 18.45.sig");
  WriteFile(documentsFolder / "Unit 2026-11-21 18.45 (2).sig", "somebody's");
  std::filesystem::create_symlink(folder / "nowhere", documentsFolder / "Unit 2026-11-21 18.45 (3).sig");
  EXPECT_EQ(fileName(), "Unit 2026-11-21 18.45 (4).sig");
  EXPECT_EQ(ReadFile(documentsFolder / "Unit 2026-11-21 18.45 (2).sig"), "somebody's");
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
}

TEST_F(KeepingACopy, TakesWhatAnAppendReadsAnyway) {
  StartUnit(WithSubbands);
  Start({TableFile("mine.sig", NumberedRows(2))});
  UploadWith({Keep}, Choice::Append);
  EXPECT_EQ(Status(), CompletedText(5) + " " + KeptText());
  EXPECT_EQ(LoadSigFile(KeptPath().toStdString()).Table, LoadSigFile(unitFolder / "unit.sig").Table)
      << "as the unit had it";
  EXPECT_EQ(CountOf("sends its table"), 1);
  EXPECT_EQ(UnitsTable().Count, 5);
}

TEST_F(KeepingACopy, OfAnEmptyTableIsNoFile) {
  for (const Choice choice : {Choice::Overwrite, Choice::Append}) {
    StartUnit();
    Start({TableFile("mine.sig", NumberedRows(2))});
    UploadWith({Keep}, choice);
    EXPECT_EQ(Status(), CompletedText(2) + " The unit's table was empty: there was nothing to keep.");
    EXPECT_EQ(KeptFiles(), QStringList());
    EXPECT_EQ(UnitsTable().Count, 2);
    TearDown();
    std::filesystem::remove(unitFolder / "held.sig");
    unit.reset();
  }
}

TEST_F(KeepingACopy, OfATableThatIsNotReadWholeUploadsNothing) {
  const QString tooMany =
      "The unit announces more than 200 records, which no table can hold: its first 200 are not its whole table\n\n";
  for (const auto& [fault, reason] : {std::pair{"truncate-reply", QString()}, {"too-many", tooMany}}) {
    SCOPED_TRACE(fault);
    StartUnit(NumberedRows(4), {"--fault", fault});
    Start({TableFile("mine.sig", NumberedRows(2))});
    UploadWith({Keep});
    ExpectMessage(reason + NotWhole);
    EXPECT_EQ(Status(), QString(reason + NotWhole).replace('\n', ' '));
    EXPECT_EQ(KeptFiles(), QStringList());
    ExpectNothingUploaded();
    unit.reset();
  }
}

TEST_F(KeepingACopy, OfAUnitThatFallsSilentUploadsNothing) {
  StartUnit(NumberedRows(4), {"--fault", "silent-after-identify"});
  Start({TableFile("mine.sig", NumberedRows(2))});
  UploadWith({Keep});
  ExpectMessage("Error establishing communication with Handheld Product!\n\n" + NotWhole);
  EXPECT_EQ(KeptFiles(), QStringList());
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, OfAUnitThatIsUnpluggedUploadsNothing) {
  StartUnit(NumberedRows(4), {"--fault", "hang-up"});
  Start({TableFile("mine.sig", NumberedRows(2))});
  UploadWith({Keep});
  EXPECT_TRUE(messages.back().Text.contains("stopped working")) << messages.back().Text.toStdString();
  EXPECT_TRUE(messages.back().Text.endsWith(NotWhole));
  EXPECT_EQ(KeptFiles(), QStringList());
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, MakesTheDocumentsFolderOfANewUser) {
  std::filesystem::remove(documentsFolder);
  StartUnit(NumberedRows(4));
  Start({TableFile("mine.sig", NumberedRows(2, 100))});
  UploadWith({Keep}, Choice::Overwrite, {QMessageBox::Ok});
  EXPECT_EQ(KeptFiles().size(), 1);
  messages.clear();
}

TEST_F(KeepingACopy, WhereNoFolderCanBeMadeAsksBeforeAnythingIsUploaded) {
  std::filesystem::remove(documentsFolder);
  WriteFile(documentsFolder, "");
  for (const Choice choice : {Choice::Overwrite, Choice::Append})
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Ok}) {
      StartUnit(NumberedRows(4));
      Start({TableFile("mine.sig", NumberedRows(2, 100))});
      UploadWith({Keep}, choice, answer == QMessageBox::Ok ? Buttons{answer, QMessageBox::Ok} : Buttons{answer});
      EXPECT_TRUE(messages.front().Text.startsWith("The unit's table cannot be kept in " +
                                                   QString::fromStdString(documentsFolder) + "/Unit "));
      EXPECT_TRUE(messages.front().Text.endsWith(".sig.\nNot a directory.\n\nUpload the table all the same?"))
          << messages.front().Text.toStdString();
      EXPECT_EQ(messages.front().Icon, QMessageBox::Warning);
      messages.clear();
      EXPECT_EQ(UnitGotATable(), answer == QMessageBox::Ok);
      const int records = choice == Choice::Append ? 6 : 2;
      EXPECT_EQ(Status(), answer == QMessageBox::Ok
                              ? CompletedText(records) + " The unit's table from before was not kept."
                              : CanceledText);
      ExpectPortFree();
      TearDown();
      std::filesystem::remove(unitFolder / "held.sig");
      unit.reset();
    }
}

TEST_F(KeepingACopy, ThatFailsUploadsNothingForAnEnter) {
  std::filesystem::remove(documentsFolder);
  WriteFile(documentsFolder, "");
  StartUnit(NumberedRows(4));
  Start({TableFile("mine.sig", NumberedRows(2, 100))});
  AnswerOptions(Choice::Overwrite, {Keep});
  AnswerMessageWithEnter();
  Choose("mnuToolsUpload");
  EXPECT_TRUE(messages.front().Text.endsWith("Upload the table all the same?"));
  ExpectNothingUploaded();
}

// No file can have more than a kilobyte, which is enough for a port's lock.
TEST_F(KeepingACopy, OnADiskThatIsFullAsksAndLeavesNoPieceBehind) {
  StartUnit(NumberedRows(60));
  Start({TableFile("mine.sig", NumberedRows(2))});
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{.rlim_cur = 1024, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
  UploadWith({Keep}, Choice::Overwrite, {QMessageBox::Cancel});
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, formerHandler);
  EXPECT_TRUE(messages.back().Text.contains("\nFile too large.\n")) << messages.back().Text.toStdString();
  EXPECT_EQ(KeptFiles(), QStringList());
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, AbortedWhileReadingUploadsNothing) {
  StartUnit(NumberedRows(20), {"--baud", "9600"});
  Start({TableFile("mine.sig", NumberedRows(2))});
  During([this] { return IsDownloading(); }, [this] { PressAbort(); });
  UploadWith({Keep}, Choice::Overwrite, {QMessageBox::Yes});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(KeptFiles(), QStringList());
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, AbortedInTheUploadNamesTheFile) {
  StartUnit(NumberedRows(1));
  Start({TableFile("mine.sig", NumberedRows(20))});
  During([this] { return IsUploading(); }, [this] { PressAbort(); });
  UploadWith({Keep}, Choice::Overwrite, {QMessageBox::Yes, QMessageBox::Ok});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CanceledText + " " + KeptText());
}

TEST_F(KeepingACopy, NamesTheFileWhenTheUploadGoesNoFurther) {
  StartUnit(NumberedRows(1));
  Start({TableFile("mine.sig", {"2|0|High|5000|935|1|124|0.2|0.2|1"})});
  UploadWith({Keep}, Choice::Append, {QMessageBox::Cancel});
  EXPECT_EQ(Status(), CanceledText + " " + KeptText());
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, NamesTheFileWhenTheTableDoesNotFit) {
  StartUnit(NumberedRows(1));
  Start({TableFile("mine.sig", {"2|0|Bad|890|935|1|70000|0.2|0.2|1"})});
  UploadWith({Keep}, Choice::Append);
  EXPECT_TRUE(messages.back().Text.startsWith("row 2 (Bad): Stop Channel")) << messages.back().Text.toStdString();
  EXPECT_TRUE(messages.back().Text.endsWith("\n\n" + KeptText()));
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, IsNotBegunForATableThatDoesNotFit) {
  StartUnit(NumberedRows(1));
  Start({TableFile("mine.sig", {"2|0|Bad|890|935|1|70000|0.2|0.2|1"})});
  UploadWith({Keep});
  EXPECT_TRUE(messages.back().Text.startsWith("row 1 (Bad): Stop Channel")) << messages.back().Text.toStdString();
  EXPECT_EQ(KeptFiles(), QStringList());
  EXPECT_EQ(CountOf("sends its table"), 0);
  ExpectNothingUploaded();
}

TEST_F(KeepingACopy, LeavesTheUploadTheTableOfItsBeginning) {
  StartUnit(NumberedRows(4), {"--baud", "9600"});
  Start({TableFile("mine.sig", NumberedRows(3, 100))});
  During([this] { return IsDownloading(); },
         [this] { QTest::keyClick(Frame().ActiveDocument()->findChild<Grid*>("GridList"), Qt::Key_Delete); });
  UploadWith({Keep, ReadBack});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(ActiveNames().size(), 2) << "it was edited meanwhile";
  EXPECT_EQ(LoadSigFile(unitFolder / "held.sig").Table.Count, 3);
  EXPECT_TRUE(Status().startsWith(CompletedText(3))) << Status().toStdString();
  app->Registry.DocumentStates[0].Changed = false;
  messages.clear();
}

TEST_F(KeepingACopy, NamesTheFileWhenTheMergeIsNotWanted) {
  StartUnit(NumberedRows(150));
  Start({TableFile("mine.sig", NumberedRows(51, 151))});
  UploadWith({Keep}, Choice::Append, {QMessageBox::Cancel});
  EXPECT_EQ(Status(), CanceledText + " " + KeptText());
  ExpectNothingUploaded();
}

// It is what the unit can be brought back with. One that may still wait for bytes is asked nothing more.
TEST_F(KeepingACopy, NamesTheFileWhenTheUploadIsNotConfirmed) {
  StartUnit(NumberedRows(1), {"--fault", "off-in-upload"});
  Start({TableFile("mine.sig", NumberedRows(3))});
  UploadWith({Keep, ReadBack});
  ExpectMessage(NotConfirmed + " It was not read back to compare it.\n\n" + KeptText());
  EXPECT_EQ(Status(), CompletedText(3) + " " + KeptText());
  EXPECT_EQ(CountOf("sends its table"), 1);
  EXPECT_EQ(LoadSigFile(KeptPath().toStdString()).Table.Count, 1);
}

// Reading back

TEST_F(ReadingBack, TellsThatTheTablesAreTheSame) {
  for (const Choice choice : {Choice::Overwrite, Choice::Append}) {
    StartUnit(NumberedRows(1));
    const QString mine = TableFile("mine.sig", WithSubbands);
    Start({mine});
    UploadWith({ReadBack}, choice);
    const int records = choice == Choice::Append ? 4 : 3;
    EXPECT_EQ(Status(), CompletedText(records) + ReadBackSame);
    ExpectMessage(CompletedText(records) + ReadBackSame, QMessageBox::Information);
    EXPECT_EQ(Frame().findChild<CompareWindow*>(), nullptr);
    EXPECT_EQ(CountOf("sends its table of " + std::to_string(records) + " records"), 1);
    EXPECT_TRUE(
        port->Sent.ends_with("\xFF\xFF"
                             "EO\xFF\xFF"));
    EXPECT_EQ(KeptFiles(), QStringList());
    ExpectAnotherProgramReachesTheUnit();
    TearDown();
    unit.reset();
    std::filesystem::remove(unitFolder / "held.sig");
  }
}

TEST_F(ReadingBack, DoesNotBlameTheUnitForWhatWasSaidBefore) {
  StartUnit();
  Start({TableFile("mine.sig", {"2|0|High|5000|935.00000001|1|124|0.2|0.2|1"})});
  UploadWith({ReadBack}, Choice::Overwrite, {QMessageBox::Ok, QMessageBox::Ok});
  EXPECT_EQ(Status(), CompletedText(1) + ReadBackSame);
}

TEST_F(ReadingBack, AndKeepingNamesBoth) {
  StartUnit(NumberedRows(1));
  Start({TableFile("mine.sig", NumberedRows(2))});
  UploadWith({Keep, ReadBack});
  EXPECT_EQ(Status(), CompletedText(2) + ReadBackSame + " " + KeptText());
}

// What is edited meanwhile belongs to the next upload.
TEST_F(ReadingBack, ComparesWithWhatWasSentNotWithTheDocument) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(10))});
  During([this] { return IsUploading(); }, [this] { Press("Add"); });
  UploadWith({ReadBack});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CompletedText(10) + ReadBackSame);
}

TEST_F(ReadingBack, ShowsWhatDiffersInTheComparison) {
  StartUnit();
  const QString mine = TableFile("mine.sig", NumberedRows(2, 100));
  Start({mine});
  port->NoiseAt = WireHeaderSize + WireRecordSize + 2;  // the first letter of the second name
  UploadWith({ReadBack});
  const QString differs = "The unit's table is not the one that was sent:\n\n";
  ExpectMessage(differs + "row 2 (S101): Name: S101 -> R101\n\nUpload the table again.");
  EXPECT_TRUE(Status().startsWith("The unit's table is not the one that was sent:")) << Status().toStdString();
  EXPECT_EQ(Captions(), QStringList({mine, "Untitled(Query) 2"}));
  EXPECT_EQ(ActiveNames(), QStringList({"S100", "S101"})) << "to be uploaded again";
  EXPECT_EQ(app->Registry.Document(2)->Table().Row(1).Name, "R101") << "as the unit has it";
  EXPECT_TRUE(app->Registry.DocumentStates[1].Changed);
  auto* window = Frame().findChild<CompareWindow*>();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->findChild<QLabel*>("lblCompare")->text(), "Untitled(Query) 2\nthe sent table");
  const auto& list = *window->findChild<QTableWidget*>("lstDifferences");
  ASSERT_EQ(list.rowCount(), 1);
  for (const auto& [column, text] : {std::pair{0, "R101"}, {1, "Renamed"}, {2, "R101"}, {3, "S101"}})
    EXPECT_EQ(list.item(0, column)->text(), text);
  EXPECT_EQ(list.horizontalHeaderItem(3)->text(), "the sent table");
}

TEST_F(ReadingBack, SaysWhatTheUnitDoesNotHave) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(2, 100))});
  port->NoiseAt = WireHeaderSize + WireRecordSize;  // the second record's state, which so ends the list
  port->NoiseBits = '\xFD';
  UploadWith({ReadBack});
  EXPECT_TRUE(messages.back().Text.contains("records: 2 -> 1")) << messages.back().Text.toStdString();
  auto* list = Frame().findChild<QTableWidget*>("lstDifferences");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->rowCount(), 1);
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0, 3)).center());
  EXPECT_EQ(Status(), "S101 is only in the sent table.");
}

// The table in a window has a sub-band's bandwidth from its standard.
TEST_F(ReadingBack, ListsWhatNoWindowShows) {
  StartUnit();
  Start({TableFile("mine.sig", WithSubbands)});
  port->NoiseAt = WireHeaderSize + 2 * WireRecordSize - 7;  // the last byte of the first sub-band's bandwidth
  UploadWith({ReadBack});
  EXPECT_TRUE(messages.back().Text.contains("row 2 (X): Bandwidth: 0.2 -> 0.200001"))
      << messages.back().Text.toStdString();
  EXPECT_EQ(Captions().back(), "Untitled(Query) 2");
  EXPECT_EQ(Frame().findChild<CompareWindow*>(), nullptr) << "it would say that they are alike";
}

TEST_F(ReadingBack, ListsTenDifferencesAndNoMore) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(14))});
  port->NoiseAt = WireHeaderSize + WireRecordSize + 2;  // behind the length of an identity
  port->NoiseEvery = WireRecordSize;
  UploadWith({ReadBack});
  EXPECT_EQ(messages.back().Text.count(" -> "), 10);
  EXPECT_TRUE(messages.back().Text.contains("\n...\n"));
}

// Behind the upload's echo: E, its sync byte, E, N, its sync byte and the port's last one came before.
TEST_F(ReadingBack, ThatFailsDoesNotBlameTheUpload) {
  const QString notRead = "The unit confirmed the upload, but its table could not be read back to compare it: ";
  for (const auto& [fault, reason] : {std::pair{"silent@7", "Error establishing communication with Handheld Product!"},
                                      {"truncate-reply", "not all of it came in time"}}) {
    SCOPED_TRACE(fault);
    StartUnit(NumberedRows(1), {"--fault", fault});
    const QString mine = TableFile("mine.sig", NumberedRows(2));
    Start({mine});
    UploadWith({ReadBack});
    ExpectMessage(notRead + reason);
    EXPECT_EQ(Status(), notRead + reason);
    EXPECT_EQ(Captions(), QStringList({mine}));
    ExpectPortFree();
    EXPECT_EQ(UnitsTable().Count, 2);
    unit.reset();
    std::filesystem::remove(unitFolder / "held.sig");
  }
}

// Behind the reading of the unit's table, which has four bytes more.
TEST_F(ReadingBack, ThatFailsNamesTheKeptFileInASentenceOfItsOwn) {
  const QString notRead = "The unit confirmed the upload, but its table could not be read back to compare it: ";
  for (const auto& [fault, reason] : {std::pair{"silent@11", "Error establishing communication with Handheld Product!"},
                                      {"truncate-reply@9", "not all of it came in time."}}) {
    SCOPED_TRACE(fault);
    StartUnit(NumberedRows(1), {"--fault", fault});
    Start({TableFile("mine.sig", NumberedRows(2))});
    UploadWith({Keep, ReadBack});
    EXPECT_EQ(Status(), notRead + reason + " " + KeptText());
    ExpectMessage(notRead + reason + "\n\n" + KeptText());
    TearDown();
    unit.reset();
    std::filesystem::remove(unitFolder / "held.sig");
    std::filesystem::remove(KeptPath().toStdString());
  }
}

TEST_F(ReadingBack, IsLeftOutWhenTheUploadIsAborted) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(20))});
  During([this] { return IsUploading(); }, [this] { PressAbort(); });
  UploadWith({ReadBack}, Choice::Overwrite, {QMessageBox::Yes, QMessageBox::Ok});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CanceledText + NotCompared);
  EXPECT_EQ(CountOf("sends its table"), 0);
  EXPECT_EQ(UnitsTable().Count, 20);
}

TEST_F(ReadingBack, AbortedSaysThatTheTableWasUploaded) {
  StartUnit({}, {"--baud", "9600"});
  const QString mine = TableFile("mine.sig", NumberedRows(20));
  Start({mine});
  During([this] { return IsDownloading(); }, [this] { PressAbort(); });
  UploadWith({ReadBack}, Choice::Overwrite, {QMessageBox::Yes, QMessageBox::Ok});
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CanceledText + NotCompared);
  EXPECT_EQ(Captions(), QStringList({mine}));
  ExpectPortFree();
  EXPECT_EQ(UnitsTable().Count, 20);
}
