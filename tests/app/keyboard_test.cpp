// The keyboard between windows: keys that answer dialogs, and where the focus goes.
#include <QCheckBox>
#include <QListWidget>
#include <QTableWidget>

#include "app/compare_window.h"
#include "app/frm_upload_optns.h"
#include "editor/messages.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class AccessKey : public AppTest {};

class Focus : public AppTest {
 protected:
  void StartWithThree() {
    Start({Table("a.sig"), Table("b.sig"), Table("c.sig")});
    ASSERT_EQ(Captions().size(), 3);
    GoTo(2);
  }
  DocumentWindow& Document(int number) { return *app->Registry.Document(number); }
  void GoTo(int number) { Frame().ShowDocument(Document(number)); }
  // The number of the active document, or of the one that has `held`; 0 for none.
  int Active() { return NumberOf(Frame().ActiveDocument()); }
  int NumberOf(const QWidget* held) {
    int number = 0;
    for (const QPointer<DocumentWindow>& document : app->Registry.Documents) {
      ++number;
      if (document != nullptr && document->isAncestorOf(held)) return number;
    }
    return 0;
  }
  // The control, and the number of its document where it is in one.
  QString Place() {
    const QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr) return "nowhere";
    const int number = NumberOf(focus);
    return number == 0 ? focus->objectName() : QString("%1 %2").arg(focus->objectName()).arg(number);
  }
  // Ctrl stays down until it is let go.
  void PressWithCtrl(Qt::Key key) { QTest::keyPress(QApplication::focusWidget(), key, Qt::ControlModifier); }
  void LetGoOfCtrl() { QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Control); }
  void SetChanged(bool changed) {
    for (DocumentState& state : app->Registry.DocumentStates) state.Changed = changed;
  }
  void Reach(const QString& control) {
    if (control == "ChartPanel" && Document(2).findChild<ChartPanel*>() == nullptr) Key(Qt::Key_F8);
    if (control == "txtFind") Key(Qt::Key_F, Qt::ControlModifier);
    const bool box = control == "txtEntry";
    Document(2).findChild<QWidget*>(box ? "GridDetails" : control)->setFocus();
    if (box) Key(Qt::Key_F2);
    ASSERT_EQ(Place(), control + " 2");
  }
  QImage Picture(QWidget& widget) {
    QCoreApplication::processEvents();
    return widget.grab().toImage();
  }
};

}  // namespace

TEST_F(AccessKey, CountsForTheEnterBehindIt) {
  Start();
  const struct {
    Qt::Key Pressed;
    bool Append, KeepCopy, ReadBack;
  } cases[] = {{Qt::Key_A, true, false, false},
               {Qt::Key_O, false, false, false},
               {Qt::Key_K, true, true, false},
               {Qt::Key_B, true, false, true}};
  for (const auto& [key, append, keepCopy, readBack] : cases) {
    TransferFlags flags;
    Answer([this, key = key](QWidget&) {
      Key(key, Qt::AltModifier);
      Key(Qt::Key_Return);
    });
    frmUploadOptns(&Frame(), flags).exec();
    EXPECT_EQ(flags.UploadAppend, append) << key;
    EXPECT_EQ(flags.UploadKeepCopy, keepCopy) << key;
    EXPECT_EQ(flags.UploadReadBack, readBack) << key;
    EXPECT_FALSE(flags.AbortRequested) << key;
  }
}

TEST_F(AccessKey, TakesTheFocusToAChoice) {
  Start();
  Answer([this](QWidget& dialog) {
    Key(Qt::Key_K, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "chkKeepCopy");
    Key(Qt::Key_Space);
    EXPECT_FALSE(dialog.findChild<QCheckBox*>("chkKeepCopy")->isChecked());
    Key(Qt::Key_C, Qt::AltModifier);
  });
  frmUploadOptns(&Frame(), app->Transfers).exec();
  EXPECT_TRUE(app->Transfers.AbortRequested);
}

