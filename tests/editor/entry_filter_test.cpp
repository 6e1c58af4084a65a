// What gets into the edit box, however it comes.
#include <QClipboard>
#include <QDropEvent>
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
      EXPECT_TRUE(filter.Accepts(character, "")) << "mode " << expected.Mode << " code " << int{character};
    for (const char16_t character : expected.Refused)
      EXPECT_FALSE(filter.Accepts(character, "")) << "mode " << expected.Mode << " code " << int{character};
  }
}

TEST(EntryFilter, AcceptsOnePointOnly) {
  EntryFilter filter;
  filter.EntryMode = DecimalNumber;
  filter.EntryMaxLength = 9;
  EXPECT_TRUE(filter.Accepts('.', "12"));
  EXPECT_FALSE(filter.Accepts('.', "1.2"));
}

TEST(EntryFilter, FullBoxTakesNothing) {
  EntryFilter filter;
  filter.EntryMaxLength = 3;
  EXPECT_TRUE(filter.Accepts('x', "ab"));
  EXPECT_FALSE(filter.Accepts('x', "abc"));
}

// An edit box alone in a window.
class EntryBoxTest : public ::testing::Test {
 protected:
  EntryBoxTest() : box(new EntryBox(&window)) {
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    box->setFocus();
    QObject::connect(box, &QLineEdit::textEdited, box, [this] { ++edits; });
  }

  void Hold(EntryMode mode, qint16 maxLength, const QString& text) {
    box->Filter().EntryMode = mode;
    box->Filter().EntryMaxLength = maxLength;
    box->SetContent(text);
  }

  QWidget window;
  EntryBox* box;
  int edits = 0;
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

const std::vector<InsertCase> InsertCases = {
    {FreeText, 24, "GSM", 3, 0, " 900", "GSM 900", 7},
    {FreeText, 5, "GSM", 3, 0, " 900", "GSM 9", 5},
    {FreeText, 3, "GSM", 3, 0, "X", "GSM", 3},
    {FreeText, 3, "GSM", 1, 1, "x", "GxM", 2},
    {FreeText, 24, "aa", 1, 0, "a", "aaa", 2},
    {WholeNumber, 7, "12", 1, 0, "9", "192", 2},
    {WholeNumber, 7, "12", 2, 0, ".5", "125", 3},
    {WholeNumber, 7, "12", 0, 2, "abc", "12", 2},
    {WholeNumber, 2, "12", 0, 2, "789", "78", 2},
    {DecimalNumber, 9, "1.5", 3, 0, ".7", "1.57", 4},
    {DecimalNumber, 9, "1.5", 0, 3, "2.2.5", "2.25", 4},
    {DecimalNumber, 9, "1.5", 1, 1, ".", "1.5", 2},
    {DecimalNumber, 9, "890.2000", 8, 0, "777", "890.20007", 9},
    {DecimalNumber, 9, "", 0, 0, "890,2 MHz", "8902", 4},
    {UnknownMode, 9, "1", 1, 0, "2a.", "1", 1},
};

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
    // "." over "." is a change to the user, and nothing else that leaves the text as it was is one.
    const bool typedOver = GetParam().Inserted == ".";
    EXPECT_EQ(edits > 0, typedOver || GetParam().Expected != GetParam().Former);
  }
};

TEST_P(Insertions, ByTyping) {
  Type(GetParam().Inserted.toStdString());
  ExpectOutcome();
}

TEST_P(Insertions, ByTheKeyboardsPaste) {
  QGuiApplication::clipboard()->setText(GetParam().Inserted);
  QTest::keySequence(box, QKeySequence::Paste);
  ExpectOutcome();
}

TEST_P(Insertions, ByTheContextMenusPaste) {
  QGuiApplication::clipboard()->setText(GetParam().Inserted);
  box->paste();
  ExpectOutcome();
}

INSTANTIATE_TEST_SUITE_P(EntryBox, Insertions, ::testing::ValuesIn(InsertCases));

TEST_F(EntryBoxTest, DroppedTextIsFiltered) {
  Hold(DecimalNumber, 9, "");
  QMimeData dropped;
  dropped.setText("89O.5x.1");
  QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(box, &enter);
  QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(box, &drop);
  EXPECT_EQ(box->text(), "89.51");
  EXPECT_GT(edits, 0);
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

struct FocusCase {
  Qt::FocusReason Reason;
  bool Lost;
};

TEST_F(EntryBoxTest, MenusListsAndOtherProgramsOnlyBorrowTheFocus) {
  int losses = 0;
  QObject::connect(box, &EntryBox::FocusLost, box, [&] { ++losses; });
  for (const FocusCase& given : {FocusCase{Qt::PopupFocusReason, false},
                                 {Qt::MenuBarFocusReason, false},
                                 {Qt::ActiveWindowFocusReason, false},
                                 {Qt::MouseFocusReason, true},
                                 {Qt::TabFocusReason, true},
                                 {Qt::OtherFocusReason, true}}) {
    losses = 0;
    QFocusEvent out(QEvent::FocusOut, given.Reason);
    QApplication::sendEvent(box, &out);
    EXPECT_EQ(losses, given.Lost ? 1 : 0) << given.Reason;
  }
}

struct KeyCase {
  Qt::Key Key;
  const char* Signal;
};

TEST_F(EntryBoxTest, KeysWithAMeaningOfTheirOwn) {
  std::vector<std::string> heard;
  QObject::connect(box, &EntryBox::Accepted, box, [&] { heard.emplace_back("accepted"); });
  QObject::connect(box, &EntryBox::Cancelled, box, [&] { heard.emplace_back("cancelled"); });
  QObject::connect(box, &EntryBox::Backspaced, box, [&] { heard.emplace_back("backspaced"); });
  QObject::connect(box, &EntryBox::Stepped, box, [&](int by) { heard.push_back("step " + std::to_string(by)); });
  const std::vector<KeyCase> cases = {
      {Qt::Key_Return, "accepted"}, {Qt::Key_Enter, "accepted"}, {Qt::Key_Escape, "cancelled"},
      {Qt::Key_Up, "step 1"},       {Qt::Key_Down, "step -1"},   {Qt::Key_Backspace, "backspaced"},
  };
  Hold(FreeText, 24, "");
  for (const KeyCase& expected : cases) {
    heard.clear();
    Press(expected.Key);
    EXPECT_EQ(heard, std::vector<std::string>{expected.Signal});
    EXPECT_EQ(box->text(), "");
  }
  EXPECT_EQ(edits, 0);
}

}  // namespace
}  // namespace chanplan::testing
