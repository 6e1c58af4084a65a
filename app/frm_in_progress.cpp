#include "app/frm_in_progress.h"

#include <QCloseEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

#include "editor/text_edge.h"

namespace chanplan {
namespace {

constexpr int BarWidth = 320;  // pixels

}  // namespace

frmInProgress::frmInProgress(QWidget* frame, bool& abortFlag)
    : QDialog(frame),
      AbortRequested(abortFlag),
      LblPrompt(new QLabel),
      ProgressBar1(new QProgressBar),
      CmdAbort(new QPushButton("&Abort")) {
  setObjectName("frmInProgress");
  LblPrompt->setObjectName("LblPrompt");
  LblPrompt->setTextFormat(Qt::PlainText);
  ProgressBar1->setObjectName("ProgressBar1");
  ProgressBar1->setAccessibleName("Progress");
  ProgressBar1->setMinimumWidth(BarWidth);
  set_prog_bar_range(0, 100);
  CmdAbort->setObjectName("CmdAbort");
  CmdAbort->setAutoDefault(false);  // Enter does not abort
  connect(CmdAbort, &QPushButton::clicked, this, &QDialog::close);

  auto* column = new QVBoxLayout(this);
  column->setSizeConstraint(QLayout::SetFixedSize);
  column->addWidget(LblPrompt);
  column->addWidget(ProgressBar1);
  column->addWidget(CmdAbort, 0, Qt::AlignRight);
}

void frmInProgress::set_Label(const QString& text) { LblPrompt->setText(text); }

// Through the window, as the widget's own way would hide it and show it again.
void frmInProgress::Set_on_top(bool onTop) {
  winId();
  windowHandle()->setFlag(Qt::WindowStaysOnTopHint, onTop);
}

void frmInProgress::set_prog_bar_value(int value) {
  const int shown = qBound(ProgressBar1->minimum(), value, ProgressBar1->maximum());
  // Setting it takes time that the bytes of an upload do not have: only for another percentage, and at the end.
  const auto percent = [this](int of) {
    return (of - ProgressBar1->minimum()) * 100LL / qMax(ProgressBar1->maximum() - ProgressBar1->minimum(), 1);
  };
  if (shown == ProgressBar1->maximum() || percent(shown) != percent(ProgressBar1->value()))
    ProgressBar1->setValue(shown);
}

void frmInProgress::set_prog_bar_range(int low, int high) { ProgressBar1->setRange(low, high); }

void frmInProgress::ShowOverFrame() {
  CmdAbort->setEnabled(true);
  ensurePolished();
  layout()->activate();
  const QWidget& frame = *parentWidget();
  const QRect screenArea = frame.screen()->availableGeometry();
  QRect place(QPoint(), size() + frame.frameGeometry().size() - frame.size());  // decorated as the frame is
  place.moveCenter(frame.frameGeometry().center());
  move(qMax(screenArea.left(), qMin(place.left(), screenArea.right() + 1 - place.width())),
       qMax(screenArea.top(), qMin(place.top(), screenArea.bottom() + 1 - place.height())));
  show();
}

void frmInProgress::Finish() {
  delete question;
  hide();
}

void frmInProgress::Abort() {
  AbortRequested = true;
  set_Label("Aborting...");
  CmdAbort->setEnabled(false);  // it cannot be asked for more often than once
}

void frmInProgress::SetLabel(std::string_view text) { set_Label(TextOf(text)); }

void frmInProgress::SetCaption(std::string_view text) { setWindowTitle(TextOf(text)); }

void frmInProgress::closeEvent(QCloseEvent* event) {
  event->ignore();
  AskToAbort();
}

// Not with a loop of its own: the bytes that are on their way would wait for the answer.
void frmInProgress::AskToAbort() {
  if (question != nullptr) return question->activateWindow();
  Set_on_top(false);
  question = new QMessageBox(QMessageBox::Question, windowTitle(), "Interrupting the current process?",
                             QMessageBox::Yes | QMessageBox::No, this);
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setDefaultButton(QMessageBox::No);
  connect(question, &QMessageBox::finished, this, [this](int answer) {
    if (answer == QMessageBox::Yes) Abort();
    Set_on_top(true);
  });
  question->open();
  question->raise();
  question->activateWindow();
}

}  // namespace chanplan
