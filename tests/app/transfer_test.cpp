// Downloads and uploads from the Tools menu, through a serial line to a simulated unit.
#include "app/file_io.h"
#include "tests/app/transfer_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

using Downloading = TransferTest;
using Uploading = TransferTest;
using Appending = TransferTest;
using MeanwhileInATransfer = TransferTest;

std::vector<std::string> Rows(std::initializer_list<std::string> names) {
  std::vector<std::string> rows;
  for (const std::string& name : names) rows.push_back("2|0|" + name + "|890|935|1|124|0.2|0.2|1");
  return rows;
}

const std::vector<std::string> WithSubbands = {"130|2|X|1850.2|1930.2|512|810|0.2|0.25|1",
                                               "0|0|X|1850.2|1930.2|512|600|0|0|0", "0|0|X|1870.2|1950.2|601|810|0|0|0",
                                               "1|0|Y|890|935|1|124|0.2|0.2|1"};

}  // namespace

TEST_F(Downloading, ShowsTheUnitsTableInAnUntitledDocument) {
  StartUnit(NumberedRows(12));
  Start();
  Download();
  EXPECT_EQ(Status(), "Process complete.  Transfered 12 signal standards (including sub-bands).");
  EXPECT_EQ(Captions(), QStringList({"Untitled(Query) 1"}));
  EXPECT_EQ(ActiveNames().size(), 12);
  EXPECT_EQ(ActiveNames().back(), "S12");
  const Grid* list = Frame().ActiveDocument()->findChild<Grid*>("GridList");
  EXPECT_EQ(list->rowCount(), 12);
  EXPECT_EQ(list->CellText(11, 1), "S12");
  EXPECT_FALSE(Progress()->isVisible());
  ExpectAnotherProgramReachesTheUnit();
}

TEST_F(Downloading, TakesANewDocumentWhenTheFirstIsInUse) {
  StartUnit(NumberedRows(2));
  const QString file = TableFile("mine.sig", Rows({"Mine"}));
  Start({file});
  Download();
  EXPECT_EQ(Captions(), QStringList({file, "Untitled(Query) 2"}));
  EXPECT_EQ(ActiveCaption(), "Untitled(Query) 2");
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Downloading, ListsTheWarningsOfTheTable) {
  StartUnit({"2|1|Far|890|935|124|1|0.2|0.2|1", "0|0|Far|890|935|1|124|0.2|0.2|1"});
  Start();
  Download();
  EXPECT_EQ(Get<QListWidget>("lstWarnings").item(0)->text(), "Warning:\tFar\tStop channel is less than start channel.");
  app->Registry.DocumentStates[0].Changed = false;
}

// It is in no file, so closing it would lose it.
TEST_F(Downloading, MarksTheDocumentAsChangedUnlessTheTableIsEmpty) {
  StartUnit(NumberedRows(1));
  Start();
  Download();
  EXPECT_TRUE(app->Registry.DocumentStates[0].Changed);
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuFileClose");
  EXPECT_EQ(messages.back().Text.section('\n', 0, 0), "The contents in [Untitled(Query) 1] has changed.");
  unit.reset();
  StartUnit();
  Download();
  EXPECT_EQ(Status(), CompletedText(0));
  EXPECT_FALSE(app->Registry.DocumentStates[1].Changed);
}

TEST_F(Downloading, GoesOverATableOf200Records) {
  StartUnit(NumberedRows(200));
  Start();
  Download();
  EXPECT_EQ(Status(), CompletedText(200));
  EXPECT_EQ(ActiveNames().size(), 200);
}

TEST_F(Downloading, StartsFromTheToolbarToo) {
  StartUnit(NumberedRows(3));
  Start();
  Press("Query");
  EXPECT_EQ(Status(), CompletedText(3));
}

