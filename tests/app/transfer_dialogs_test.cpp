// The progress dialog with its question, and the upload options.
#include <QScreen>
#include <QWindow>

#include "app/frm_upload_optns.h"
#include "tests/app/transfer_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

constexpr auto StaysOnTop = Qt::WindowStaysOnTopHint;

class ProgressDialog : public TransferTest {
 protected:
  // Without a transfer.
  frmInProgress& Shown() {
    if (!dialog) dialog = std::make_unique<frmInProgress>(&Frame(), abortRequested);
    dialog->SetCaption("Uploading Signal Standards...");
    dialog->Set_on_top(true);
    dialog->ShowOverFrame();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog.get(), LongestWait));
    return *dialog;
  }
  ~ProgressDialog() override { dialog.reset(); }
  QProgressBar& Bar() { return *dialog->findChild<QProgressBar*>("ProgressBar1"); }

  bool abortRequested = false;
  std::unique_ptr<frmInProgress> dialog;
};

class OptionsDialog : public TransferTest {
 protected:
  template <typename Control>
  static Control& In(QWidget& dialog, const char* name) {
    return *dialog.findChild<Control*>(name);
  }
};

}  // namespace

TEST_F(ProgressDialog, BarTakesTheNearerBoundOfAValueOutsideOfItsRange) {
  Start();
  Shown();
  EXPECT_EQ(Bar().minimum(), 0);
  EXPECT_EQ(Bar().maximum(), 100);
  dialog->set_prog_bar_range(10, 50);
  for (const auto& [value, shown] : {std::pair{7, 10}, {30, 30}, {51, 50}, {-1, 10}}) {
    dialog->set_prog_bar_value(value);
    EXPECT_EQ(Bar().value(), shown);
  }
}

TEST_F(ProgressDialog, ShowsPercent) {
  Start();
  Shown();
  dialog->set_prog_bar_range(0, 9604);
  dialog->set_prog_bar_value(2401);
  EXPECT_TRUE(Bar().isTextVisible());
  EXPECT_EQ(Bar().text(), "25%");
}

TEST_F(ProgressDialog, IsInFrontOfTheFrameAndOnTheScreen) {
  Start();
  EXPECT_EQ(Shown().frameGeometry().center(), Frame().frameGeometry().center());
  EXPECT_FALSE(dialog->isModal());
  const QRect screen = Frame().screen()->availableGeometry();
  for (const QPoint corner : {screen.topLeft() - QPoint(300, 300), screen.bottomRight() - QPoint(20, 20)}) {
    Frame().move(corner);
    EXPECT_EQ(Shown().frameGeometry() & screen, Shown().frameGeometry());
  }
}

TEST_F(ProgressDialog, LeavesItsPlaceOnTopToTheQuestion) {
  Start();
  Shown();
  EXPECT_TRUE(dialog->windowHandle()->flags().testFlag(StaysOnTop));
  const QRect place = dialog->geometry();
  Answer([this](QWidget& window) {
    EXPECT_FALSE(dialog->windowHandle()->flags().testFlag(StaysOnTop));
    auto& box = dynamic_cast<QMessageBox&>(window);
    EXPECT_EQ(box.windowTitle(), "Uploading Signal Standards...");
    EXPECT_EQ(box.text(), "Interrupting the current process?");
    EXPECT_EQ(box.icon(), QMessageBox::Question);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
    QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton);
  });
  QTest::mouseClick(dialog->findChild<QPushButton*>("CmdAbort"), Qt::LeftButton);
  ASSERT_TRUE(QTest::qWaitFor([this] { return dialog->windowHandle()->flags().testFlag(StaysOnTop); }, LongestWait));
  EXPECT_EQ(dialog->geometry(), place);
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_FALSE(abortRequested);
}

