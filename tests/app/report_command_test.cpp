// File, Report: the proposed name, the dialog, the file and the viewer.
#include <sys/stat.h>

#include <QComboBox>
#include <QDesktopServices>
#include <QUrl>

#include "report/html_report.h"
#include "tests/app/app_fixture.h"
#include "tests/app/browser.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class Report : public AppTest {
 protected:
  Report() { QDesktopServices::setUrlHandler("file", &viewer, "Open"); }
  ~Report() override { QDesktopServices::unsetUrlHandler("file"); }

  std::string ExpectedText() {
    return ReportText(Frame().ActiveDocument()->Table(), Frame().ActiveDocument()->windowTitle().toStdString());
  }
  // Looks at the dialog, then cancels it.
  void ExpectProposal(const QString& name) {
    Answer([name](QWidget& window) {
      auto& dialog = dynamic_cast<QFileDialog&>(window);
      auto& types = *dialog.findChild<QComboBox*>("fileTypeCombo");
      EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), name);
      EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
      EXPECT_EQ(types.count(), 2);
      EXPECT_EQ(types.itemText(0), "All Files (*.*)");
      EXPECT_EQ(types.currentIndex(), 1);
      EXPECT_EQ(types.currentText(), "Signal Standard Files(*.sig)");
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mnuFileReport");
  }

  Browser viewer;
};

}  // namespace

TEST_F(Report, IsWrittenAndOpenedInTheViewer) {
  Start({Table("plan.sig", {"DCS", "PCS"})});
  AnswerFileDialog(InFolder("plan.htm"));
  Choose("mnuFileReport");
  EXPECT_EQ(ReadFile(folder / "plan.htm"), ExpectedText());
  EXPECT_EQ(viewer.Opened, QList<QUrl>{QUrl::fromLocalFile(InFolder("plan.htm"))});
}

TEST_F(Report, DoesNotTakeThePlaceOfTheTable) {
  Start({Table("plan.sig")});
  const std::string table = ReadFile(folder / "plan.sig");
  std::filesystem::create_hard_link(folder / "plan.sig", folder / "link.htm");
  AnswerFileDialog(InFolder("link.htm"));
  AnswerMessage(QMessageBox::Yes);  // it is there
  AnswerMessage();
  Choose("mnuFileReport");
  EXPECT_EQ(messages.back().Text,
            InFolder("link.htm") + " is the table itself, which the report would take the place of.");
  EXPECT_EQ(ReadFile(folder / "plan.sig"), table);
  EXPECT_TRUE(viewer.Opened.isEmpty());
}

TEST_F(Report, DoesNotWaitForWhoReadsAPipe) {
  Start({Table("plan.sig")});
  ASSERT_EQ(mkfifo((folder / "pipe.htm").c_str(), 0600), 0);
  AnswerFileDialog(InFolder("pipe.htm"));
  AnswerMessage(QMessageBox::Yes);  // it is there
  AnswerMessage();
  Choose("mnuFileReport");
  EXPECT_EQ(messages.back(),
            (Message{"Error Saving Report", InFolder("pipe.htm") + " is no file.", QMessageBox::Critical}));
  EXPECT_TRUE(viewer.Opened.isEmpty());
}

TEST_F(Report, ProposesTheNameOfTheTable) {
  Start({Table("Band.old.sig")});
  ExpectProposal("Band.htm");
}

TEST_F(Report, OfACaptionWithoutDotProposesUntitled) {
  Start();
  ExpectProposal("Untitled.htm");
}

TEST_F(Report, OfAFolderWithDotProposesTheFile) {
  Start();
  Frame().ActiveDocument()->setWindowTitle("/plans.2026/Band");
  ExpectProposal("Band.htm");
  Frame().ActiveDocument()->setWindowTitle("C:\\Plans.old\\Band");
  ExpectProposal("Band.htm");
}

TEST_F(Report, CancelledWritesNothing) {
  Start({Table("plan.sig")});
  CancelFileDialog();
  Choose("mnuFileReport");
  EXPECT_EQ(NamesIn(folder.Path()).count("plan.htm"), 0u);
  EXPECT_EQ(viewer.Opened, QList<QUrl>());
}

TEST_F(Report, ReplacesAFileAfterAQuestion) {
  Start({Table("plan.sig")});
  const std::string former(100000, 'x');
  for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
    WriteFile(folder / "plan.htm", former);
    Answer([this, answer](QWidget& window) {
      AnswerMessage(answer);
      auto* edit = window.findChild<QLineEdit*>("fileNameEdit");
      edit->selectAll();
      QTest::keyClicks(edit, InFolder("plan.htm"));
      QTest::keyClick(edit, Qt::Key_Return);
      if (answer == QMessageBox::No) QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mnuFileReport");
    EXPECT_EQ(ReadFile(folder / "plan.htm"), answer == QMessageBox::No ? former : ExpectedText());
  }
}

TEST_F(Report, TypedWithoutTypeIsStillAReport) {
  Start({Table("plan.sig")});
  AnswerFileDialog(InFolder("other"));
  Choose("mnuFileReport");
  EXPECT_EQ(NamesIn(folder.Path()).count("other.htm"), 1u);
}

TEST_F(Report, HoldsTheOpenEdit) {
  Start({Table("plan.sig")});
  auto* details = Frame().ActiveDocument()->findChild<Grid*>("GridDetails");
  details->setFocus();
  details->setCurrentCell(0, 1);
  QTest::keyClick(details, 'N');
  AnswerFileDialog(InFolder("plan.htm"));
  Choose("mnuFileReport");
  EXPECT_NE(ReadFile(folder / "plan.htm").find("<tr><td>N</td>"), std::string::npos);
  app->Registry.DocumentStates[0].Changed = false;
}

TEST_F(Report, ThatCannotBeWrittenSaysSoAndOpensNothing) {
  Start({Table("plan.sig")});
  AnswerMessage();
  EXPECT_FALSE(Frame().ActiveDocument()->SigReport(InFolder("missing/plan.htm")));
  EXPECT_EQ(messages.back(),
            (Message{"Error Saving Report", InFolder("missing/plan.htm") + ": No such file or directory",
                     QMessageBox::Critical}));
  std::filesystem::create_directory(folder / "plan.htm");
  AnswerMessage();
  EXPECT_FALSE(Frame().ActiveDocument()->SigReport(InFolder("plan.htm")));
  EXPECT_EQ(viewer.Opened, QList<QUrl>());
}

TEST_F(Report, NeedsADocument) {
  Start();
  Choose("mnuFileClose");
  Choose("mnuFileReport");
  EXPECT_EQ(viewer.Opened, QList<QUrl>());
}
