// What gets into the edit box, however it comes.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <limits>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

constexpr auto UnknownMode = static_cast<EntryMode>(3);

struct CharacterCase {
  EntryMode Mode;
  std::u16string_view Accepted;
  std::u16string_view Refused;
};

TEST(EntryFilter, EntryModeSaysWhichCharacters) {
  const std::vector<CharacterCase> cases = {
      {FreeText, u" !09AZaz~.-", u"\x1f\x7f\t\u00e9\u20ac"},
      {WholeNumber, u"0123456789", u".,-+ eE\u0661\u00b2"},
      {DecimalNumber, u"0123456789.", u",-+ eE\u0661"},
      {UnknownMode, u"", u" 0a."},
  };
  for (const CharacterCase& expected : cases) {
    EntryFilter filter;
    filter.EntryMode = expected.Mode;
    filter.EntryMaxLength = 5;
    for (const char16_t character : expected.Accepted)
      EXPECT_TRUE(filter.Accepts(QChar(character), "")) << "mode " << expected.Mode << " code " << int{character};
    for (const char16_t character : expected.Refused)
      EXPECT_FALSE(filter.Accepts(QChar(character), "")) << "mode " << expected.Mode << " code " << int{character};
  }
}

TEST(EntryFilter, AcceptsOnePointOnly) {
  EntryFilter filter;
  filter.EntryMode = DecimalNumber;
  filter.EntryMaxLength = 9;
  EXPECT_TRUE(filter.Accepts(".", "12"));
  EXPECT_FALSE(filter.Accepts(".", "1.2"));
  EXPECT_TRUE(filter.Accepts("1.2", "34"));
  EXPECT_FALSE(filter.Accepts("1.2.", "34"));
}

TEST(EntryFilter, FullBoxTakesNothing) {
  EntryFilter filter;
  filter.EntryMaxLength = 3;
  EXPECT_TRUE(filter.Accepts("x", "ab"));
  EXPECT_FALSE(filter.Accepts("x", "abc"));
  EXPECT_FALSE(filter.Accepts("xy", "ab"));
}

// An edit box alone in a window.
class EntryBoxTest : public ::testing::Test {
 protected:
  EntryBoxTest() : box(new EntryBox(&window)) {
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, LongestWait));
    box->setFocus();
    QObject::connect(box, &EntryBox::Edited, box, [this] { ++edits; });
    QObject::connect(box, &EntryBox::Refused, box, [this](const QString& text) { refused += text; });
  }

  void Hold(EntryMode mode, qint16 maxLength, const QString& text) {
    box->Filter().EntryMode = mode;
    box->Filter().EntryMaxLength = maxLength;
    box->SetContent(text);
  }

  QWidget window;
  EntryBox* box;
  int edits = 0;
  QStringList refused;
};

struct InsertCase {
  EntryMode Mode;
  qint16 MaxLength;
  QString Former;
  int SelectionStart;  // with length 0: where the cursor stands
  int SelectionLength;
  QString Inserted;
  QString Expected;
  int Cursor;
};

void PrintTo(const InsertCase& given, std::ostream* output) {
  *output << given.Inserted.toStdString() << " into " << given.Former.toStdString() << ", mode " << given.Mode;
}

class Insertions : public EntryBoxTest, public ::testing::WithParamInterface<InsertCase> {
 protected:
  void SetUp() override {
    const InsertCase& given = GetParam();
    Hold(given.Mode, given.MaxLength, given.Former);
    if (given.SelectionLength > 0)
      box->setSelection(given.SelectionStart, given.SelectionLength);
    else
      box->setCursorPosition(given.SelectionStart);
  }
  void ExpectOutcome() {
    EXPECT_EQ(box->text(), GetParam().Expected);
    EXPECT_EQ(box->cursorPosition(), GetParam().Cursor);
    // What is put over the same text is an edit, too.
    const bool same =
        GetParam().Inserted == GetParam().Former.mid(GetParam().SelectionStart, GetParam().SelectionLength);
    EXPECT_EQ(edits > 0, same || GetParam().Expected != GetParam().Former);
  }
};

class Typing : public Insertions {};

TEST_P(Typing, LeavesOutTheCharactersThatAreRefused) {
  Type(GetParam().Inserted.toStdString());
  ExpectOutcome();
  EXPECT_EQ(refused, QStringList()) << "no message while typing";
}