TEST_F(ProgressDialog, StaysWhateverTheUserClosesItWith) {
  Start();
  Shown();
  dialog->set_Label("Uploading Signal Standards...");
  for (const auto& close : std::initializer_list<std::function<void()>>{
           [this] { dialog->close(); }, [this] { QTest::keyClick(dialog.get(), Qt::Key_Escape); }}) {
    abortRequested = false;
    AnswerMessage(QMessageBox::Yes);
    close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return abortRequested; }, LongestWait));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QLabel*>("LblPrompt")->text(), "Aborting...");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(ProgressDialog, IsNotAbortedByEnter) {
  Start();
  Shown().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get(), LongestWait));
  ASSERT_EQ(QApplication::focusWidget(), dialog->findChild<QPushButton*>("CmdAbort"));
  Key(Qt::Key_Return);
  EXPECT_EQ(dialog->findChild<QMessageBox*>(), nullptr);
  Key(Qt::Key_Space);
  ASSERT_NE(dialog->findChild<QMessageBox*>(), nullptr);
  dialog->Finish();
}

TEST_F(ProgressDialog, AsksOnlyOnce) {
  Start();
  Shown();
  dialog->close();
  dialog->close();
  EXPECT_EQ(dialog->findChildren<QMessageBox*>().size(), 1);
  dialog->Finish();
  EXPECT_EQ(dialog->findChildren<QMessageBox*>().size(), 0) << "it goes with the transfer";
}

TEST_F(ProgressDialog, NoLeavesTheTransferAndTheLabelAsTheyWere) {
  StartUnit(NumberedRows(60), {"--baud", "19200"});
  Start();
  AnswerMessage(QMessageBox::No);
  During([this] { return IsDownloading(); }, [this] { PressAbort(); });
  Download();
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(messages.back(),
            (Message{"Downloading Signal Standards...", "Interrupting the current process?", QMessageBox::Question}));
  EXPECT_EQ(Label(), "Downloading Signal Standards...");
  EXPECT_EQ(Status(), CompletedText(60));
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(ProgressDialog, YesInARunningDownloadLetsItFinish) {
  StartUnit(NumberedRows(60), {"--baud", "19200"});
  Start();
  AnswerMessage(QMessageBox::Yes);
  During([this] { return IsDownloading(); }, [this] { PressAbort(); });
  Download();
  EXPECT_EQ(Label(), "Aborting...");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(ActiveNames().size(), 60);
  ExpectPortFree();
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(ProgressDialog, YesInARunningUploadLetsItFinish) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(20))});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::Yes);
  During([this] { return IsUploading(); }, [this] { PressAbort(); });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_EQ(UnitsTable().Count, 20);
}

TEST_F(ProgressDialog, NoInARunningUploadChangesNothing) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(20))});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::No);
  During([this] { return IsUploading(); }, [this] { PressAbort(); });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CompletedText(20));
  EXPECT_EQ(UnitsTable().Count, 20);
}

TEST_F(ProgressDialog, AnswersWhileConnectingDecideWhetherAnythingIsMoved) {
  patience = 10s;
  for (const auto& [answer, status, records] :
       {std::tuple{QMessageBox::Yes, CanceledText, 0}, {QMessageBox::No, CompletedText(2), 2}}) {
    StartUnit(NumberedRows(2), {"--fault", "slow"});
    Start();
    AnswerMessage(answer);
    During([this] { return IsConnecting(); }, [this] { PressAbort(); });
    Download();
    EXPECT_EQ(Status(), status);
    EXPECT_EQ(ActiveCaption(), "Untitled(Query) 1");
    EXPECT_EQ(ActiveNames().size(), records);
    ExpectPortFree();
    app->Registry.DocumentStates[0].Changed = false;
    unit.reset();
  }
}

TEST_F(ProgressDialog, YesBeforeAnUploadSendsNothing) {
  StartUnit(NumberedRows(2), {"--fault", "slow"});
  patience = 10s;
  Start({TableFile("mine.sig", NumberedRows(20))});
  AnswerOptions(Choice::Overwrite);
  AnswerMessage(QMessageBox::Yes);
  During([this] { return IsConnecting(); }, [this] { PressAbort(); });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_FALSE(UnitGotATable());
  EXPECT_EQ(app->Registry.Document(1)->UnitTableTag, 0) << "no unit has this table";
  ExpectPortFree();
}

