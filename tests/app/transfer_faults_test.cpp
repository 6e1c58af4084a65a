// Units, cables and lines that fail under the editor: what the user is told, and what stays as it was.
#include <csignal>

#include "tests/app/transfer_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

constexpr char Tail[] = "\n\nThe requested operation has been aborted.";
const QString NotOpened = QString("Failed to open a connection with an Orvenda test unit.") + Tail;
const QString NoProperResponse =
    QString("Failed to get a proper response from the connected Orvenda test unit.") + Tail;
const QString NotCompatible = QString("Unit firmware version is not compatible with this application.") + Tail;
const QString NoAnswer = "Error establishing communication with Handheld Product!";
const QString NotWhole =
    "The table of the unit could not be read whole, so nothing was uploaded: check the cable and start again.";

const QString NotArrived =
    "The table of the unit did not arrive whole within 30 s, so none of it is shown: check that the cable sits and "
    "start again.";
const QString NotConfirmed =
    "The unit did not confirm the upload, so its table may be incomplete: check that the unit is switched on and that "
    "the cable sits, and upload the table again.";

class FaultyUnit : public TransferTest {
 protected:
  void StartFaulty(const std::vector<std::string>& options) {
    StartUnit(NumberedRows(4), options);
    Start({TableFile("mine.sig", NumberedRows(3, 100))});
  }
  void ExpectMessage(const QString& text, QMessageBox::Icon icon) {
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages.front().Text, text);
    EXPECT_EQ(messages.front().Icon, icon);
    messages.clear();
  }
  void ExpectNothingMoved() {
    EXPECT_EQ(NamesOf(app->Registry.Document(1)->Table()), QStringList({"S100", "S101", "S102"}));
    EXPECT_FALSE(UnitGotATable());
    EXPECT_EQ(Progress() != nullptr && Progress()->isVisible(), false);
    EXPECT_FALSE(Frame().Transferring());
    ExpectPortFree();
  }
};

using SilentWait = FaultyUnit;

}  // namespace

TEST_F(FaultyUnit, ThatCannotBeReachedStopsBothCommands) {
  StartFaulty({});
  unit.reset();
  for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
    AnswerMessage();
    Choose(command);
    ExpectMessage(NotOpened, QMessageBox::Critical);
    EXPECT_EQ(Captions().size(), 1) << command;
    EXPECT_FALSE(port->IsOpen());
  }
}

TEST_F(FaultyUnit, ThatIsSilentStopsBothCommands) {
  StartFaulty({"--fault", "silent"});
  for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
    AnswerMessage();
    Choose(command);
    ExpectMessage(NoProperResponse, QMessageBox::Critical);
    EXPECT_EQ(Captions().size(), 1) << command;
    ExpectNothingMoved();
  }
}

TEST_F(FaultyUnit, OfTheWrongModelOrFirmwareStopsBothCommands) {
  for (const std::vector<std::string>& identity :
       {std::vector<std::string>{"--model", "XY1234d"}, {"--model", "XY1234D", "--firmware", "2.99"}}) {
    StartFaulty(identity);
    for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
      AnswerMessage();
      Choose(command);
      ExpectMessage(NotCompatible, QMessageBox::Critical);
      ExpectNothingMoved();
    }
    unit.reset();
  }
}

TEST_F(FaultyUnit, ThatFallsSilentAfterTheFirstIdentification) {
  for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
    StartFaulty({"--fault", "silent-after-identify"});
    if (command == std::string_view("mnuToolsUpload")) AnswerOptions(Choice::Overwrite);
    AnswerMessage();
    Choose(command);
    ExpectMessage(NoAnswer, QMessageBox::Information);
    EXPECT_EQ(Status(), NoAnswer);
    ExpectNothingMoved();
    unit.reset();
  }
}

TEST_F(FaultyUnit, ProcQueryIsFalseOnlyWhenTheUnitDidNotAnswer) {
  StartFaulty({});
  TransferCommand command(Frame(), app->Link, app->Transfers, app->Shared);
  DocumentWindow& document = *app->Registry.Document(1);
  for (const bool download : {false, true}) EXPECT_TRUE(command.Proc_Query(document, download));
  unit.reset();
  StartUnit({}, {"--fault", "silent"});
  for (const bool download : {false, true}) {
    AnswerMessage();
    EXPECT_FALSE(command.Proc_Query(document, download));
    EXPECT_EQ(messages.back().Text, NoAnswer);
  }
  document.State().Changed = false;
}

