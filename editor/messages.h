// Message boxes that show their text as it stands, whatever characters a path has in it.
#pragma once

#include <QMessageBox>
#include <QString>

namespace chanplan {

/// Shows `text` over `owner` until the user answers with one of `buttons`, which is returned. `text`
/// may hold TABs; lines are separated by LF or CR LF.
QMessageBox::StandardButton Ask(QWidget& owner, QMessageBox::Icon icon, const QString& title, const QString& text,
                                QMessageBox::StandardButtons buttons);

/// The same for a failure, with an OK button.
inline void ShowFailure(QWidget& owner, const QString& title, const QString& text) {
  Ask(owner, QMessageBox::Critical, title, text, QMessageBox::Ok);
}

}  // namespace chanplan
