// The document window: editing cells and writing them back into the table.
#include "core/lenient_number.h"
#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/messages.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

constexpr QStringView DisplayModeLetters = u"SN";  // of the two entries, in their order

const DetailRow& DetailOf(int row) { return DetailRows[static_cast<std::size_t>(row)]; }
const BandColumn& BandOf(int column) { return BandColumns[static_cast<std::size_t>(column)]; }

// By the cell's title, without its unit.
QString StepName(const CellEdit& edit, const Grid* details) {
  const bool name = edit.IsCell(details, NameRow, 1);
  return "edit of " + (name ? "Name" : edit.EditedGrid->CellLabel(edit.Row, edit.Column).section(" (", 0, 0));
}

QString RefusalText(const CellEdit& edit, const QString& text, CellOutcome outcome) {
  return edit.EditedGrid->CellLabel(edit.Row, edit.Column) + ": \"" + text +
         (outcome == CellOutcome::OutOfRange ? "\" is out of range" : "\" is not a number") +
         "; the old value was kept.";
}

}  // namespace

void frmDocument::ConnectEditor() {
  connect(&editor, &CellEditor::TextEdited, this, &frmDocument::MarkChanged);
  connect(&editor, &CellEditor::Mirrored, this, [this](const CellEdit& edit, const QString& text) {
    if (edit.IsCell(GridDetails, NameRow, 1)) GridList->EditCell(GridList->currentRow(), 1, text);
  });
  connect(&editor, &CellEditor::Left, this, &frmDocument::CommitEdit);
  connect(editor.txtEntry, &EntryBox::Refused, this, [this](const QString& text) {
    constexpr int longest = 40;
    const QString line = text.simplified();
    const QString shown = line.size() > longest ? line.left(longest) + QChar(0x2026) : line;
    frame.ShowRemark("\"" + shown + "\" cannot stand in this cell, which stays as it is.");
  });
}

void frmDocument::BeginCellEdit(qint16 keyCode) {
  if (shownIndex < 0 || ActiveGrid == GridList || ActiveGrid->currentRow() < 0) return;
  ActiveGrid->scrollToItem(ActiveGrid->currentItem());
  KeepInSight(*ActiveGrid, ActiveGrid->currentIndex());  // the wheel may have moved it away
  const bool onDetails = ActiveGrid == GridDetails;
  const int row = ActiveGrid->currentRow();
  if (onDetails && (row == DisplayModeRow || row == ModulationRow)) return BeginListEdit(row);
  EntryFilter& filter = editor.txtEntry->Filter();
  const BandColumn& column = BandOf(ActiveGrid->currentColumn());
  filter.EntryMode = onDetails ? DetailOf(row).Mode : column.Mode;
  filter.EntryMaxLength = onDetails ? DetailOf(row).MaxLength : column.MaxLength;
  if (keyCode == 0) return PositionEditBox(std::nullopt);
  const QChar typed(static_cast<ushort>(keyCode));
  if (typed == '\b' || filter.Accepts(typed, "")) PositionEditBox(typed);
}

void frmDocument::BeginListEdit(int row) {
  const QString text = GridDetails->CellText(row, 1);
  if (row == ModulationRow)
    return editor.OpenList(*GridDetails, *editor.cmboModType, editor.cmboModType->findText(text));
  const qsizetype letter = text.isEmpty() ? -1 : DisplayModeLetters.indexOf(text.front());
  editor.OpenList(*GridDetails, *editor.cmboSelected, static_cast<int>(letter));
}

void frmDocument::PositionEditBox(std::optional<QChar> typed) { editor.OpenBox(*ActiveGrid, typed); }