TEST_F(ProgressDialog, YesInTheDownloadOfAnAppendKeepsTheUnitsTable) {
  StartUnit(NumberedRows(60), {"--baud", "19200"});
  Start({TableFile("mine.sig", NumberedRows(5, 100))});
  AnswerOptions(Choice::Append);
  AnswerMessage(QMessageBox::Yes);
  During([this] { return IsDownloading(); }, [this] { PressAbort(); });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CanceledText);
  EXPECT_FALSE(UnitGotATable());
  EXPECT_EQ(ActiveNames().size(), 60) << "nothing was merged";
  app->Registry.DocumentStates[1].Changed = false;
}

TEST_F(ProgressDialog, TransferThatEndsTakesTheQuestionAway) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(5))});
  AnswerOptions(Choice::Overwrite);
  QPointer<QMessageBox> question;
  During([this] { return IsUploading(); },
         [this, &question] {
           AnswerNothing();
           PressAbort();
           question = Question();
           EXPECT_TRUE(question->isVisible());
         });
  Choose("mnuToolsUpload");
  EXPECT_EQ(interruptions, 1);
  EXPECT_EQ(question, nullptr);
  EXPECT_EQ(Status(), CompletedText(5));
}

TEST_F(OptionsDialog, AsksWhatToDoWithTheUnitsTable) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([](QWidget& dialog) {
    EXPECT_EQ(In<QLabel>(dialog, "lblPrompt").text(),
              "What do you want to do with the existing Signal Standard Table?");
    EXPECT_EQ(In<QCheckBox>(dialog, "chkReplace").text(), "Replace matching signal standards");
    EXPECT_TRUE(In<QRadioButton>(dialog, "optnAppend").isChecked()) << "the choice that loses nothing";
    EXPECT_FALSE(In<QCheckBox>(dialog, "chkReplace").isChecked());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  Choose("mnuToolsUpload");
  EXPECT_TRUE(app->Transfers.AbortRequested);
}

TEST_F(OptionsDialog, OverwritingGreysOutTheReplacementWhichIsStoredAllTheSame) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([this](QWidget& dialog) {
    auto& replaceMatching = In<QCheckBox>(dialog, "chkReplace");
    QTest::mouseClick(&replaceMatching, Qt::LeftButton, {}, QPoint(8, replaceMatching.height() / 2));
    EXPECT_TRUE(replaceMatching.isChecked());
    Key(Qt::Key_Tab, Qt::ShiftModifier);
    Key(Qt::Key_Down);
    EXPECT_TRUE(In<QRadioButton>(dialog, "optnReplace").isChecked());
    EXPECT_FALSE(replaceMatching.isEnabled());
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Choose("mnuToolsUpload");
  EXPECT_FALSE(app->Transfers.AbortRequested);
  EXPECT_FALSE(app->Transfers.UploadAppend);
  EXPECT_TRUE(app->Transfers.UploadReplaceMatching);
  EXPECT_EQ(Status(), CompletedText(1));
}

TEST_F(OptionsDialog, KeyboardAloneDoesEverything) {
  StartUnit();
  Start({TableFile("mine.sig", NumberedRows(1))});
  Answer([this](QWidget& dialog) {
    QStringList order;
    for (int step = 0; step < 6; ++step) {
      order += QApplication::focusWidget()->objectName();
      Key(Qt::Key_Tab);
    }
    EXPECT_EQ(order,
              QStringList({"optnAppend", "chkReplace", "chkKeepCopy", "chkReadBack", "bttnUpload", "bttnCancel"}));
    QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
    EXPECT_TRUE(
        QTest::qWaitFor([&dialog] { return In<QRadioButton>(dialog, "optnReplace").isChecked(); }, LongestWait));
    QTest::keyClick(&dialog, Qt::Key_U, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&dialog] { return dialog.isHidden(); }, LongestWait));
  });
  Choose("mnuToolsUpload");
  EXPECT_EQ(Status(), CompletedText(1));
}
