#include "app/access_keys.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QShortcutEvent>

namespace chanplan {
namespace {

// With Alt. A key of two buttons only goes from one to the other.
QAbstractButton* Pressed(QObject* watched, const QShortcutEvent& key) {
  auto* button = qobject_cast<QAbstractButton*>(watched);
  return button != nullptr && !key.isAmbiguous() && key.key() == button->shortcut() ? button : nullptr;
}

// A message box, where nothing can be typed, takes the letter alone.
QAbstractButton* Pressed(QObject* watched, const QKeyEvent& key) {
  const auto* box = qobject_cast<QMessageBox*>(watched);
  if (box == nullptr || (key.modifiers() & (Qt::AltModifier | Qt::ControlModifier | Qt::MetaModifier)) != 0)
    return nullptr;
  for (QAbstractButton* button : box->buttons())
    if (!button->shortcut().isEmpty() && button->shortcut()[0].key() == key.key()) return button;
  return nullptr;
}

}  // namespace

AccessKeys::AccessKeys() { qApp->installEventFilter(this); }

bool AccessKeys::eventFilter(QObject* watched, QEvent* event) {
  QAbstractButton* button = nullptr;
  if (event->type() == QEvent::Shortcut) button = Pressed(watched, *static_cast<QShortcutEvent*>(event));
  if (event->type() == QEvent::KeyPress) button = Pressed(watched, *static_cast<QKeyEvent*>(event));
  if (button == nullptr) return false;
  if (button->isCheckable() && (button->focusPolicy() & Qt::ClickFocus) != 0) button->setFocus(Qt::ShortcutFocusReason);
  button->click();
  return true;
}

}  // namespace chanplan