// Enter would say Yes, were it the first to be answered.
TEST_F(AccessKey, AnswersAMessageAtOnce) {
  Start();
  for (const Qt::KeyboardModifiers modifiers : {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::AltModifier)}) {
    AnswerMessage([this, modifiers](QMessageBox&) { Key(Qt::Key_N, modifiers); });
    EXPECT_EQ(Ask(Frame(), QMessageBox::Question, "", "Well?", QMessageBox::Yes | QMessageBox::No), QMessageBox::No);
  }
}

TEST_F(AccessKey, OfTwoButtonsPressesNeither) {
  Start();
  Answer([this](QWidget& dialog) {
    for (int time = 0; time < 2; ++time) Key(Qt::Key_Z, Qt::AltModifier);
    for (const QCheckBox* box : dialog.findChildren<QCheckBox*>()) EXPECT_FALSE(box->isChecked());
    Key(Qt::Key_Escape);
  });
  QDialog dialog(&Frame());
  for (const int place : {0, 1}) (new QCheckBox("&Zero", &dialog))->move(0, 50 * place);
  dialog.exec();
}

TEST_F(Focus, StaysInTheDocumentThatABoxIsAbout) {
  StartWithThree();
  SetChanged(true);
  AnswerMessage([this](QMessageBox&) {
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_F6}) {
      PressWithCtrl(key);
      LetGoOfCtrl();
      EXPECT_EQ(Active(), 2) << key;
    }
    Key(Qt::Key_Escape);
  });
  Key(Qt::Key_F4, Qt::ControlModifier);
  EXPECT_EQ(Active(), 2);
  SetChanged(false);
}

TEST_F(Focus, StaysBehindAMenuOfTheDocument) {
  StartWithThree();
  Key(Qt::Key_F10, Qt::ShiftModifier);
  QWidget* menu = QApplication::activePopupWidget();
  ASSERT_NE(menu, nullptr);
  QTest::keyPress(menu, Qt::Key_Tab, Qt::ControlModifier);
  QTest::keyRelease(menu, Qt::Key_Control);
  EXPECT_EQ(Active(), 2);
  PullUp();
}

// Whose frame is on the screen when the key comes.
TEST_F(Focus, KeyBehindCtrlTabIsForTheDocumentThatWasChosen) {
  Start({Table("a.sig"), Table("b.sig")});
  SetChanged(true);
  PressWithCtrl(Qt::Key_Tab);
  EXPECT_EQ(Active(), 2) << "Ctrl is held";
  AnswerMessage([this](QMessageBox& box) {
    EXPECT_TRUE(box.text().contains(Document(1).windowTitle())) << box.text().toStdString();
    LetGoOfCtrl();
    Key(Qt::Key_Escape);
  });
  PressWithCtrl(Qt::Key_F4);
  Activate();
  PressWithCtrl(Qt::Key_Control);
  LetGoOfCtrl();
  EXPECT_EQ(Active(), 1) << "nothing is left of the choice";
  SetChanged(false);
}

TEST_F(Focus, GoesByTabBetweenThePaneAndTheActiveDocument) {
  StartWithThree();
  Key(Qt::Key_F6);
  QStringList forwards;
  QStringList backwards;
  for (int time = 0; time < 2; ++time) {
    Key(Qt::Key_Tab);
    forwards += Place();
    Key(Qt::Key_F6);
  }
  for (int time = 0; time < 2; ++time) {
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    backwards += Place();
  }
  EXPECT_EQ(forwards, QStringList({"GridList 2", "GridList 2"}));
  EXPECT_EQ(backwards, QStringList({"lblSplitter", "GridList 2"}));
  EXPECT_EQ(Active(), 2);
}

TEST_F(Focus, GoesByTabThroughTheOfferToCompare) {
  StartWithThree();
  app->Registry.Document(2)->setWindowTitle("Untitled(Query) 2");
  Key(Qt::Key_F6);
  QStringList places;
  for (int time = 0; time < 2; ++time) {
    Key(Qt::Key_Tab);
    places += Place();
  }
  EXPECT_EQ(places, QStringList({"bttnCompare", "GridList 2"}));
}