TEST_F(Uploading, OverwritesTheUnitsTable) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", WithSubbands)});
  Upload(Choice::Overwrite);
  EXPECT_EQ(messages, std::deque<Message>{});
  EXPECT_EQ(Status(), CompletedText(4));
  EXPECT_FALSE(app->Registry.DocumentStates[0].Changed);
  ExpectAnotherProgramReachesTheUnit();
  EXPECT_EQ(UnitsTable(), Frame().ActiveDocument()->Table());
}

TEST_F(Uploading, StoresTheOpenEditFirst) {
  StartUnit();
  Start({TableFile("mine.sig", Rows({"Mine"}))});
  auto* details = Frame().ActiveDocument()->findChild<Grid*>("GridDetails");
  details->setFocus();
  details->setCurrentCell(0, 1);
  QTest::keyClick(details, 'N');
  QTest::keyClick(Frame().ActiveDocument()->findChild<QLineEdit*>("txtEntry"), 'o');
  Upload(Choice::Overwrite);
  EXPECT_EQ(UnitsNames(), QStringList({"No"}));
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(Uploading, SendsTheTagOfADownloadBack) {
  StartUnit(Rows({"A"}));
  Start({TableFile("mine.sig", Rows({"Mine"}))});
  EXPECT_EQ(app->Registry.Document(1)->UnitTableTag, 0);
  Upload(Choice::Overwrite);
  EXPECT_EQ(app->Registry.Document(1)->UnitTableTag, 100) << "the first upload of a table that came from a file";
  app->Registry.Document(1)->UnitTableTag = 7;
  Upload(Choice::Overwrite);
  Download();
  EXPECT_EQ(app->Registry.Document(2)->UnitTableTag, 7);
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Uploading, AFileThatIsLoadedHasNoTag) {
  StartUnit();
  Start();
  Download();
  EXPECT_EQ(ActiveCaption(), "Untitled(Query) 1");
  Frame().ActiveDocument()->UnitTableTag = 7;
  AnswerFileDialog(TableFile("mine.sig", Rows({"Mine"})));
  Choose("mnuFileOpen");
  EXPECT_EQ(app->Registry.Document(1)->UnitTableTag, 0);
}

TEST_F(Uploading, CancelledInTheOptionsStartsNothingAndOpensNoPort) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", Rows({"Mine"}))});
  AnswerOptions(Choice::Cancel);
  Choose("mnuToolsUpload");
  EXPECT_TRUE(app->Transfers.AbortRequested);
  EXPECT_EQ(Progress(), nullptr);
  EXPECT_EQ(Status(), "");
  ExpectPortFree();
  EXPECT_EQ(UnitsNames(), QStringList({"Old"}));
  // To find out whether a unit is there it is asked once, before the options come up.
  EXPECT_EQ(QString::fromStdString(unit->Output()).count("identifies itself"), 1);
}

TEST_F(Uploading, NeedsADocument) {
  StartUnit();
  Start();
  Choose("mnuFileClose");
  Press("Upload");
  ExpectPortFree();
  EXPECT_FALSE(QString::fromStdString(unit->Output()).contains("identifies itself"));
}

TEST_F(Uploading, OfAValueThatDoesNotFitNamesItAndSendsNothing) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", {"2|0|Good|890|935|1|124|0.2|0.2|1", "2|0|Bad|890|935|1|70000|0.2|0.2|1"})});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  const QString text = messages.back().Text;
  EXPECT_TRUE(text.startsWith("row 2 (Bad): Stop Channel")) << text.toStdString();
  EXPECT_EQ(messages.back().Icon, QMessageBox::Information);
  EXPECT_EQ(Status(), text);
  ExpectPortFree();
  EXPECT_EQ(UnitsNames(), QStringList({"Old"}));
  EXPECT_FALSE(QString::fromStdString(unit->Output()).contains("is to receive a table"));
}