INSTANTIATE_TEST_SUITE_P(EntryBox, Typing,
                         ::testing::Values(InsertCase{FreeText, 24, "GSM", 3, 0, " 900", "GSM 900", 7},
                                           InsertCase{FreeText, 5, "GSM", 3, 0, " 900", "GSM 9", 5},
                                           InsertCase{FreeText, 3, "GSM", 3, 0, "X", "GSM", 3},
                                           InsertCase{FreeText, 3, "GSM", 1, 1, "x", "GxM", 2},
                                           InsertCase{FreeText, 24, "aa", 1, 0, "a", "aaa", 2},
                                           InsertCase{WholeNumber, 7, "12", 1, 0, "9", "192", 2},
                                           InsertCase{WholeNumber, 7, "12", 2, 0, ".5", "125", 3},
                                           InsertCase{WholeNumber, 7, "12", 0, 2, "abc", "12", 2},
                                           InsertCase{WholeNumber, 2, "12", 0, 2, "789", "78", 2},
                                           InsertCase{DecimalNumber, 9, "1.5", 3, 0, ".7", "1.57", 4},
                                           InsertCase{DecimalNumber, 9, "1.5", 0, 3, "2.2.5", "2.25", 4},
                                           InsertCase{DecimalNumber, 9, "1.5", 1, 1, ".", "1.5", 2},
                                           InsertCase{DecimalNumber, 9, "890.2000", 8, 0, "777", "890.20007", 9},
                                           InsertCase{UnknownMode, 9, "1", 1, 0, "2a.", "1", 1}));

class Pasting : public Insertions {
 protected:
  void ExpectOutcomeOfAPaste() {
    ExpectOutcome();
    EXPECT_EQ(refused, edits > 0 ? QStringList() : QStringList(GetParam().Inserted));
  }
};

TEST_P(Pasting, GoesInAsAWholeOrNotAtAll) {
  QGuiApplication::clipboard()->setText(GetParam().Inserted);
  QTest::keySequence(box, QKeySequence::Paste);
  ExpectOutcomeOfAPaste();
}

TEST_P(Pasting, FromTheContextMenuDoesTheSame) {
  QGuiApplication::clipboard()->setText(GetParam().Inserted);
  QTimer::singleShot(0, box, [] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QAction* paste = nullptr;
    for (QAction* action : menu->actions())
      if (action->text().startsWith("&Paste")) paste = action;
    ASSERT_NE(paste, nullptr);
    ClickItem(*menu, *paste);
  });
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), box->mapToGlobal(QPoint(1, 1)));
  QApplication::sendEvent(box, &event);
  ExpectOutcomeOfAPaste();
}

INSTANTIATE_TEST_SUITE_P(
    EntryBox, Pasting,
    ::testing::Values(
        InsertCase{FreeText, 24, "GSM", 3, 0, " 900", "GSM 900", 7},
        InsertCase{FreeText, 24, "GSM", 3, 0, "900\n", "GSM900", 6},
        InsertCase{FreeText, 24, "GSM", 3, 0, "a\nb", "GSM", 3}, InsertCase{FreeText, 5, "GSM", 3, 0, " 900", "GSM", 3},
        InsertCase{FreeText, 3, "GSM", 1, 1, "x", "GxM", 2}, InsertCase{FreeText, 24, "", 0, 0, "Gr\u00fcn", "", 0},
        InsertCase{WholeNumber, 7, "12", 2, 0, ".5", "12", 2}, InsertCase{WholeNumber, 7, "12", 0, 2, "abc", "12", 2},
        InsertCase{WholeNumber, 7, "12", 0, 2, "12", "12", 2}, InsertCase{WholeNumber, 2, "12", 0, 2, "789", "12", 2},
        InsertCase{WholeNumber, 7, "12", 0, 2, "\t789 \r\n", "789", 3},
        InsertCase{WholeNumber, 7, "", 0, 0, "7 8", "", 0}, InsertCase{DecimalNumber, 9, "1.5", 3, 0, ".7", "1.5", 3},
        InsertCase{DecimalNumber, 9, "1.5", 0, 3, "2.25", "2.25", 4},
        InsertCase{DecimalNumber, 9, "", 0, 0, "824,04", "", 0},
        InsertCase{DecimalNumber, 9, "", 0, 0, " 824.04 ", "824.04", 6},
        InsertCase{DecimalNumber, 9, "", 0, 0, "890.2 MHz", "", 0}, InsertCase{DecimalNumber, 9, "", 0, 0, "-1", "", 0},
        InsertCase{UnknownMode, 9, "1", 1, 0, "2", "1", 1}));

TEST_F(EntryBoxTest, PastingByProgramGoesInAsAWholeOrNotAtAll) {
  for (const auto& [pasted, expected] : std::vector<std::pair<QString, QString>>{{"824,04", "1"}, {"82404", "82404"}}) {
    Hold(WholeNumber, 7, "1");
    box->selectAll();
    QGuiApplication::clipboard()->setText(pasted);
    box->paste();
    EXPECT_EQ(box->text(), expected);
  }
}

struct DropCase {
  const char* Dropped;
  const char* Expected;
};

