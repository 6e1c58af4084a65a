// Message boxes that show their text as it stands, whatever characters a path has in it.
#pragma once

#include <QMessageBox>
#include <QString>

namespace chanplan {

/// Shows `text` with an OK button over `owner` until the user closes it. `text` may hold TABs; lines
/// are separated by LF or CR LF.
void ShowMessage(QWidget& owner, const QString& text, const QString& title = {},
                 QMessageBox::Icon icon = QMessageBox::NoIcon);

}  // namespace chanplan