TEST_F(Uploading, AsksBeforeAValueArrivesAsAnother) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", {"2|0|High|5000|935|1|124|0.2|0.2|1"})});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuToolsUpload");
  EXPECT_TRUE(messages.back().Text.contains("High")) << messages.back().Text.toStdString();
  EXPECT_EQ(Status(), CanceledText);
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::Ok);
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CompletedText(1));
  EXPECT_EQ(UnitsTable().Row(0).UplinkStartFreq, 0);
}

TEST_F(Uploading, SendsNothingForAnEnterAtTheQuestionAboutLosses) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", {"2|0|High|5000|935|1|124|0.2|0.2|1"})});
  AnswerOptions(Choice::Overwrite);
  AnswerMessageWithEnter();
  Choose("mnuToolsUpload");
  EXPECT_TRUE(messages.back().Text.endsWith("Upload the table all the same?")) << messages.back().Text.toStdString();
  EXPECT_FALSE(UnitGotATable());
}

TEST_F(Uploading, ListsTenValuesThatArriveAsOthersAndNoMore) {
  StartUnit();
  const std::vector<std::string> rows(12, "2|0|High|5000|935|1|124|0.2|0.2|1");
  Start({TableFile("mine.sig", rows)});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuToolsUpload");
  EXPECT_EQ(messages.back().Text.count("High"), 10);
  EXPECT_TRUE(messages.back().Text.contains("\n...\n"));
}

TEST_F(Uploading, OfAValueThatDoesNotFitAsksAboutNoOther) {
  StartUnit();
  Start({TableFile("mine.sig", {"2|0|High|5000|935|1|124|0.2|0.2|1", "2|0|Gr\xFCn|890|935|1|70000|0.2|0.2|1"})});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  EXPECT_TRUE(messages.back().Text.startsWith("row 2 (Gr\u00FCn): Stop Channel")) << messages.back().Text.toStdString();
}

// The message box takes the activation, not the focus's place.
TEST_F(Uploading, LeavesItsOutcomeInTheStatusBarWhereverTheFocusWas) {
  StartUnit();
  Start({TableFile("mine.sig", {"2|0|Bad|890|935|1|70000|0.2|0.2|1"})});
  auto* details = Frame().ActiveDocument()->findChild<Grid*>("GridDetails");
  details->setFocus();
  details->setCurrentCell(5, 1);
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), messages.back().Text);
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").toolTip(), Status()) << "the bar may have no room for all of it";
}

