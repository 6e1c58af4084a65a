#include "editor/entry_box.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <algorithm>

namespace chanplan {

bool EntryFilter::Accepts(QChar character, const QString& text) const {
  if (text.size() >= EntryMaxLength) return false;
  const char16_t code = character.unicode();
  const bool digit = code >= '0' && code <= '9';
  switch (EntryMode) {
    case FreeText:
      return code >= 32 && code <= 126;
    case WholeNumber:
      return digit;
    case DecimalNumber:
      return digit || (code == '.' && !text.contains('.'));
    default:
      return false;
  }
}

QValidator::State EntryFilter::validate(QString& candidate, int& cursor) const {
  // What was inserted stands between the beginning and the end that both texts share. The cursor
  // stands behind it, which tells apart which of several like characters is new.
  const qsizetype shorter = std::min(content.size(), candidate.size());
  const qsizetype tailLimit = std::min<qsizetype>(shorter, candidate.size() - cursor);
  qsizetype tail = 0;
  while (tail < tailLimit && content[content.size() - 1 - tail] == candidate[candidate.size() - 1 - tail]) ++tail;
  qsizetype head = 0;
  while (head < shorter - tail && content[head] == candidate[head]) ++head;

  const QString kept = candidate.left(head) + candidate.right(tail);
  QString accepted;
  for (const QChar character : candidate.mid(head, candidate.size() - head - tail))
    if (Accepts(character, kept + accepted)) accepted += character;

  // Nothing of what came is let in: the selected text that it would have replaced stays, too.
  if (accepted.isEmpty() && candidate.size() > head + tail) return Invalid;
  candidate = candidate.left(head) + accepted + candidate.right(tail);
  cursor = static_cast<int>(head + accepted.size());
  content = candidate;
  return Acceptable;
}

EntryBox::EntryBox(QWidget* parent) : QLineEdit(parent), filter(new EntryFilter(this)) {
  setFrame(false);
  setAutoFillBackground(true);
  setValidator(filter);
}

void EntryBox::SetContent(const QString& text) {
  filter->SetContent(text);
  setText(text);
}

void EntryBox::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      emit Accepted();
      return;
    case Qt::Key_Escape:
      emit Cancelled();
      return;
    case Qt::Key_Up:
      emit Stepped(1);
      return;
    case Qt::Key_Down:
      emit Stepped(-1);
      return;
    default:
      break;
  }
  if (event->key() == Qt::Key_Backspace && !isReadOnly()) emit Backspaced();
  QLineEdit::keyPressEvent(event);
}

void EntryBox::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  if (FocusMovedOn(*event)) emit FocusLost();
}

bool FocusMovedOn(const QFocusEvent& event) {
  return event.reason() != Qt::PopupFocusReason && event.reason() != Qt::MenuBarFocusReason &&
         event.reason() != Qt::ActiveWindowFocusReason;
}

}  // namespace chanplan
