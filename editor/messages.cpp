#include "editor/messages.h"

#include <QLabel>

namespace chanplan {

QMessageBox::StandardButton Ask(QWidget& owner, QMessageBox::Icon icon, const QString& title, const QString& text,
                                QMessageBox::StandardButtons buttons) {
  QMessageBox box(icon, title, QString(text).replace("\r\n", "\n"), buttons, &owner);
  box.setTextFormat(Qt::PlainText);
  // Columns behind TABs stay columns.
  for (QLabel* label : box.findChildren<QLabel*>())
    label->setAlignment(label->alignment() | static_cast<Qt::Alignment>(Qt::TextExpandTabs));
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace chanplan