TEST_F(Appending, KeepsTheUnitsStandards) {
  StartUnit(Rows({"A", "B"}));
  const QString mine = TableFile("mine.sig", {"130|0|B|1710|1805|1|2|0.2|0.2|1", "130|0|C|1710|1805|1|2|0.2|0.2|1"});
  Start({mine});
  Upload(Choice::Append);
  EXPECT_EQ(Captions(), QStringList({mine, "Untitled(Query) 2"}));
  EXPECT_EQ(ActiveCaption(), "Untitled(Query) 2");
  EXPECT_EQ(ActiveNames(), QStringList({"A", "B", "C"}));
  EXPECT_EQ(NamesOf(app->Registry.Document(1)->Table()), QStringList({"B", "C"}));
  EXPECT_EQ(Status(), CompletedText(3));
  ExpectAnotherProgramReachesTheUnit();
  const SignalStandardTable held = UnitsTable();
  EXPECT_EQ(NamesOf(held), QStringList({"A", "B", "C"}));
  EXPECT_EQ(held.Row(1).State, "2") << "the unit's own";
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, ReplacesMatchingStandardsWhenAskedTo) {
  StartUnit(Rows({"A", "B"}));
  Start({TableFile("mine.sig", {"130|0|B|1710|1805|1|2|0.2|0.2|1", "130|0|C|1710|1805|1|2|0.2|0.2|1"})});
  Upload(Choice::AppendAndReplace);
  const SignalStandardTable held = UnitsTable();
  EXPECT_EQ(NamesOf(held), QStringList({"A", "B", "C"}));
  EXPECT_EQ(held.Row(1).State, "130") << "the document's";
  EXPECT_EQ(ActiveNames(), QStringList({"A", "B", "C"}));
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, IsTruncatedAt200Records) {
  StartUnit(NumberedRows(150));
  Start({TableFile("mine.sig", NumberedRows(60, 151))});
  AnswerOptions(Choice::Append);
  AnswerMessage(QMessageBox::Ok);
  AnswerMessage();
  Choose("mnuToolsUpload");
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages.front().Text, "10 records find no room in the unit. Upload the first 200 all the same?");
  EXPECT_EQ(messages.back(), (Message{"Table Merge",
                                      "There were too many records to merge tables.\n"
                                      "The Merged table has been truncated at 200 records.",
                                      QMessageBox::Information}));
  EXPECT_EQ(Status(), CompletedText(200));
  EXPECT_EQ(UnitsTable().Count, 200);
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, ThatWouldDropRowsSendsNothingUnlessTheUserSaysSo) {
  StartUnit(NumberedRows(150));
  Start({TableFile("mine.sig", NumberedRows(51, 151))});
  AnswerOptions(Choice::Append);
  AnswerMessage(QMessageBox::Cancel);
  Choose("mnuToolsUpload");
  ASSERT_EQ(messages.size(), 1u) << "nothing is said of a merge that was not wanted";
  EXPECT_EQ(messages.back().Text, "1 record finds no room in the unit. Upload the first 200 all the same?");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(ActiveNames().size(), 150) << "the unit's";
  EXPECT_FALSE(UnitGotATable());
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, SendsNothingForAnEnterAtTheQuestionAboutRows) {
  StartUnit(NumberedRows(150));
  Start({TableFile("mine.sig", NumberedRows(51, 151))});
  AnswerOptions(Choice::Append);
  AnswerMessageWithEnter();
  Choose("mnuToolsUpload");
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_FALSE(UnitGotATable());
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, AsksBeforeRowsWithoutANameAreLeftOut) {
  const std::string nameless = "2|0||890|935|1|124|0.2|0.2|1";
  for (const auto& [held, mine] : {std::pair{Rows({"A", ""}), Rows({"B"})}, {Rows({"A"}), Rows({"", "B"})}})
    for (const auto answer : {QMessageBox::Cancel, QMessageBox::Ok}) {
      std::filesystem::remove(unitFolder / "held.sig");
      StartUnit(held);
      Start({TableFile("mine.sig", mine)});
      AnswerOptions(Choice::Append);
      AnswerMessage(answer);
      Choose("mnuToolsUpload");
      EXPECT_EQ(messages.back().Text, "1 record has no name and is left out. Upload the others all the same?");
      EXPECT_EQ(UnitGotATable(), answer == QMessageBox::Ok);
      EXPECT_EQ(Status(), answer == QMessageBox::Ok ? CompletedText(2) : CanceledText);
      for (auto& state : app->Registry.DocumentStates) state.Changed = false;
      unit.reset();
    }
}

TEST_F(Appending, ThatFillsTheUnitExactlyLosesNothing) {
  StartUnit(NumberedRows(199));
  Start({TableFile("mine.sig", NumberedRows(1, 200))});
  AnswerOptions(Choice::Append);
  AnswerMessage();  // the merge's
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CompletedText(200));
  app->Registry.DocumentStates[1].Changed = false;
}

// What the status bar said last was that the unit's table had come.
TEST_F(Appending, ThatIsCanceledAtAnyQuestionIsSaidToBe) {
  const std::string fits = "2|0|B|890|935|1|124|0.2|0.2|1";
  const std::string nameless = "2|0||890|935|1|124|0.2|0.2|1";
  const std::string high = "2|0|High|5000|935|1|124|0.2|0.2|1";
  for (const std::vector<std::string>& mine : {std::vector{high}, {fits, nameless}, {high, nameless}}) {
    StartUnit(Rows({"Old"}));
    Start({TableFile("mine.sig", mine)});
    AnswerOptions(Choice::Append);
    if (mine.size() > 1 && mine.front() == high) AnswerMessage(QMessageBox::Ok);
    AnswerMessage(QMessageBox::Cancel);
    Choose("mnuToolsUpload");
    EXPECT_EQ(Status(), CanceledText) << messages.back().Text.toStdString();
    EXPECT_FALSE(UnitGotATable());
    for (auto& state : app->Registry.DocumentStates) state.Changed = false;
    unit.reset();
  }
}

