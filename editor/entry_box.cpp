#include "editor/entry_box.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <algorithm>
#include <memory>

namespace chanplan {

bool EntryFilter::Accepts(const QString& inserted, const QString& text) const {
  if (text.size() + inserted.size() > EntryMaxLength) return false;
  const bool onePoint = text.count('.') + inserted.count('.') <= 1;
  return std::ranges::all_of(inserted, [&](QChar character) {
    const char16_t code = character.unicode();
    const bool digit = code >= '0' && code <= '9';
    switch (EntryMode) {
      case FreeText:
        return code >= 32 && code <= 126;
      case WholeNumber:
        return digit;
      case DecimalNumber:
        return digit || (code == '.' && onePoint);
      default:
        return false;
    }
  });
}

void EntryFilter::SetContent(const QString& text) {
  content = text;
  held = {text};
}

QValidator::State EntryFilter::validate(QString& candidate, int& cursor) const {
  if (!held.contains(candidate)) {
    // What was inserted stands between the beginning and the end that both texts share. The cursor
    // stands behind it, which tells apart which of several like characters is new.
    const qsizetype shorter = std::min(content.size(), candidate.size());
    const qsizetype tailLimit = std::min<qsizetype>(shorter, candidate.size() - cursor);
    qsizetype tail = 0;
    while (tail < tailLimit && content[content.size() - 1 - tail] == candidate[candidate.size() - 1 - tail]) ++tail;
    qsizetype head = 0;
    while (head < shorter - tail && content[head] == candidate[head]) ++head;
    const QString inserted = candidate.mid(head, candidate.size() - head - tail);
    if (!inserted.isEmpty() && !Accepts(inserted, candidate.left(head) + candidate.right(tail))) return Invalid;
    held.insert(candidate);
  }
  content = candidate;
  return Acceptable;
}

EntryBox::EntryBox(QWidget* parent) : QLineEdit(parent), filter(new EntryFilter(this)) {
  setFrame(false);
  setAutoFillBackground(true);
  setValidator(filter);
  connect(this, &QLineEdit::textEdited, this, &EntryBox::Edited);
}

void EntryBox::SetContent(const QString& text) {
  filter->SetContent(text);
  setText(text);
}

void EntryBox::Replace(const QString& text) {
  selectAll();
  insert(text);
}

void EntryBox::TakeIn(const QString& given) {
  const QString besides = text().left(hasSelectedText() ? selectionStart() : cursorPosition()) +
                          text().mid(hasSelectedText() ? selectionEnd() : cursorPosition());
  for (const QString& candidate : {given, given.trimmed()})
    if (filter->Accepts(candidate, besides)) return insert(candidate);
  emit Refused(given);
}

// The cell that is edited is the strongest mark, as the current one is otherwise.
void EntryBox::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  if (!hasFocus()) return;
  QPainter painter(this);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void EntryBox::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Paste)) return TakeIn(QGuiApplication::clipboard()->text());
  const QString former = text();
  QLineEdit::keyPressEvent(event);
  if (event->key() == Qt::Key_Backspace && text() == former) emit Edited();
}

// The middle button pastes what is selected anywhere, where the desktop has such a habit.
void EntryBox::mouseReleaseEvent(QMouseEvent* event) {
  const QClipboard& clipboard = *QGuiApplication::clipboard();
  if (event->button() != Qt::MiddleButton || !clipboard.supportsSelection()) return QLineEdit::mouseReleaseEvent(event);
  deselect();
  setCursorPosition(cursorPositionAt(event->position().toPoint()));
  TakeIn(clipboard.text(QClipboard::Selection));
}

void EntryBox::contextMenuEvent(QContextMenuEvent* event) {
  const std::unique_ptr<QMenu> menu(createStandardContextMenu());
  for (QAction* action : menu->actions()) {
    if (action->text().section('\t', 0, 0) != QLineEdit::tr("&Paste")) continue;
    action->disconnect(this);
    connect(action, &QAction::triggered, this, [this] { TakeIn(QGuiApplication::clipboard()->text()); });
  }
  menu->exec(event->globalPos());
}

void EntryBox::dropEvent(QDropEvent* event) {
  deselect();
  setCursorPosition(cursorPositionAt(event->position().toPoint()));
  event->acceptProposedAction();
  TakeIn(event->mimeData()->text());
}

bool FocusMovedOn(const QFocusEvent& event) {
  return event.reason() != Qt::PopupFocusReason && event.reason() != Qt::MenuBarFocusReason &&
         event.reason() != Qt::ActiveWindowFocusReason;
}

}  // namespace chanplan
