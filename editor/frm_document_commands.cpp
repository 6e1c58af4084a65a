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
  int Row = 0;  // of the list: the first one selected
  int First = 0;
  int Last = 0;
  int Standards = 0;
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
  return Selection{top, list.CellText(top, 2).toInt(), list.CellText(bottom, 2).toInt(), bottom - top + 1};
}

int StandardsAmong(const std::vector<SignalStandardRecord>& records) {
  int standards = 0;
  for (std::size_t row = 0; row < records.size(); row += 1 + static_cast<std::size_t>(qMax(records[row].Subbands, 0)))
    ++standards;
  return standards;
}

QString StepName(const char* deed, int standards) {
  return QString(standards == 1 ? "%1 of %2 standard" : "%1 of %2 standards").arg(deed).arg(standards);
}

}  // namespace

void frmDocument::CopyCut(bool Cut) {
  if (ActiveGrid == GridList) {
    CommitEdit();
    CopyStandards();
    if (Cut) DeleteStandards("cut");
  } else if (ActiveGrid->currentItem() != nullptr) {
    QGuiApplication::clipboard()->setText(ActiveGrid->CellText(ActiveGrid->currentRow(), ActiveGrid->currentColumn()));
    if (Cut && shownIndex >= 0) editor.Cut(*ActiveGrid);
  }
  if (Cut) MarkChanged();
}

void frmDocument::CopyStandards() {
  const auto selection = SelectedStandards(*GridList);
  if (!selection) return;
  shared.StandardClipboard = chanplan::CopyStandards(table, selection->First, selection->Last);
  shared.StandardClipboardFull = true;
}

void frmDocument::DeleteStandards(const char* deed) {
  const auto selection = SelectedStandards(*GridList);
  if (!selection) return;
  chanplan::DeleteStandards(table, selection->First, selection->Last);
  RefillAfterEdit(selection->Row, StepName(deed, selection->Standards));
}

void frmDocument::Paste() {
  if (ActiveGrid == GridList && shared.StandardClipboardFull) {
    CommitEdit();
    if (PasteFillsTable(table, shared.StandardClipboard) &&
        Ask(*this, QMessageBox::Question, frame.ApplicationTitle(),
            "Too many bands are on the clipboard.  The list will be truncated.",
            QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok)
      return;
    const Selection at = SelectedStandards(*GridList).value_or(Selection());
    PasteStandards(table, at.First, shared.StandardClipboard);
    RefillAfterEdit(at.Row, StepName("paste", StandardsAmong(shared.StandardClipboard)));
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
  RefillAfterEdit(GridList->currentRow(), "new standard");
  const int added = GridList->rowCount() - 1;
  GridList->scrollToItem(GridList->item(added, 1));
  KeepInSight(*GridList, GridList->model()->index(added, 1));
  frame.ShowRemark(GridList->CellText(added, 1) + " is number " + QString::number(added + 1) + " of the list.");
}

// The count is typed, but whoever drives the control otherwise gets what its value says.
void frmDocument::UpDown_Change(int value) {
  if (shownIndex < 0 || value == table.Row(shownIndex).Subbands) return;
  ChangeCount(value, "edit of Sub-bands");
}

void frmDocument::ChangeCount(int count, const QString& step) {
  StoreCount(count);
  RefillAfterEdit(GridList->currentRow(), step);
}

}  // namespace chanplan