// An untouched first document is used again for other downloads; here it is what is to be added.
TEST_F(Appending, FromAnUntouchedDocumentLeavesItAlone) {
  StartUnit(Rows({"A"}));
  Start();
  Upload(Choice::Append);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1", "Untitled(Query) 2"}));
  EXPECT_EQ(UnitsNames(), QStringList({"A"}));
  app->Registry.DocumentStates[1].Changed = false;
}

// It is in no file either.
TEST_F(Appending, MarksTheMergedTableAsChanged) {
  StartUnit();
  Start({TableFile("mine.sig", Rows({"A"}))});
  Upload(Choice::Append);
  EXPECT_EQ(ActiveCaption(), "Untitled(Query) 2");
  EXPECT_TRUE(app->Registry.DocumentStates[1].Changed);
  EXPECT_FALSE(app->Registry.DocumentStates[0].Changed);
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(Appending, MergesIntoTheDownloadAlthoughAnotherDocumentBecameActive) {
  StartUnit(NumberedRows(40), {"--baud", "19200"});
  const QString mine = TableFile("mine.sig", Rows({"C"}));
  const QString other = TableFile("other.sig", Rows({"D"}));
  Start({other, mine});
  During([this] { return IsDownloading(); }, [this] { Frame().ShowDocument(*app->Registry.Document(1)); });
  Upload(Choice::Append);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(NamesOf(app->Registry.Document(1)->Table()), QStringList({"D"}));
  EXPECT_EQ(UnitsTable().Count, 41);
  app->Registry.DocumentStates[2].Changed = false;
}

TEST_F(MeanwhileInATransfer, ASecondTransferDoesNothing) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(10))});
  During([this] { return IsUploading(); },
         [this] {
           Press("Query");
           Press("Upload");
         });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Captions().size(), 1);
  EXPECT_EQ(Status(), CompletedText(10));
  EXPECT_EQ(QString::fromStdString(unit->Output()).count("is to receive a table"), 1);
}

