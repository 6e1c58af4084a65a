// The chart of a document: its key, and that the user's choice is remembered.
#include "editor/chart_panel.h"
#include "tests/app/app_fixture.h"

namespace chanplan::testing {
namespace {

class ChartKey : public AppTest {
 protected:
  static bool HasChart(DocumentWindow* document) {
    const auto* panel = document->findChild<ChartPanel*>();
    return panel != nullptr && panel->isVisible();
  }
  bool HasChart() { return HasChart(Frame().ActiveDocument()); }
};

TEST_F(ChartKey, OpensAndClosesTheChartOfTheActiveDocument) {
  Start({Table("a.sig"), Table("b.sig")});
  DocumentWindow* a = app->Registry.Document(1);
  DocumentWindow* b = app->Registry.Document(2);
  EXPECT_FALSE(HasChart(a));
  Key(Qt::Key_F8);
  EXPECT_TRUE(HasChart(b));
  EXPECT_FALSE(HasChart(a));
  Key(Qt::Key_F8);
  EXPECT_FALSE(HasChart(b));
}

TEST_F(ChartKey, WorksFromTheWarningsAndInTheChartItself) {
  Start();
  Key(Qt::Key_F6);
  ASSERT_EQ(QApplication::focusWidget(), &Get<QListWidget>("lstWarnings"));
  Key(Qt::Key_F8);
  EXPECT_TRUE(HasChart());
  EXPECT_EQ(QApplication::focusWidget(), &Get<QListWidget>("lstWarnings"));
  Frame().findChild<ChartPanel*>()->setFocus();
  Key(Qt::Key_F8);
  EXPECT_FALSE(HasChart());
  EXPECT_TRUE(Frame().ActiveDocument()->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(ChartKey, DoesNothingWithoutADocument) {
  Start();
  Choose("mnuFileClose");
  QTest::keyClick(&Frame(), Qt::Key_F8);
  Choose("mnuFileNew");
  EXPECT_FALSE(HasChart());
}

TEST_F(ChartKey, ChoiceIsRememberedAcrossStarts) {
  Start();
  EXPECT_FALSE(HasChart());
  Exit();
  EXPECT_EQ(Stored("Settings/ShowChart"), "");
  Start({Table("a.sig")});
  Key(Qt::Key_F8);
  Choose("mnuFileNew");
  EXPECT_TRUE(HasChart()) << "documents that open later have it, too";
  Frame().resize(790, 560);
  Exit();
  EXPECT_EQ(Stored("Settings/ShowChart"), "1");
  Start();
  EXPECT_TRUE(HasChart());
  const DocumentWindow& document = *Frame().ActiveDocument();
  EXPECT_GT(document.width(), 700);
  EXPECT_LE(document.geometry().right(), document.mdiArea()->viewport()->width()) << "there is room for all of it";
  Key(Qt::Key_F8);
  EXPECT_FALSE(HasChart());
  Exit();
  EXPECT_EQ(Stored("Settings/ShowChart"), "0");
  Start();
  EXPECT_FALSE(HasChart());
}

TEST_F(ChartKey, DamagedChoiceIsNamedAndTakenForNone) {
  SetStored("Settings/ShowChart", "yes");
  AnswerMessage();
  Start();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.front().Text,
            "In section \"Settings\" of your settings, \"ShowChart\" is \"yes\", which is not a whole number from 0 to "
            "1. Its default, 0, is used.");
  EXPECT_FALSE(HasChart());
}

}  // namespace
}  // namespace chanplan::testing
