// What differs between two tables, in a window of its own.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QTableWidget>
#include <QTimer>
#include <vector>

#include "app/command_frame.h"
#include "core/table_difference.h"

namespace chanplan {

/// One side of a comparison: a document that is open, a file as it is on the disk, or a table that stays as it is.
struct ComparedTable {
  QPointer<DocumentWindow> Document;
  QString File = {};               ///< where there is no document
  SignalStandardTable Table = {};  ///< of the file, as it was read last, or what stays
  std::optional<FileStamp> Read = {};
  QString Title = {};  ///< of a table that is neither a document's nor a file's

  /// As validation leaves them: units and files may have other names for sub-bands, which are not shown.
  SignalStandardTable Rows() const;
  QString Name() const;
  /// Reads a file again that has changed. False when it cannot be read: what was read last stays.
  bool Update();
};

/// Lists the differences, and follows both tables. A click on one goes to its place: to the right table
/// in the column of its values, else to the left one. It stays above the frame, and ends with either document.
class CompareWindow : public QDialog {
  Q_OBJECT

 public:
  CompareWindow(CommandFrame& mainFrame, DocumentWindow& leftDocument, ComparedTable rightTable);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Follow(DocumentWindow& document);
  void Refresh();
  void ShowNames();
  void ShowRow(int row, const SignalStandardTable& leftRows, const SignalStandardTable& rightRows);
  void GoTo(int row, int column);

  CommandFrame& frame;
  ComparedTable left;
  ComparedTable right;
  std::vector<TableDifference> differences;
  QTimer refresh;  // of many changes at once, one is shown
  QLabel* lblCompare;
  QTableWidget* lstDifferences;
  QLabel* lblCompareCount;
};

/// Shows the window, in place of one that is there.
void Compare(CommandFrame& frame, DocumentWindow& left, ComparedTable right);

}  // namespace chanplan