TEST_F(MeanwhileInATransfer, AnotherDocumentCanBeEdited) {
  StartUnit();
  const QString other = TableFile("other.sig", Rows({"Other"}));
  Start({other, TableFile("mine.sig", NumberedRows(10))});
  During([this] { return IsUploading(); },
         [this] {
           Frame().ShowDocument(*app->Registry.Document(1));
           Press("Add");
         });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(app->Registry.Document(1)->Table().Count, 2);
  EXPECT_EQ(UnitsTable().Count, 10);
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(MeanwhileInATransfer, AFileThatIsOpenedGetsAWindowOfItsOwn) {
  StartUnit(NumberedRows(60), {"--baud", "38400"});
  const QString mine = TableFile("mine.sig", Rows({"Mine"}));
  Start();
  During([this] { return IsDownloading(); },
         [this, mine] {
           OpenTableFile(Frame(), mine);
           EXPECT_EQ(Frame().cursor().shape(), Qt::WaitCursor) << "the transfer goes on";
         });
  Download();
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Frame().cursor().shape(), Qt::ArrowCursor);
  EXPECT_EQ(Captions(), QStringList({"Untitled(Query) 1", mine}));
  EXPECT_EQ(NamesOf(app->Registry.Document(2)->Table()), QStringList({"Mine"}));
  EXPECT_EQ(app->Registry.Document(1)->Table().Count, 60);
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(MeanwhileInATransfer, WarningsStayThoseOfTheDocumentThatBecameActive) {
  std::vector<std::string> rows = NumberedRows(60);
  rows.emplace_back("2|0|Far|9850|1805.2|512|885|0.2|0.2|1");
  StartUnit(rows, {"--baud", "38400"});
  Start({TableFile("mine.sig", {"2|0|Low|1|935.2|1|124|0.2|0.2|1"})});
  During([this] { return IsDownloading(); }, [this] { Frame().ShowDocument(*app->Registry.Document(1)); });
  Download();
  EXPECT_EQ(interruptions, 1);
  EXPECT_TRUE(app->Registry.Document(2)->WarningsText().contains("Far"));
  const QString shown = Get<WarningsPane>("lstWarnings").Text();
  EXPECT_TRUE(shown.contains("Low"));
  EXPECT_EQ(shown, app->Registry.Document(1)->WarningsText());
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(MeanwhileInATransfer, APortThatIsChosenIsForTheNextOne) {
  StartUnit(NumberedRows(40), {"--baud", "19200"});
  Start({TableFile("mine.sig", Rows({"C"}))});
  port->Numbers.clear();  // those that were looked for at the start
  During([this] { return IsDownloading(); }, [this] { Choose("menuOptionsCom2"); });
  Upload(Choice::Append);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(port->Numbers, std::vector<int>(port->Numbers.size(), 1));
  EXPECT_EQ(app->Link.CommPort, 2);
  EXPECT_EQ(UnitsTable().Count, 41);
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(MeanwhileInATransfer, TheTableThatArrivesReplacesWhatWasEnteredInItsWindow) {
  StartUnit(NumberedRows(60), {"--baud", "38400"});
  Start();
  During([this] { return IsDownloading(); }, [this] { Press("Add"); });
  Download();
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(app->Registry.Document(1)->Table().Count, 60);
  app->Registry.Document(1)->Undo();
  EXPECT_EQ(Status(), "Undone: download.");
  EXPECT_EQ(NamesOf(app->Registry.Document(1)->Table()), QStringList({"[New Standard]"}));
  app->Registry.Document(1)->Redo();
  EXPECT_EQ(app->Registry.Document(1)->Table().Count, 60);
  app->Registry.DocumentStates[0].Changed = false;
}

// The exchange is being ended: the status bar has its text, and the dialog is gone.
TEST_F(MeanwhileInATransfer, ClosingTheFrameAtTheEndOfAnAppendsDownloadStopsIt) {
  StartUnit(NumberedRows(2));
  Start({TableFile("mine.sig", Rows({"C"}))});
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [this, &watch] {
    if (Progress() == nullptr || Progress()->isVisible() || Status() != CompletedText(2)) return;
    watch.stop();
    EXPECT_TRUE(Frame().Transferring());
    Frame().close();
  });
  watch.start(0);
  Upload(Choice::Append);
  EXPECT_FALSE(watch.isActive());
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_FALSE(UnitGotATable());
  EXPECT_TRUE(Frame().isVisible());
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(MeanwhileInATransfer, AnEditOfItsDocumentIsForTheNextUpload) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(10))});
  During([this] { return IsUploading(); }, [this] { Press("Add"); });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CompletedText(10));
  EXPECT_EQ(UnitsTable().Count, 10);
  EXPECT_EQ(app->Registry.Document(1)->Table().Count, 11);
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(MeanwhileInATransfer, ClosingItsDocumentAsksForTheAbortAndIsRefused) {
  StartUnit();
  const QString mine = TableFile("mine.sig", NumberedRows(10));
  Start({mine});
  During([this] { return IsUploading(); },
         [this] {
           Choose("mnuFileClose");
           EXPECT_EQ(Label(), "Aborting...");
         });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Captions(), QStringList({mine}));
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(UnitsTable().Count, 10) << "an upload that has begun is finished";
  Choose("mnuFileClose");
  EXPECT_EQ(Captions(), QStringList()) << "now it closes";
}

