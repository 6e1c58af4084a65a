// Units, cables and lines that fail under the editor: what the user is told, and what stays as it was.
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

// The status bar reports completion with the record count, which says that nothing came.
TEST_F(FaultyUnit, ThatSpoilsItsReplyLeavesAnEmptyDocument) {
  for (const char* fault : {"truncate-reply", "wrong-count", "garbage"}) {
    SCOPED_TRACE(fault);
    StartFaulty({"--fault", fault});
    Download();
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
  Download();
  EXPECT_EQ(Status(), CompletedText(0));
  EXPECT_EQ(ActiveNames(), QStringList());
  ExpectNothingMoved();
}

// Nothing on the line tells a lost byte; the unit waits for the rest and then forgets what it got.
TEST_F(FaultyUnit, ThatLosesBytesOfAnUploadKeepsItsTable) {
  StartFaulty({"--fault", "drop-every-nth-byte", "--nth", "50"});
  Upload(Choice::Overwrite);
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

// The sync byte's answer is not looked at: the upload itself is never answered.
TEST_F(FaultyUnit, ThatAnswersTheSyncByteWithNoiseHasItsTable) {
  StartFaulty({"--fault", "garbage"});
  Upload(Choice::Overwrite);
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
  QTest::qWait(3000);  // the answer to the sync byte comes late, too
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
    StartFaulty({"--fault", "hang-up"});
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
