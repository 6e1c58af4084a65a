// The document window: what is doubtful in the table, where it shows, and the way there.
#include <QHash>
#include <QScopedValueRollback>

#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/text_edge.h"

namespace chanplan {

void frmDocument::ValidateTable() {
  AlignSubbands(table);
  ShowWarnings();
}

// Those of the table as it stands, which stays as it is.
void frmDocument::ShowWarnings() {
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(GridList->rowCount()));
  for (int row = 0; row < GridList->rowCount(); ++row) names.push_back(BytesOf(GridList->CellText(row, 1)));
  warnings = FindWarnings(table, names);
  warningsText = QString::fromStdString(chanplan::WarningsText(warnings));
  MarkDoubtfulCells();
  // The frame shows the active document's warnings, and fetches these when this becomes it.
  if (mdiArea() == nullptr || ActiveIn(*mdiArea()) == this) frame.Warnings(warningsText, -1);
  emit TableChanged();
}

// Each cell with a warning about its value, in the list and of the standard that is shown.
void frmDocument::MarkDoubtfulCells() {
  QHash<const QTableWidgetItem*, QString> doubts;
  const auto add = [&doubts](const Grid& grid, int row, int column, const Warning& warning) {
    QString& text = doubts[grid.item(row, column)];
    text += (text.isEmpty() ? "" : "\n") + TextOf(warning.Message);
  };
  for (const Warning& warning : warnings) {
    const Field field = DoubtfulField(warning);
    const int row = field == Field::Name ? ListRowOf(warning.Row) : -1;
    if (row >= 0 && row < GridList->rowCount()) add(*GridList, row, 1, warning);
    if (const auto place = PlaceOf(warning.Row, field)) add(*place->ShownIn, place->Row, place->Column, warning);
  }
  for (Grid* grid : {GridList, GridDetails, GridBands})
    for (int row = 0; row < grid->rowCount(); ++row)
      for (int column = 1; column < grid->columnCount(); ++column)
        grid->SetDoubt(row, column, doubts.value(grid->item(row, column)));
}

void frmDocument::FindSSEntry(const QString& name) {
  CommitEdit();
  const std::string bytes = BytesOf(name);
  const std::vector<int> standards = StandardIndices(table);
  const auto select = [this](int row) {
    GridList->SetCurrent(row, 1);
    GridList->scrollToItem(GridList->item(row, 1));
  };
  for (int row = 0; row < GridList->rowCount(); ++row)
    if (GridList->CellText(row, 1) == name) return select(row);
  // A warning may name a sub-band: its standard is selected then.
  for (std::size_t row = 0; row < standards.size(); ++row)
    for (int index = standards[row]; index < GroupEnd(table, standards[row]); ++index)
      if (table.Row(index).Name == bytes) return select(static_cast<int>(row));
}

// Of several standards of one name, the one that is meant.
void frmDocument::ShowWarning(int line, const QString& name) {
  if (line >= static_cast<int>(warnings.size())) return;
  const Warning warning = warnings[static_cast<std::size_t>(line)];
  if (TextOf(warning.Name) == name) ShowField(warning.Row, DoubtfulField(warning));
}

void frmDocument::ShowField(int index, Field field) {
  CommitEdit();
  const int row = ListRowOf(index);
  if (row < 0) return;
  if (row != GridList->currentRow()) GridList->SetCurrent(row, 1);
  GridList->scrollToItem(GridList->currentItem());
  const auto place = PlaceOf(index, field);
  if (!place) return;
  GoTo(*place);
  ActiveGrid = place->ShownIn;
  KeepInSight(*ActiveGrid, ActiveGrid->currentIndex());
}

// Of the standard that is shown, or of one of its sub-bands; what these have from it is shown with it.
std::optional<frmDocument::Place> frmDocument::PlaceOf(int index, Field field) const {
  const int band = index - shownIndex - 1;
  if (shownIndex < 0 || band < -1 || band >= GridBands->rowCount()) return std::nullopt;
  if (band >= 0)
    for (std::size_t column = 1; column < BandColumns.size(); ++column)
      if (BandColumns[column].Shown == field) return Place{GridBands, band, static_cast<int>(column)};
  for (std::size_t row = 0; row < DetailRows.size(); ++row)
    if (DetailRows[row].Shown == field) return Place{GridDetails, static_cast<int>(row), 1};
  return std::nullopt;
}

// Nothing is stored, and nothing is opened: nobody has left a cell.
void frmDocument::GoTo(const Place& place) {
  const QScopedValueRollback suppressed(SuppressListEvents, true);
  place.ShownIn->SetCurrent(place.Row, place.Column);
  place.ShownIn->scrollToItem(place.ShownIn->currentItem());
}

}  // namespace chanplan