// As one reads: the list, the values of the standard, its sub-bands, the chart, and round again.
void frmDocument::MoveByTab(const QWidget& from, bool forwards) {
  const int details = shownIndex < 0 ? 0 : GridDetails->rowCount();
  const int bandValues = GridBands->columnCount() - 1;
  const int beforeChart = 1 + details + GridBands->rowCount() * bandValues;
  const int stops = beforeChart + (ChartIsShown() ? 1 : 0);
  int stop = 0;
  if (&from == GridDetails) stop = 1 + qMax(GridDetails->currentRow(), 0);
  if (&from == GridBands)
    stop = 1 + details + qMax(GridBands->currentRow(), 0) * bandValues + qMax(GridBands->currentColumn(), 1) - 1;
  if (&from == chart) stop = beforeChart;
  stop = (stop + (forwards ? 1 : -1) + stops) % stops;
  const auto reason = forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason;
  if (stop == 0) return GridList->setFocus(reason);
  if (stop == beforeChart) return chart->setFocus(reason);
  const int band = stop - 1 - details;
  (band < 0 ? GridDetails : GridBands)->setFocus(reason);
  if (band < 0)
    GridDetails->SetCurrent(stop - 1, 1);
  else
    GridBands->SetCurrent(band / bandValues, 1 + band % bandValues);
}

void frmDocument::CommitEdit() { StoreGridsToTable(); }

// A cell that refuses its text keeps the old value, which the status bar tells.
frmDocument::Commit frmDocument::StoreGridsToTable() {
  const std::optional<CellEdit> edit = editor.Close();
  if (!edit || shownIndex < 0) return Commit::Nothing;
  const QString step = StepName(*edit, GridDetails);
  const std::optional<QString> refusal = StoreCell(*edit);
  // What was typed is shown as the table now has it.
  const bool shapesList = edit->IsCell(GridDetails, NameRow, 1) || edit->IsCell(GridDetails, SubbandsRow, 1);
  if (shapesList) FillStandardList(GridList->currentRow());
  ShowStandard();
  ValidateTable();
  RecordStep(step, shownIndex);
  if (refusal && !refusal->isEmpty()) frame.ShowRemark(*refusal);
  return refusal ? Commit::Refused : Commit::Stored;
}

std::optional<QString> frmDocument::StoreCell(const CellEdit& edit) {
  const QString text = edit.EditedGrid->CellText(edit.Row, edit.Column);
  SignalStandardRecord& standard = table.Row(shownIndex);
  CellOutcome outcome = CellOutcome::Stored;
  if (edit.EditedGrid == GridBands)
    outcome = StoreBand(table, shownIndex, edit.Row + 1, BandOf(edit.Column).Shown, BytesOf(text));
  else if (edit.Row == SubbandsRow)
    return StoreCount(static_cast<int>(LeadingNumber(BytesOf(text)))) ? std::nullopt : std::optional(QString());
  else if (edit.Control == nullptr && (edit.Row == DisplayModeRow || edit.Row == ModulationRow))
    return {};  // it was cut, and nothing else was chosen
  else if (edit.Row == DisplayModeRow)
    SetStateCode(standard, GetStateCode(static_cast<int>(Modulation(standard)), editor.cmboSelected->currentIndex()));
  else if (edit.Row == ModulationRow)
    SetStateCode(standard, GetStateCode(editor.cmboModType->currentIndex(), ActiveDisplayMode(standard) ? 1 : 0));
  else
    outcome = StoreDetail(table, shownIndex, DetailOf(edit.Row).Shown, BytesOf(text));
  if (outcome == CellOutcome::Stored) return {};
  return RefusalText(edit, text, outcome);
}

bool frmDocument::StoreCount(int count) {
  if (SetSubbandCount(table, shownIndex, count) == CountOutcome::Set) return true;
  ShowFailure(*this, "Warning:  Size limit reached.",
              "You have reached the maximum number of records in the Signal Standard table. Cannot add "
              "another sub-band.");
  return false;
}

void frmDocument::ShowStateCode(int code) {
  const int mode = (code & ActiveDisplayBit) != 0 ? 1 : 0;
  GridDetails->FillCell(DisplayModeRow, 1, editor.cmboSelected->itemText(mode), DetailRows[DisplayModeRow].Title);
  GridDetails->FillCell(ModulationRow, 1, editor.cmboModType->itemText(code & 3), DetailRows[ModulationRow].Title);
}

}  // namespace chanplan