// The unit was not even asked.
TEST_F(FaultyUnit, ProcQueryIsTrueForATableThatDoesNotFit) {
  StartUnit();
  Start({TableFile("mine.sig", {"2|0|Bad|890|935|1|70000|0.2|0.2|1"})});
  AnswerMessage();
  EXPECT_TRUE(TransferCommand(Frame(), app->Link, app->Transfers, app->Shared).Proc_Query(*app->Registry.Document(1)));
  EXPECT_TRUE(messages.back().Text.startsWith("row 1 (Bad): Stop Channel")) << messages.back().Text.toStdString();
  EXPECT_EQ(unit->Output().find("identifies itself"), std::string::npos);
}

TEST_F(FaultyUnit, ThatFallsSilentStopsAnAppendBeforeItsDownload) {
  StartFaulty({"--fault", "silent-after-identify"});
  AnswerOptions(Choice::Append);
  AnswerMessage();
  Choose("mnuToolsUpload");
  ExpectMessage(NoProperResponse, QMessageBox::Critical);
  EXPECT_EQ(Captions().size(), 1) << "no document is made for a download that does not begin";
  ExpectNothingMoved();
}

// The status bar reports completion with the record count, a message that nothing came.
TEST_F(FaultyUnit, ThatSpoilsItsReplyLeavesAnEmptyDocument) {
  for (const char* fault : {"truncate-reply", "wrong-count", "garbage"}) {
    SCOPED_TRACE(fault);
    StartFaulty({"--fault", fault});
    AnswerMessage();
    Download();
    ExpectMessage(NotArrived, QMessageBox::Warning);
    EXPECT_EQ(Status(), CompletedText(0));
    EXPECT_EQ(ActiveCaption(), "Untitled(Query) 2");
    EXPECT_EQ(ActiveNames(), QStringList());
    EXPECT_FALSE(app->Registry.DocumentStates[1].Changed);
    ExpectNothingMoved();
    unit.reset();
  }
}

TEST_F(FaultyUnit, ThatLosesBytesLeavesAnEmptyDocument) {
  StartFaulty({"--fault", "drop-every-nth-byte", "--nth", "50"});
  AnswerMessage();
  Download();
  ExpectMessage(NotArrived, QMessageBox::Warning);
  EXPECT_EQ(Status(), CompletedText(0));
  EXPECT_EQ(ActiveNames(), QStringList());
  ExpectNothingMoved();
}

// Nothing on the line tells a lost byte; the unit waits for the rest and then forgets what it got.
TEST_F(FaultyUnit, ThatLosesBytesOfAnUploadKeepsItsTable) {
  StartFaulty({"--fault", "drop-every-nth-byte", "--nth", "50"});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  ExpectMessage(NotConfirmed, QMessageBox::Warning);
  EXPECT_EQ(Status(), CompletedText(3));
  ExpectNothingMoved();
}

// What is added to a part of the table would cost the unit the rest.
TEST_F(FaultyUnit, ThatSpoilsItsReplyStopsAnAppend) {
  for (const char* fault : {"truncate-reply", "wrong-count", "garbage"}) {
    SCOPED_TRACE(fault);
    StartFaulty({"--fault", fault});
    AnswerOptions(Choice::Append);
    AnswerMessage();
    Choose("mnuToolsUpload");
    ExpectMessage(NotWhole, QMessageBox::Warning);
    EXPECT_EQ(Status(), CompletedText(0));
    ExpectNothingMoved();
    unit.reset();
  }
}

// The upload itself is never answered: only the sync byte behind it says that the unit is still there.
TEST_F(FaultyUnit, ThatAnswersTheSyncByteWithNoiseHasItsTable) {
  StartFaulty({"--fault", "garbage"});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  ExpectMessage(NotConfirmed, QMessageBox::Warning);
  EXPECT_EQ(Status(), CompletedText(3));
  ExpectPortFree();
  EXPECT_EQ(UnitsNames(), QStringList({"S100", "S101", "S102"}));
}

TEST_F(FaultyUnit, ThatIsSlowGetsAndGivesItsTable) {
  patience = 10s;
  StartFaulty({"--fault", "slow"});
  Download();
  EXPECT_EQ(Status(), CompletedText(4));
  app->Registry.DocumentStates[1].Changed = false;
  Frame().ShowDocument(*app->Registry.Document(1));
  Upload(Choice::Overwrite);
  EXPECT_EQ(Status(), CompletedText(3));
  ExpectPortFree();
  EXPECT_EQ(UnitsNames(), QStringList({"S100", "S101", "S102"}));
}

