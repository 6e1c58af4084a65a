// Editing a cell in place: the box and the two lists that are laid over it.
#pragma once

#include <QComboBox>
#include <QObject>
#include <QString>
#include <optional>

#include "editor/entry_box.h"
#include "editor/grid.h"

namespace chanplan {

/// A cell whose text is no longer the table's alone: an editor is open over it, or it was cut.
struct CellEdit {
  Grid* EditedGrid = nullptr;
  int Row = 0;
  int Column = 0;
  QString Original;            ///< its text before
  bool Edited = false;         ///< a key was accepted or another choice made, whatever the text is now
  QWidget* Control = nullptr;  ///< the box or the list over it; null once it was cut without one

  bool IsCell(const Grid* grid, int row, int column) const {
    return EditedGrid == grid && Row == row && Column == column;
  }
};

/// Owns the one edit that may be open in a document. What is typed shows in the cell at once; the
/// table is nobody's business here: whoever closes an edit stores what it says.
class CellEditor : public QObject {
  Q_OBJECT

 public:
  /// Makes the controls, all of them hidden, in `area`, where the grids are too.
  explicit CellEditor(QWidget& area);

  const std::optional<CellEdit>& Open() const { return edit; }
  bool IsOpen() const { return edit && edit->Control != nullptr; }

  /// Lays the box over the current cell of `grid`. With `typed`, that replaces the cell's text;
  /// Backspace leaves none.
  void OpenBox(Grid& grid, std::optional<QChar> typed);
  /// Lays `list` over the current cell of `grid`, with its entry `chosen`; -1 for none.
  void OpenList(Grid& grid, QComboBox& list, int chosen);
  /// Empties the current cell of `grid`, in the box where that is open over it. A choice stays.
  void Cut(Grid& grid);

  /// Ends the edit. It comes back, its text in its cell, when there is something to store.
  std::optional<CellEdit> Close();

  /// Keeps the control over its cell, wherever that is now.
  void Place();

  EntryBox* txtEntry;
  QComboBox* cmboSelected;
  QComboBox* cmboModType;

 signals:
  /// The cell shows another text of its edit.
  void Mirrored(const CellEdit& edit, const QString& text);
  /// The user did something to the text.
  void TextEdited();
  /// The user leaves the cell with a key or for another control: the edit is to be closed.
  void Left();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  CellEdit& EditCurrentCell(Grid& grid);
  void Show(QWidget& control);
  void Mirror(const QString& text);
  void Cancel();
  void LeaveByKey(QKeyEvent& key);
  bool LeavesBy(const QKeyEvent& key) const;

  QWidget& area;
  std::optional<CellEdit> edit;
};

}  // namespace chanplan
