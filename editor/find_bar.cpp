#include "editor/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTextDocument>
#include <QToolButton>

namespace chanplan {
namespace {

QToolButton* ArrowButton(const char* name, Qt::ArrowType arrow, const char* text) {
  auto* button = new QToolButton;
  button->setObjectName(name);
  button->setAutoRaise(true);
  button->setArrowType(arrow);
  button->setToolTip(text);
  button->setAccessibleName(text);
  button->setFocusPolicy(Qt::TabFocus);
  return button;
}

}  // namespace

FindBar::FindBar(QWidget* parent)
    : QWidget(parent), txtFind(new QLineEdit), chkFindAll(new QCheckBox("&All tables")), lblFind(new QLabel) {
  setObjectName("FindBar");
  setAutoFillBackground(true);  // the grids below it may be higher than their room
  setFocusPolicy(Qt::ClickFocus);
  setFocusProxy(txtFind);  // for clicks on whatever does not take the keyboard
  txtFind->setObjectName("txtFind");
  txtFind->setAccessibleName("Find");
  txtFind->setPlaceholderText("Name, MHz or channel");
  txtFind->setToolTip(R"(A part of a name, "935.2", "935 MHz" or "channel 700")");
  chkFindAll->setObjectName("chkFindAll");
  chkFindAll->setToolTip("Look in all tables that are open");
  chkFindAll->setFocusPolicy(Qt::TabFocus);  // Alt+A leaves the keyboard to the field
  lblFind->setObjectName("lblFind");
  lblFind->setTextFormat(Qt::PlainText);
  QToolButton* previous = ArrowButton("bttnFindPrevious", Qt::UpArrow, "Previous (Shift+Enter)");
  QToolButton* next = ArrowButton("bttnFindNext", Qt::DownArrow, "Next (Enter)");
  QToolButton* close = ArrowButton("bttnFindClose", Qt::NoArrow, "Close (Esc)");
  close->setText(QChar(0x00D7));

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(2, 1, 2, 1);
  row->setSpacing(4);
  row->addWidget(txtFind, 2);
  row->addWidget(previous);
  row->addWidget(next);
  row->addWidget(chkFindAll);
  row->addWidget(lblFind, 3);
  row->addWidget(close);
  lblFind->setMinimumWidth(1);  // a long name must not widen the document

  connect(txtFind, &QLineEdit::textEdited, this, &FindBar::Edited);
  connect(chkFindAll, &QCheckBox::toggled, this, &FindBar::Edited);
  connect(previous, &QToolButton::clicked, this, [this] { emit NextWanted(false); });
  connect(next, &QToolButton::clicked, this, [this] { emit NextWanted(true); });
  connect(close, &QToolButton::clicked, this, &FindBar::Closed);
}

void FindBar::Begin() {
  txtFind->selectAll();
  txtFind->setFocus(Qt::ShortcutFocusReason);
}

void FindBar::ShowOutcome(const QString& text) {
  outcome = text;
  const QString shown = lblFind->fontMetrics().elidedText(text, Qt::ElideRight, lblFind->width());
  lblFind->setText(shown);
  lblFind->setToolTip(shown == text ? QString() : Qt::convertFromPlainText(text));
  lblFind->setAccessibleName(text);
}

void FindBar::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layout()->activate();
  ShowOutcome(outcome);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    emit Closed();
  else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    emit NextWanted((event->modifiers() & Qt::ShiftModifier) == 0);
  else
    QWidget::keyPressEvent(event);
}

}  // namespace chanplan
