// The edit box that is laid over a cell, and the filter for what gets into it.
#pragma once

#include <QLineEdit>
#include <QSet>
#include <QValidator>

namespace chanplan {

enum EntryMode : qint16 { FreeText = 0, WholeNumber = 1, DecimalNumber = 2 };

/// Lets in what the entry mode allows: each character that is typed, and a text that comes in one
/// piece as a whole or not at all. What the box held before may always come back, so that undoing
/// gives back texts that could not be typed, and nothing else.
class EntryFilter : public QValidator {
 public:
  using QValidator::QValidator;

  qint16 EntryMode = FreeText;  ///< an unknown mode accepts nothing
  qint16 EntryMaxLength = 0;

  /// Whether `inserted` may be put into a box that holds `text` besides the selected text.
  bool Accepts(const QString& inserted, const QString& text) const;

  /// Begins anew with a box that holds `text`.
  void SetContent(const QString& text);

  State validate(QString& candidate, int& cursor) const override;

 private:
  mutable QString content;  // as it was before the change that is being looked at
  mutable QSet<QString> held;
};

class EntryBox : public QLineEdit {
  Q_OBJECT

 public:
  explicit EntryBox(QWidget* parent);

  EntryFilter& Filter() { return *filter; }
  /// Replaces the text without filtering it; there is nothing to undo then.
  void SetContent(const QString& text);
  /// Replaces the text as a user does it, who can undo it.
  void Replace(const QString& text);

 signals:
  /// A key was accepted, also one that left the text as it was, or a text came in.
  void Edited();
  /// A text that was pasted or dropped cannot stand here.
  void Refused(const QString& text);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void TakeIn(const QString& text);

  EntryFilter* filter;
};

/// Whether the focus went to another control, not to a menu, a list that dropped down or another program.
bool FocusMovedOn(const QFocusEvent& event);

}  // namespace chanplan
