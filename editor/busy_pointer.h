// The pointer that says that the program is at work.
#pragma once

#include <QWidget>

namespace chanplan {

/// Shows it over a widget, for as long as this lives. Of several over one widget the first decides.
class BusyPointer {
 public:
  explicit BusyPointer(QWidget& shown) : widget(shown), first(!shown.testAttribute(Qt::WA_SetCursor)) {
    widget.setCursor(Qt::WaitCursor);
  }
  ~BusyPointer() {
    if (first) widget.unsetCursor();
  }
  Q_DISABLE_COPY_MOVE(BusyPointer)

 private:
  QWidget& widget;
  bool first;
};

}  // namespace chanplan
