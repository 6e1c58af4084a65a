// The edit box that is laid over a cell, and the filter for what gets into it.
#pragma once

#include <QLineEdit>
#include <QValidator>

namespace chanplan {

enum EntryMode : qint16 { FreeText = 0, WholeNumber = 1, DecimalNumber = 2 };

/// Lets in what the entry mode allows, character by character, however it comes: typed, pasted or
/// dropped. Characters that are refused are left out; the others go in as long as there is room.
class EntryFilter : public QValidator {
 public:
  using QValidator::QValidator;

  qint16 EntryMode = FreeText;  ///< an unknown mode accepts nothing
  qint16 EntryMaxLength = 0;

  /// Whether `character` may be inserted into a box that holds `text` besides the selected text.
  bool Accepts(QChar character, const QString& text) const;

  /// Makes `text` the content against which the next change is seen.
  void SetContent(const QString& text) { content = text; }

  State validate(QString& candidate, int& cursor) const override;

 private:
  mutable QString content;  // as it was before the change that is being looked at
};

class EntryBox : public QLineEdit {
  Q_OBJECT

 public:
  explicit EntryBox(QWidget* parent);

  EntryFilter& Filter() { return *filter; }
  /// Replaces the text without filtering it.
  void SetContent(const QString& text);

 signals:
  void Accepted();              ///< Enter
  void Cancelled();             ///< Escape
  void Stepped(int direction);  ///< the Up key, 1, or the Down key, -1
  void Backspaced();
  void FocusLost();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  EntryFilter* filter;
};

/// Whether the focus went to another control, not to a menu, a list that dropped down or another program.
bool FocusMovedOn(const QFocusEvent& event);

}  // namespace chanplan
