#include "app/messages.h"

#include "editor/messages.h"

namespace chanplan {

void ShowMessage(QWidget& owner, const QString& text, const QString& title, QMessageBox::Icon icon) {
  Ask(owner, icon, title, text, QMessageBox::Ok);
}

}  // namespace chanplan