TEST_F(FaultyUnit, ThatIsUnpluggedInTheMiddleIsTold) {
  struct Case {
    const char* Command;
    std::optional<Choice> Options;
    int Documents;
  };
  for (const Case& unplugged : {Case{"mnuToolsQuery", {}, 2},
                                {"mnuToolsUpload", Choice::Overwrite, 1},
                                {"mnuToolsUpload", Choice::Append, 2}}) {
    SCOPED_TRACE(unplugged.Command);
    // On a busy machine the unit may be so late that a small table is on the line before the cable is pulled.
    StartUnit(NumberedRows(4), {"--fault", "hang-up"});
    Start({TableFile("mine.sig", NumberedRows(40, 100))});
    if (unplugged.Options) AnswerOptions(*unplugged.Options);
    const bool append = unplugged.Options == Choice::Append;
    AnswerMessage();
    if (append) AnswerMessage();
    Choose(unplugged.Command);
    ASSERT_EQ(messages.size(), append ? 2u : 1u);
    EXPECT_TRUE(messages[0].Text.contains("stopped working")) << messages[0].Text.toStdString();
    EXPECT_EQ(messages[0].Icon, QMessageBox::Information);
    EXPECT_EQ(Status(), messages[0].Text);
    EXPECT_EQ(messages.back().Text, append ? NotWhole : messages[0].Text);
    messages.clear();
    EXPECT_EQ(Captions().size(), unplugged.Documents);
    EXPECT_EQ(unit->WaitForEnd(), 0);
    EXPECT_FALSE(port->IsOpen());
    EXPECT_FALSE(UnitGotATable());
    // A sound unit on the same port is reached at once.
    unit.reset();
    StartUnit(NumberedRows(1));
    Download();
    EXPECT_EQ(Status(), CompletedText(1));
    for (auto& state : app->Registry.DocumentStates) state.Changed = false;
    unit.reset();
  }
}

TEST_F(FaultyUnit, ThatIsSwitchedOffWithinAnUploadIsNamedAsNotConfirming) {
  StartFaulty({"--fault", "off-in-upload"});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CompletedText(3));
  ExpectMessage(NotConfirmed, QMessageBox::Warning);
  ExpectNothingMoved();
}

TEST_F(FaultyUnit, WithMoreThan200RecordsIsNamedAsSuch) {
  StartFaulty({"--fault", "too-many"});
  AnswerMessage();
  Download();
  EXPECT_EQ(Status(),
            "The unit announces more than 200 records, which no table can hold: its first 200 are not its whole table");
  ExpectMessage(Status(), QMessageBox::Information);
  EXPECT_EQ(ActiveNames().size(), 200);
  app->Registry.DocumentStates[1].Changed = false;
  ExpectNothingMoved();
}

// The first 200 of more records must not take the place of all of them.
TEST_F(FaultyUnit, WithMoreThan200RecordsIsAppendedNothing) {
  StartFaulty({"--fault", "too-many"});
  AnswerOptions(Choice::Append);
  AnswerMessage();
  AnswerMessage();
  Choose("mnuToolsUpload");
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages.front().Text,
            "The unit announces more than 200 records, which no table can hold: its first 200 are not its whole table");
  EXPECT_EQ(messages.back().Text, NotWhole);
  messages.clear();
  app->Registry.DocumentStates[1].Changed = false;
  ExpectNothingMoved();
}

TEST_F(FaultyUnit, WhoseLineSendsBackWhatIsSentIsNamed) {
  StartFaulty({"--fault", "echo", "--baud", "9600"});
  for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
    AnswerMessage();
    Choose(command);
    ExpectMessage(NoProperResponse, QMessageBox::Critical);
    EXPECT_TRUE(Status().startsWith("COM 1: the line sends back what is sent to it: ")) << Status().toStdString();
    ExpectNothingMoved();
  }
}

