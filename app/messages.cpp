#include "app/messages.h"

#include <QLabel>

namespace chanplan {

void ShowMessage(QWidget& owner, const QString& text, const QString& title, QMessageBox::Icon icon) {
  QMessageBox box(icon, title, QString(text).replace("\r\n", "\n"), QMessageBox::Ok, &owner);
  box.setTextFormat(Qt::PlainText);
  // Columns behind TABs stay columns.
  for (QLabel* label : box.findChildren<QLabel*>())
    label->setAlignment(label->alignment() | static_cast<Qt::Alignment>(Qt::TextExpandTabs));
  box.exec();
}

}  // namespace chanplan
