// File, Print: to a real print queue, to none, and to one that refuses.
#include <cups/cups.h>

#include <QRegularExpression>

#include "core/sig_file.h"
#include "report/pdf_listing.h"
#include "tests/app/app_fixture.h"
#include "tests/app/print_queue.h"
#include "tests/core/table_of.h"
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
  QString StatusPanel1() { return Get<QLabel>("sbStatusBarPanel1").text(); }

  PrintQueue queue;
};

using PrintingWithoutServer = AppTest;

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

TEST_F(Printing, RefusedDocumentIsSaidWithTheServersReason) {
  struct Case {
    std::function<void(PrintQueue&)> Refuse;
    const char* Reason;
  };
  // What is too large is cut off by the server, and the connection may be gone before its reason arrives.
  const Case cases[] = {
      {[](PrintQueue& q) {
         q.Configure({"-p", "Listing", "-u", "deny:root"});
       },
       R"(Not allowed to print\.)"},
      {[](PrintQueue& q) {
         q.Configure({"-p", "Listing", "-u", "allow:all"});
       },
       nullptr},
      {[](PrintQueue& q) { q.LimitDocuments("5k"); }, R"((Request Entity Too Large|Unable to finish request)\.)"},
      {[](PrintQueue& q) { q.LimitDocuments("0"); }, nullptr},
      {[](PrintQueue& q) {
         q.Configure({"-p", "Listing", "-o", "job-quota-period=3600", "-o", "job-k-limit=1"});
       },
       R"(Quota limit reached\.)"},
      {[](PrintQueue& q) { q.Reject(); }, R"(Destination "Listing" is not accepting jobs\.)"},
  };
  Start({Table("plan.sig")});
  for (const auto& [refuse, reason] : cases) {
    refuse(queue);
    ASSERT_FALSE(queue.WhyNot()) << *queue.WhyNot();
    Frame().ShowStatus("");
    AnswerMessage(QMessageBox::Ok);
    if (reason != nullptr) AnswerMessage();
    Choose("mnuFilePrint");
    if (reason == nullptr) {
      EXPECT_EQ(StatusPanel1(), "The listing was sent to Listing.");
      continue;
    }
    EXPECT_EQ(messages.back().Icon, QMessageBox::Critical);
    const QRegularExpression told(
        "^The listing was not printed: the printer Listing does not take it: " + QString(reason) + "$");
    EXPECT_TRUE(messages.back().Text.contains(told)) << messages.back().Text.toStdString();
    EXPECT_EQ(StatusPanel1(), "") << reason;
  }
}

// Lines and letters are where the file has them, to the dot: a page more or less would be another listing.
TEST_F(Printing, PrintsWhatThePdfFileShows) {
  SignalStandardTable table;
  while (table.Count < 60) table.Append(NamedRow("S" + std::to_string(table.Count)));  // two pages
  WriteFile(folder / "plan.sig", WriteSigTable(table));
  Start({InFolder("plan.sig")});
  AnswerMessage(QMessageBox::Ok);
  Choose("mnuFilePrint");
  const std::string printed = queue.Printed();
  const bool a4 = ReadPdf("pdfinfo file.pdf", printed).find("(A4)") != std::string::npos;
  const std::string file =
      PdfListing(table, InFolder("plan.sig").toStdString(), a4 ? PaperSize::A4 : PaperSize::Letter);
  EXPECT_EQ(PdfPages(printed), 2);
  EXPECT_TRUE(ReadPdf("pdftoppm -r 200 -mono file.pdf page && cat page*", printed) ==
              ReadPdf("pdftoppm -r 200 -mono file.pdf page && cat page*", file))
      << "the pages differ";
}

TEST_F(Printing, StoppedServerIsNamed) {
  Start({Table("plan.sig")});
  queue.Stop();
  AnswerMessage();
  Choose("mnuFilePrint");
  EXPECT_EQ(messages.back(),
            (Message{"Print", "The print server " + QString(cupsServer()) + " is stopped or cannot be reached.",
                     QMessageBox::Warning}));
}

TEST_F(Printing, ServerWithoutDefaultPrinterSaysSo) {
  queue.Configure({"-x", "Listing"});
  Start();
  AnswerMessage();
  Choose("mnuFilePrint");
  EXPECT_EQ(messages.back(), (Message{"Print", "There is no default printer: choose one in the system's settings.",
                                      QMessageBox::Warning}));
}

TEST_F(Printing, TakenDocumentIsSaidInTheStatusBar) {
  Start({Table("plan.sig")});
  AnswerMessage(QMessageBox::Ok);
  Choose("mnuFilePrint");
  EXPECT_EQ(StatusPanel1(), "The listing was sent to Listing.");
}

TEST_F(Printing, NeedsADocument) {
  Start();
  Choose("mnuFileClose");
  Press("Print");
  EXPECT_EQ(queue.Documents(), 0);
}

TEST_F(PrintingWithoutServer, SaysSo) {
  Start();
  AnswerMessage();
  Choose("mnuFilePrint");
  EXPECT_EQ(messages.back(), (Message{"Print", "The print server /nonexistent/socket is stopped or cannot be reached.",
                                      QMessageBox::Warning}));
}

// The server may go while the question is up.
TEST_F(PrintingWithoutServer, IsNoticedByTheDocumentToo) {
  Start();
  AnswerMessage();
  Frame().ActiveDocument()->PrintSigs();
  EXPECT_EQ(messages.back(), (Message{"Print",
                                      "The listing was not printed: the print server /nonexistent/socket is stopped or "
                                      "cannot be reached.",
                                      QMessageBox::Critical}));
}

TEST_F(PrintingWithoutServer, DocumentGreets) {
  Start();
  AnswerMessage();
  Frame().ActiveDocument()->ProcPrint();
  EXPECT_EQ(messages.back().Text, "Hello!!");
}