TEST_F(Focus, GoesByTabRoundThePaneWhereNoDocumentIsOpen) {
  Start();
  Choose("mnuFileClose");
  Key(Qt::Key_F6);
  QStringList places;
  for (int time = 0; time < 2; ++time) {
    Key(Qt::Key_Tab);
    places += Place();
  }
  EXPECT_EQ(places, QStringList({"lblSplitter", "lstWarnings"}));
}

// Whatever control had it.
TEST_F(Focus, StaysOnAMinimisedDocumentBehindABox) {
  StartWithThree();
  SetChanged(true);
  for (const char* control : {"GridList", "GridDetails", "GridBands", "ChartPanel", "txtFind", "txtEntry"}) {
    Reach(control);
    Document(2).showMinimized();
    EXPECT_EQ(Place(), "frmDocument 2") << control;
    AnswerMessage([this](QMessageBox&) { Key(Qt::Key_Escape); });
    Key(Qt::Key_F4, Qt::ControlModifier);
    Activate();
    EXPECT_EQ(Place(), "frmDocument 2") << control;
    Key(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_NE(Active(), 2) << control;
    GoTo(2);
  }
  SetChanged(false);
}

TEST_F(Focus, GoesToAMinimisedDocumentWhenTheOneInFrontIsClosed) {
  for (const char* control : {"GridList", "GridDetails", "GridBands", "ChartPanel", "txtFind", "txtEntry"}) {
    StartWithThree();
    Reach(control);
    Document(2).showMinimized();
    GoTo(3);
    SetChanged(true);
    AnswerMessage(QMessageBox::No);
    Key(Qt::Key_F4, Qt::ControlModifier);
    Activate();
    EXPECT_EQ(Place(), "frmDocument 2") << control;
    Document(2).showNormal();
    EXPECT_TRUE(Place().endsWith(" 2") && Place() != "frmDocument 2") << control << " " << Place().toStdString();
    SetChanged(false);
    app.reset();
  }
}

TEST_F(Focus, ComesBackToTheCellThatItWasOnWhenADocumentWasMinimised) {
  StartWithThree();
  for (const char* name : {"GridList", "GridDetails", "GridBands"}) {
    Reach(name);
    const Grid& grid = *Document(2).findChild<Grid*>(name);
    const QModelIndex cell = grid.currentIndex();
    Document(2).showMinimized();
    GoTo(1);
    GoTo(2);
    EXPECT_EQ(Place(), name + QString(" 2"));
    EXPECT_EQ(grid.currentIndex(), cell) << name;
  }
}

TEST_F(Focus, ShowsInAPaneWithoutALineThatIsCurrent) {
  Start();
  auto& list = Get<QListWidget>("lstWarnings");
  Frame().Warnings("", -1);
  const QImage without = Picture(*list.viewport());
  Key(Qt::Key_F6);
  EXPECT_NE(Picture(*list.viewport()), without);
  Frame().Warnings("a\r\nb", -1);
  const QImage filled = Picture(*list.viewport());
  Key(Qt::Key_F6);
  EXPECT_NE(Picture(*list.viewport()), filled);
}

TEST_F(Focus, ShowsInAListOfNoDifferences) {
  Start({Table("a.sig"), Table("b.sig")});
  Compare(Frame(), Document(1), {app->Registry.Document(2)});
  auto& list = *Frame().findChild<QTableWidget*>("lstDifferences");
  ASSERT_TRUE(QTest::qWaitForWindowActive(list.window(), LongestWait));
  list.setFocus();
  const QImage with = Picture(*list.viewport());
  list.clearFocus();
  EXPECT_NE(Picture(*list.viewport()), with);
}

TEST_F(Focus, ShowsOnTheMenuBar) {
  Start();
  QMenuBar& bar = *Frame().menuBar();
  const QImage without = Picture(bar);
  Key(Qt::Key_Alt);
  ASSERT_TRUE(bar.hasFocus());
  const QImage first = Picture(bar);
  EXPECT_NE(first, without);
  Key(Qt::Key_Right);
  EXPECT_NE(Picture(bar), first);
  Key(Qt::Key_Escape);
  EXPECT_EQ(Picture(bar), without);
}
