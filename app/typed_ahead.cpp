#include "app/typed_ahead.h"

#include <QApplication>
#include <QEvent>
#include <QWindow>

namespace chanplan {
namespace {

QWindow* WindowWithTheKeyboard() {
  const QWidget* widget = QApplication::activePopupWidget();
  if (widget == nullptr) widget = QApplication::activeModalWidget();
  if (widget == nullptr) widget = QApplication::activeWindow();
  return widget == nullptr ? nullptr : widget->windowHandle();
}

}  // namespace

TypedAheadKeys::TypedAheadKeys() { qApp->installEventFilter(this); }

bool TypedAheadKeys::eventFilter(QObject* watched, QEvent* event) {
  // The first event of each key. Some menus close by that of theirs, so that the rest of it finds them closed.
  const bool begins = event->type() == QEvent::ShortcutOverride;
  if (!begins && event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease) return false;
  if (!watched->isWindowType()) return false;
  const bool closed = !static_cast<QWindow*>(watched)->isVisible();
  if (begins) late = closed;
  QWindow* const other = WindowWithTheKeyboard();
  if (!closed || !late || other == nullptr || !other->isVisible()) return false;
  QCoreApplication::sendEvent(other, event);
  if (begins) late = true;  // on its second way through here it was not
  return true;
}

}  // namespace chanplan
