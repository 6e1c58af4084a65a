// The document window: clipboard, insertion and deletion.
#include <QClipboard>
#include <QGuiApplication>

#include "core/table_edits.h"
#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/messages.h"

namespace chanplan {
namespace {

struct Selection {
  int First;
  int Last;
};

// Table indices of the first and the last standard of the list selection.
std::optional<Selection> SelectedStandards(const Grid& list) {
  if (list.currentRow() < 0) return std::nullopt;
  int top = list.currentRow();
  int bottom = top;
  for (const QTableWidgetSelectionRange& range : list.selectedRanges()) {
    top = qMin(top, range.topRow());
    bottom = qMax(bottom, range.bottomRow());
  }
  return Selection{list.CellText(top, 2).toInt(), list.CellText(bottom, 2).toInt()};
}

}  // namespace

void frmDocument::CopyCut(bool Cut) {
  if (ActiveGrid == GridList) {
    CommitEdit();
    CopyStandards();
    if (Cut) DeleteStandards();
  } else if (ActiveGrid->currentItem() != nullptr) {
    const int row = ActiveGrid->currentRow();
    const int column = ActiveGrid->currentColumn();
    QGuiApplication::clipboard()->setText(ActiveGrid->CellText(row, column));
    if (Cut) {
      if (txtEntry->isVisible()) {
        txtEntry->SetContent("");
        MirrorEntry("");
      } else {
        ActiveGrid->EditCell(row, column, "");
      }
    }
  }
  if (Cut) MarkChanged();
}

void frmDocument::CopyStandards() {
  const auto selection = SelectedStandards(*GridList);
  if (!selection) return;
  shared.StandardClipboard = chanplan::CopyStandards(table, selection->First, selection->Last);
  shared.StandardClipboardFull = true;
}

void frmDocument::DeleteStandards() {
  const auto selection = SelectedStandards(*GridList);
  if (!selection) return;
  chanplan::DeleteStandards(table, selection->First, selection->Last);
  MarkChanged();
  RefillAfterEdit();
}

void frmDocument::Paste() {
  if (ActiveGrid == GridList && shared.StandardClipboardFull) {
    CommitEdit();
    if (PasteFillsTable(table, shared.StandardClipboard) &&
        Ask(*this, QMessageBox::Question, frame.ApplicationTitle(),
            "Too many bands are on the clipboard.  The list will be truncated.",
            QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok)
      return;
    PasteStandards(table, qMax(SelectedIndex(), 0), shared.StandardClipboard);
    RefillAfterEdit();
  }
  MarkChanged();
}

void frmDocument::InsertBlank() {
  CommitEdit();
  if (!AppendBlankStandard(table)) {
    ShowFailure(*this, "Warning:  Maximum size reached.",
                "You are at the limit (200) of allowed records.  Another signal standard or sub-band "
                "cannot be added.");
    return;
  }
  MarkChanged();
  RefillAfterEdit();
}

bool frmDocument::SetSubbandCount(int count) {
  // A damaged count that does not match the rows is put right first. Then one at a time, through
  // the spin control, until that refuses.
  if (table.Row(shownIndex).Subbands != SubbandRows()) {
    table.Row(shownIndex).Subbands = SubbandRows();
    MarkChanged();
  }
  {
    const QSignalBlocker silent(UpDown);
    UpDown->setValue(table.Row(shownIndex).Subbands);
  }
  while (table.Row(shownIndex).Subbands != count) {
    const int former = table.Row(shownIndex).Subbands;
    UpDown->setValue(former + (count > former ? 1 : -1));
    if (table.Row(shownIndex).Subbands == former) return false;
  }
  return true;
}

void frmDocument::UpDown_Change(int value) {
  if (shownIndex < 0) return;
  const int former = table.Row(shownIndex).Subbands;
  if (value == former) return;
  if (value > former && !AddSubband(table, shownIndex)) {
    UpDown->setValue(former);
    ShowFailure(*this, "Warning:  Size limit reached.",
                "You have reached the maximum number of records in the Signal Standard table. Cannot add "
                "another sub-band.");
    return;
  }
  if (value < former) RemoveSubband(table, shownIndex);
  MarkChanged();
  if (storing) return;  // a typed count is shown once, when all its steps are done
  FillStandardList();
  ShowStandard();
}

}  // namespace chanplan
