// The grid control of the document window: cells of text, moved through with the keyboard.
#pragma once

#include <QTableWidget>

namespace chanplan {

/// A table of text cells that does not edit them itself. It tells who should: `CellTyped` and
/// `EditRequested`. Columns before `firstValueColumn` hold titles and never are current.
class Grid : public QTableWidget {
  Q_OBJECT

 public:
  Grid(const QString& name, int firstValueColumn, QWidget* parent);

  /// Sets a cell that the program fills; `label` is what a screen reader says before the text, `exact`
  /// the value where the text is rounded.
  void FillCell(int row, int column, const QString& text, const QString& label = {}, const QString& exact = {});
  /// Sets a cell's text as the user changes it.
  void EditCell(int row, int column, const QString& text);
  QString CellText(int row, int column) const;
  QString CellLabel(int row, int column) const;
  /// Marks a cell whose value is doubtful, for the reasons in `doubt`, a line each; empty for none.
  void SetDoubt(int row, int column, const QString& doubt);

  /// Makes a cell current and alone selected, whatever keys are held.
  void SetCurrent(int row, int column);

  /// Alignment of a column's cells that are filled from now on.
  void SetColumnAlignment(int column, Qt::Alignment alignment);
  /// Makes the grid `rows` rows long, each `height` pixels high.
  void SetRows(int rows, int height);

 signals:
  /// The current cell was left for another one; -1 when none is current any more.
  void CurrentCellMoved(int row);
  void FocusGained();
  void FocusLost();
  /// A printable character, or Backspace, was pressed on the current cell.
  void CellTyped(QChar character);
  /// Enter or F2 was pressed, or the current cell double-clicked.
  void EditRequested();
  void DeleteReleased();
  /// The right button was pressed, or a key for the context menu, which belongs at `at` on the screen.
  /// `onCell`: it is about the current cell, not about the room beside the cells.
  void MenuRequested(const QPoint& at, bool onCell);
  /// Tab, or Shift+Tab for backwards, was pressed.
  void Tabbed(bool forwards);

 protected:
  bool focusNextPrevChild(bool next) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;
  void initViewItemOption(QStyleOptionViewItem* option) const override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  void SetText(QTableWidgetItem& cell, const QString& text);
  QPoint MenuPlace() const;
  QString ToolTipText(const QModelIndex& index) const;
  QTableWidgetItem& Cell(int row, int column);

  int firstColumn;
  QHash<int, Qt::Alignment> alignments;
};

}  // namespace chanplan
