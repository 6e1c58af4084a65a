// The list of warnings below the documents.
#pragma once

#include <QListWidget>
#include <QMenu>

namespace chanplan {

/// One line a warning, of TAB-separated fields: "Warning:", the name of the standard, the message.
class WarningsPane : public QListWidget {
  Q_OBJECT

 public:
  explicit WarningsPane(QWidget* parent);

  /// Shows the lines of `WarningText`, which are separated by CR LF; what follows the last CR LF is
  /// a line too. Selects line `SelIndex` if there is one; -1 keeps the selected line's index.
  void Fill(const QString& WarningText, int SelIndex);
  /// The text that is shown.
  const QString& Text() const { return text; }

 signals:
  /// " 3 warnings.", or " 1 of 3 warnings." once a line was clicked.
  void CountChanged(const QString& count);
  /// Line `line`, which names a standard, was clicked.
  void EntryClicked(const QString& name, int line);
  /// The user is done here: a line was clicked with the mouse, or Enter pressed on it.
  void LineLeft();
  /// The context menu is about to be shown; others may add to it.
  void MenuOpens(QMenu& menu);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  int SelectedIndex() const;
  void Select(int index);
  void Click();
  void ShowPosition();
  void LeaveLine();
  QPoint MenuPlace() const;
  void ShowContextMenu(const QPoint& at);

  QString text;
  bool filling = false;
};

}  // namespace chanplan
