#include "editor/messages.h"

#include <QLabel>
#include <QPushButton>

namespace chanplan {

QMessageBox::StandardButton Ask(QWidget& owner, QMessageBox::Icon icon, const QString& title, const QString& text,
                                QMessageBox::StandardButtons buttons,
                                const std::map<QMessageBox::StandardButton, QString>& captions,
                                QMessageBox::StandardButton assumed) {
  QMessageBox box(icon, title, QString(text).replace("\r\n", "\n"), buttons, &owner);
  box.setTextFormat(Qt::PlainText);
  for (const auto& [button, caption] : captions) box.button(button)->setText(caption);
  box.setDefaultButton(assumed);
  // Columns behind TABs stay columns.
  for (QLabel* label : box.findChildren<QLabel*>())
    label->setAlignment(label->alignment() | static_cast<Qt::Alignment>(Qt::TextExpandTabs));
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace chanplan