// The console's program is gone before its echo has come, which then comes among the answers to the editor.
TEST_F(FaultyUnit, ThatStillOwesAKilledProgramAnEchoGivesItsTable) {
  patience = 10s;
  StartFaulty({"--baud", "9600", "--fault", "late-echo"});
  Chanplan().Run({"identify", unit->Link()}, {.Meanwhile = [this](pid_t program) {
                   EXPECT_TRUE(unit->WaitForOutput("echoes the sync byte"));
                   kill(program, SIGKILL);
                 }});
  Download();
  EXPECT_EQ(Status(), CompletedText(4));
  EXPECT_EQ(ActiveNames(), QStringList({"S1", "S2", "S3", "S4"}));
  app->Registry.DocumentStates[1].Changed = false;
}

// While the identity is awaited, and while the echo of a sync byte is: no time-out is waited for.
TEST_F(FaultyUnit, ThatHangsUpWhileAnAnswerIsAwaitedIsNamed) {
  struct Case {
    const char* Fault;
    const char* Command;
    QString Message;  // empty: there is nothing to tell
  };
  for (const Case& hangUp : {Case{"silent", "mnuToolsQuery", NoProperResponse},
                             {"silent", "mnuToolsUpload", NoProperResponse},
                             {"silent@3", "mnuToolsQuery", NoAnswer},
                             {"silent@5", "mnuToolsQuery", ""},
                             {"silent@5", "mnuToolsUpload", NotConfirmed}}) {
    SCOPED_TRACE(std::string(hangUp.Fault) + " " + hangUp.Command);
    patience = 1h;
    StartFaulty({"--fault", hangUp.Fault});
    if (hangUp.Message == NotConfirmed) AnswerOptions(Choice::Overwrite);
    if (!hangUp.Message.isEmpty()) AnswerMessage();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      if (unit->Output().find("keeps silent") == std::string::npos) return;
      watch.stop();
      unit->Stop();
    });
    watch.start(5);
    const auto start = ran.Now();
    Choose(hangUp.Command);
    EXPECT_LT(ran.Now() - start, 8s);
    std::deque<QString> texts;
    for (const Message& message : messages) texts.push_back(message.Text);
    EXPECT_EQ(texts, hangUp.Message.isEmpty() ? std::deque<QString>() : std::deque<QString>{hangUp.Message});
    messages.clear();
    EXPECT_FALSE(port->IsOpen());
    EXPECT_FALSE(Frame().Transferring());
    for (auto& state : app->Registry.DocumentStates) state.Changed = false;
    unit.reset();
    std::filesystem::remove(unitFolder / "held.sig");
  }
}

// At the speed of a real line, with a tag that makes a table behind a stale echo look empty.
TEST_F(FaultyUnit, ThatEchoesLateGetsAndGivesItsTable) {
  patience = 10s;
  StartFaulty({"--baud", "9600", "--fault", "late-echo", "--tag", "256"});
  Download();
  EXPECT_EQ(Status(), CompletedText(4));
  EXPECT_EQ(ActiveNames(), QStringList({"S1", "S2", "S3", "S4"}));
  app->Registry.DocumentStates[1].Changed = false;
  Frame().ShowDocument(*app->Registry.Document(1));
  Upload(Choice::Append);
  EXPECT_EQ(Status(), CompletedText(7));
  app->Registry.DocumentStates[2].Changed = false;
  EXPECT_EQ(UnitsTable().Count, 7);
}

// Waiting

TEST_F(SilentWait, SaysWhatItLooksForAndHowToEndIt) {
  StartFaulty({"--fault", "silent"});
  Frame().ShowStatus("of before");
  QString shown;
  QTimer::singleShot(200, [&] { shown = Status(); });
  AnswerMessage();
  Choose("mnuToolsQuery");
  EXPECT_EQ(shown, "Looking for a unit on COM 1 ... (Esc cancels)");
  EXPECT_EQ(
      Status(),
      "COM 1: no unit answered within 10 s: check that it is switched on and that the cable sits; after an upload "
      "that was broken off, switch it off and on");
  messages.clear();
}

TEST_F(SilentWait, LeavesNoFormerOutcomeBehindIt) {
  StartFaulty({});
  Frame().ShowStatus("of before");
  AnswerOptions(Choice::Cancel);
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), "");
}

TEST_F(SilentWait, ForAPortThatDoesNotOpenSaysWhy) {
  StartFaulty({});
  unit.reset();
  AnswerMessage();
  Choose("mnuToolsQuery");
  EXPECT_EQ(Status(), "COM 1: there is no port " + QString::fromStdString(unitFolder / "link") +
                          ": check the cable and the name");
  messages.clear();
}

