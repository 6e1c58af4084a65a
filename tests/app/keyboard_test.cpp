// The keyboard between windows: keys that answer dialogs.
#include <QCheckBox>

#include "app/frm_upload_optns.h"
#include "editor/messages.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class AccessKey : public AppTest {};

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