TEST_F(EntryBoxTest, DroppedTextGoesInAsAWholeOrNotAtAll) {
  for (const DropCase& given : {DropCase{"89O.5x.1", ""}, {"89.51", "89.51"}, {" 89.51\n", "89.51"}}) {
    Hold(DecimalNumber, 9, "");
    refused.clear();
    QMimeData dropped;
    dropped.setText(given.Dropped);
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(box, &enter);
    QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(box, &drop);
    EXPECT_EQ(box->text(), given.Expected);
    EXPECT_EQ(refused.size(), box->text().isEmpty() ? 1 : 0);
  }
}

TEST_F(EntryBoxTest, RefusedKeyKeepsTheSelectedText) {
  Hold(WholeNumber, 7, "124");
  box->selectAll();
  Type("x");
  EXPECT_EQ(box->text(), "124");
  EXPECT_EQ(box->selectedText(), "124");
  EXPECT_EQ(edits, 0);
}

TEST_F(EntryBoxTest, UndoBringsBackWhatWasTypedOver) {
  Hold(DecimalNumber, 9, "890.2000");
  box->selectAll();
  Type("7");
  EXPECT_EQ(box->text(), "7");
  box->undo();
  EXPECT_EQ(box->text(), "890.2000");
}

TEST_F(EntryBoxTest, TextOfACellIsShownWhateverTheRules) {
  Hold(WholeNumber, 2, "-12345");
  EXPECT_EQ(box->text(), "-12345");
  EXPECT_EQ(edits, 0);
  Press(Qt::Key_End);
  Press(Qt::Key_Backspace);
  EXPECT_EQ(box->text(), "-1234");
}

struct UndoCase {
  EntryMode Mode;
  qint16 MaxLength;
  const char* Former;
  const char* Typed;
};

// What a file brings need not be what can be typed: undoing has to give it back all the same, and
// opens the box for nothing else.
TEST_F(EntryBoxTest, UndoGivesBackTheVeryTextAndTheRulesStillHold) {
  for (const UndoCase& given : {UndoCase{DecimalNumber, 9, "890.2000", "7"},
                                {DecimalNumber, 9, "-1234567.0000", "12"},
                                {WholeNumber, 7, "-12345", "9"},
                                {FreeText, 24, "a name of thirty-eight characters, all", "GSM"}}) {
    Hold(given.Mode, given.MaxLength, given.Former);
    box->selectAll();
    Type(given.Typed);
    EXPECT_EQ(box->text(), given.Typed);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(box->text(), given.Former);
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(box->text(), given.Typed);
    if (given.Mode != FreeText) Type("x,-e");
    EXPECT_EQ(box->text(), given.Typed);
    Press(Qt::Key_Z, Qt::ControlModifier);
    Press(Qt::Key_End);
    Type(given.Mode == FreeText ? "x" : "x,-");
    EXPECT_EQ(box->text(), given.Former);
  }
}

TEST_F(EntryBoxTest, UndoBringsTextsThatWereShortenedBackStepByStep) {
  Hold(FreeText, 3, "abcdef");
  Press(Qt::Key_End);
  Press(Qt::Key_Backspace);
  Press(Qt::Key_Backspace);
  Type("x");
  EXPECT_EQ(box->text(), "abcd");
  while (box->isUndoAvailable()) Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(box->text(), "abcdef");
}

TEST_F(EntryBoxTest, BackspaceIsAnEditAlsoWhereNothingIsLeft) {
  Hold(FreeText, 24, "a");
  Press(Qt::Key_Backspace);
  EXPECT_EQ(edits, 1);
  Press(Qt::Key_Backspace);
  EXPECT_EQ(edits, 2);
  for (const Qt::Key key : {Qt::Key_Left, Qt::Key_End, Qt::Key_Delete}) Press(key);
  EXPECT_EQ(edits, 2);
}

TEST_F(EntryBoxTest, ReplacedTextCanBeUndone) {
  Hold(DecimalNumber, 9, "890.2000");
  box->Replace("7");
  EXPECT_EQ(box->text(), "7");
  EXPECT_EQ(edits, 1);
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(box->text(), "890.2000");
  edits = 0;
  box->Replace("");
  box->Replace("");
  EXPECT_EQ(box->text(), "");
  EXPECT_EQ(edits, 2);
}

struct FocusCase {
  Qt::FocusReason Reason;
  bool MovedOn;
};

TEST(FocusMovedOn, MenusListsAndOtherProgramsOnlyBorrowTheFocus) {
  for (const FocusCase& given : {FocusCase{Qt::PopupFocusReason, false},
                                 {Qt::MenuBarFocusReason, false},
                                 {Qt::ActiveWindowFocusReason, false},
                                 {Qt::MouseFocusReason, true},
                                 {Qt::TabFocusReason, true},
                                 {Qt::OtherFocusReason, true}})
    EXPECT_EQ(FocusMovedOn(QFocusEvent(QEvent::FocusOut, given.Reason)), given.MovedOn) << given.Reason;
}

}  // namespace
}  // namespace chanplan::testing