TEST_F(SilentWait, OfAnIncompleteAnswerSaysHowMuchCame) {
  StartFaulty({"--fault", "drop-every-nth-byte", "--nth", "14"});
  AnswerMessage();
  Choose("mnuToolsQuery");
  EXPECT_EQ(Status(), "COM 1: incomplete answer, 12 of 13 bytes: check that the cable sits");
  messages.clear();
}

TEST_F(SilentWait, EndsAtOnceWithEscape) {
  patience = 1h;  // of the clock: nothing but the key ends it
  StartFaulty({"--fault", "silent"});
  for (const char* command : {"mnuToolsQuery", "mnuToolsUpload"}) {
    QTimer::singleShot(100, [&] { QTest::keyClick(&Frame(), Qt::Key_Escape); });
    const auto start = ran.Now();
    Choose(command);
    EXPECT_LT(ran.Now() - start, 8s) << "instead of ten seconds and a half";
    EXPECT_EQ(Status(), CanceledText);
    EXPECT_EQ(Captions().size(), 1);
    ExpectNothingMoved();
  }
}

TEST_F(SilentWait, EndsAtOnceWithAConfirmedAbort) {
  patience = 1h;
  StartFaulty({"--fault", "silent@3"});  // behind the identification and its sync byte
  std::chrono::nanoseconds start{};
  During([this] { return IsConnecting(); },
         [this, &start] {
           start = ran.Now();
           Progress()->Abort();
         });
  Choose("mnuToolsQuery");
  EXPECT_EQ(interruptions, 1);
  EXPECT_LT(ran.Now() - start, 8s);
  EXPECT_EQ(Status(), CanceledText);
  ExpectNothingMoved();
}

TEST_F(SilentWait, ForTheRestOfATableEndsWithAConfirmedAbort) {
  patience = 1h;
  StartFaulty({"--fault", "truncate-reply"});
  During([this] { return IsDownloading(); }, [this] { Progress()->Abort(); });
  const auto start = ran.Now();
  Choose("mnuToolsQuery");
  EXPECT_EQ(interruptions, 1);
  EXPECT_LT(ran.Now() - start, 20s) << "instead of thirty seconds";
  EXPECT_EQ(Status(), CanceledText);
  ExpectNothingMoved();
}

TEST_F(SilentWait, BehindAnUploadSaysThatItIsBeingCanceled) {
  patience = 1h;
  StartFaulty({"--fault", "silent@5"});  // behind E, its sync byte, E and I
  QStringList shown;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (shown.contains(Status())) return;
    shown += Status();
    if (Status().startsWith("Waiting for the unit ... ")) QTest::keyClick(&Frame(), Qt::Key_Escape);
  });
  watch.start(5);
  AnswerOptions(Choice::Overwrite);
  AnswerMessage();
  Choose("mnuToolsUpload");
  EXPECT_TRUE(shown.contains("Canceling ... " + CompletedText(3))) << shown.join('\n').toStdString();
  ExpectMessage(NotConfirmed, QMessageBox::Warning);
  EXPECT_EQ(Status(), CompletedText(3));
  EXPECT_EQ(UnitsNames().size(), 3);
}

TEST_F(SilentWait, ForTheLastEchoComesWhenTheTableIsOnTheScreen) {
  patience = 1h;
  StartFaulty({"--fault", "silent@5"});  // behind E, its sync byte, E and O
  bool shown = false;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (Status() != CompletedText(4)) return;
    watch.stop();
    const Grid* list = Frame().ActiveDocument()->findChild<Grid*>("GridList");
    shown = Frame().Transferring() && list->rowCount() == 4 && list->CellText(3, 1) == "S4";
  });
  watch.start(5);
  QTimer hint;
  QObject::connect(&hint, &QTimer::timeout, [&] {
    if (Status() != "Waiting for the unit ... (Esc cancels) " + CompletedText(4)) return;
    hint.stop();
    QTest::keyClick(&Frame(), Qt::Key_Escape);
  });
  hint.start(5);
  const auto start = ran.Now();
  Choose("mnuToolsQuery");
  EXPECT_TRUE(shown);
  EXPECT_LT(ran.Now() - start, 8s) << "instead of ten seconds and a half";
  EXPECT_EQ(Status(), CompletedText(4)) << "it had come";
  app->Registry.DocumentStates[1].Changed = false;
  ExpectPortFree();
}
