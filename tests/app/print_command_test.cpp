// File, Print: to a real print queue, to none, and to one that refuses.
#include "tests/app/app_fixture.h"
#include "tests/app/print_queue.h"
#include "tests/report/pdf_reader.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

const Message Question{"Print", "Print Signal Standard list to default printer?\n[Listing]", QMessageBox::NoIcon};

class Printing : public AppTest {
 protected:
  void SetUp() override {
    if (queue.WhyNot()) GTEST_SKIP() << *queue.WhyNot();
  }
  PrintQueue queue;
};

using PrintingWithoutPrinter = AppTest;

}  // namespace

TEST_F(Printing, SendsTheListingToTheDefaultPrinter) {
  const QString file = Table("plan.sig", {"DCS", "PCS"});
  Start({file});
  AnswerMessage(QMessageBox::Ok);
  Choose("mnuFilePrint");
  EXPECT_EQ(messages, std::deque<Message>{Question});
  const std::string text = PdfText(queue.Printed());
  EXPECT_NE(text.find("File: " + file.toStdString()), std::string::npos) << text;
  EXPECT_NE(text.find("DCS"), std::string::npos);
  EXPECT_NE(text.find("1,710.200000"), std::string::npos);
  EXPECT_EQ(queue.Documents(), 1);
}

TEST_F(Printing, CancelledPrintsNothing) {
  Start({Table("plan.sig")});
  AnswerMessage(QMessageBox::Cancel);
  Press("Print");
  EXPECT_EQ(messages, std::deque<Message>{Question});
  EXPECT_EQ(queue.Documents(), 0);
}

TEST_F(Printing, OnAPrinterThatRefusesSaysSo) {
  queue.Reject();
  Start({Table("plan.sig")});
  AnswerMessage(QMessageBox::Ok);
  AnswerMessage();
  Choose("mnuFilePrint");
  EXPECT_EQ(messages.back(),
            (Message{"Print", "The listing was not printed: the printer Listing does not accept documents.",
                     QMessageBox::Critical}));
  EXPECT_EQ(queue.Documents(), 0);
}

TEST_F(Printing, TakenDocumentIsSaidInTheStatusBar) {
  Start({Table("plan.sig")});
  AnswerMessage(QMessageBox::Ok);
  Choose("mnuFilePrint");
  EXPECT_EQ(Get<QLabel>("sbStatusBarPanel1").text(), "The listing was sent to Listing.");
}

TEST_F(Printing, NeedsADocument) {
  Start();
  Choose("mnuFileClose");
  Press("Print");
  EXPECT_EQ(queue.Documents(), 0);
}

TEST_F(PrintingWithoutPrinter, SaysSo) {
  Start();
  AnswerMessage();
  Choose("mnuFilePrint");
  EXPECT_EQ(messages.back(), (Message{"Print", "There is no default printer: choose one in the system's settings.",
                                      QMessageBox::Warning}));
}

// The printer may go while the question is up.
TEST_F(PrintingWithoutPrinter, IsNoticedByTheDocumentToo) {
  Start();
  AnswerMessage();
  Frame().ActiveDocument()->PrintSigs();
  EXPECT_EQ(messages.back(),
            (Message{"Print",
                     "The listing was not printed: there is no default printer: choose one in the system's settings.",
                     QMessageBox::Critical}));
}

TEST_F(PrintingWithoutPrinter, DocumentGreets) {
  Start();
  AnswerMessage();
  Frame().ActiveDocument()->ProcPrint();
  EXPECT_EQ(messages.back().Text, "Hello!!");
}
