// The bar at a document's lower edge that looks for names, frequencies and channels.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

namespace chanplan {

/// Takes what is looked for; the document looks and says what it found.
class FindBar : public QWidget {
  Q_OBJECT

 public:
  explicit FindBar(QWidget* parent);

  /// Takes the keyboard, ready for another text.
  void Begin();
  /// `text` is cut where its room ends.
  void ShowOutcome(const QString& text);

  QLineEdit* txtFind;
  QCheckBox* chkFindAll;  ///< look in all documents

 signals:
  /// The text, or where to look for it, is another one.
  void Edited();
  void NextWanted(bool forwards);
  void Closed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QLabel* lblFind;
  QString outcome;
};

}  // namespace chanplan