TEST_F(MeanwhileInATransfer, ClosingTheSourceOfAnAppendStopsItBeforeTheUpload) {
  StartUnit(NumberedRows(40), {"--baud", "19200"});
  const QString mine = TableFile("mine.sig", Rows({"C"}));
  Start({mine});
  During([this] { return IsDownloading(); }, [this] { app->Registry.Document(1)->close(); });
  Upload(Choice::Append);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Captions(), QStringList({mine, "Untitled(Query) 2"}));
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_FALSE(UnitGotATable());
  ExpectAnotherProgramReachesTheUnit();
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(MeanwhileInATransfer, AnotherDocumentCanBeClosed) {
  StartUnit();
  const QString mine = TableFile("mine.sig", NumberedRows(10));
  Start({TableFile("other.sig", Rows({"Other"})), mine});
  During([this] { return IsUploading(); }, [this] { app->Registry.Document(1)->close(); });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Captions(), QStringList({mine}));
  EXPECT_EQ(UnitsTable().Count, 10);
}

TEST_F(MeanwhileInATransfer, ClosingTheFrameIsRefusedUntilItsEnd) {
  StartUnit();
  Start({TableFile("other.sig", Rows({"Other"})), TableFile("mine.sig", NumberedRows(10))});
  During([this] { return IsUploading(); },
         [this] {
           Frame().close();
           EXPECT_TRUE(Frame().isVisible());
           EXPECT_EQ(Captions().size(), 2) << "nor does any other document go";
           EXPECT_EQ(Label(), "Aborting...");
         });
  Upload(Choice::Overwrite);
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CanceledText);
  ExpectAnotherProgramReachesTheUnit();
  Exit();
}

// While the unit is waited for, before there is a progress dialog.
TEST_F(MeanwhileInATransfer, ClosingTheFrameWhileConnectingStopsTheCommand) {
  StartUnit({}, {"--fault", "slow"});
  patience = 10s;
  Start({TableFile("mine.sig", NumberedRows(10))});
  QTimer::singleShot(300, [this] {
    EXPECT_TRUE(Frame().Transferring());
    Frame().close();
    EXPECT_TRUE(Frame().isVisible());
  });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(Progress(), nullptr);
  ExpectPortFree();
  Exit();
}

// A dialog of another command holds the bytes back; the unit may take the rest for commands.
TEST_F(MeanwhileInATransfer, AnUploadThatIsHeldUpIsGivenUp) {
  StartUnit(Rows({"Old"}));
  Start({TableFile("mine.sig", NumberedRows(50))});
  bool heldUp = false;
  During([this] { return IsUploading(); }, [this] { Choose("mnuHelpAbout"); });
  AnswerOptions(Choice::Overwrite);
  Answer([this, &heldUp](QWidget& about) {
    EXPECT_EQ(about.objectName(), "frmAbout");
    const auto start = ran.Now();
    heldUp = QTest::qWaitFor([&] { return ran.Now() - start > 2500ms; }, 60000);
    QTest::keyClick(&about, Qt::Key_Escape);
  });
  AnswerMessage();
  Choose("mnuToolsUpload");
  EXPECT_TRUE(heldUp);
  EXPECT_EQ(messages.back().Text,
            "The upload was held up, so that the unit may have given it up: upload the table again");
  EXPECT_EQ(Status(), messages.back().Text);
  ExpectPortFree();
  EXPECT_EQ(UnitsNames(), QStringList({"Old"}));
}

TEST_F(MeanwhileInATransfer, OtherDialogsMayComeAndGo) {
  StartUnit(NumberedRows(60), {"--baud", "38400"});
  Start();
  During([this] { return IsDownloading(); }, [this] { Choose("mnuHelpAbout"); });
  Answer([](QWidget& about) { QTest::keyClick(&about, Qt::Key_Escape); });
  Download();
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(Status(), CompletedText(60));
  app->Registry.DocumentStates[0].Changed = false;
}
