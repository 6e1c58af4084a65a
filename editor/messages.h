// Message boxes that show their text as it stands, whatever characters a path has in it.
#pragma once

#include <QMessageBox>
#include <QString>
#include <map>

namespace chanplan {

/// `words` (not empty) with a capital letter and a full stop.
inline QString Sentence(QString words) {
  words[0] = words[0].toUpper();
  return words.endsWith('.') ? words : words + '.';
}

/// Shows `text` over `owner` until the user answers with one of `buttons`, which is returned. `text`
/// may hold TABs; lines are separated by LF or CR LF. `captions` are of buttons that say more than Yes or
/// No; `assumed` is what the Enter key means.
QMessageBox::StandardButton Ask(QWidget& owner, QMessageBox::Icon icon, const QString& title, const QString& text,
                                QMessageBox::StandardButtons buttons,
                                const std::map<QMessageBox::StandardButton, QString>& captions = {},
                                QMessageBox::StandardButton assumed = QMessageBox::NoButton);

/// The same with an OK button.
inline void ShowMessage(QWidget& owner, const QString& text, const QString& title = {},
                        QMessageBox::Icon icon = QMessageBox::NoIcon) {
  Ask(owner, icon, title, text, QMessageBox::Ok);
}

/// The same for a failure.
inline void ShowFailure(QWidget& owner, const QString& title, const QString& text) {
  ShowMessage(owner, text, title, QMessageBox::Critical);
}

}  // namespace chanplan
