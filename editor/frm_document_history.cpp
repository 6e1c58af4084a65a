// The document window: taking changes of the table back, and making them again.
#include <utility>

#include "core/record_fields.h"
#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

struct Difference {
  int Index;
  Field Differs;
};

// The first value that differs between tables of one shape.
std::optional<Difference> FirstDifference(const SignalStandardTable& one, const SignalStandardTable& other) {
  if (one.Count != other.Count) return std::nullopt;
  for (int index = 0; index < one.Count; ++index) {
    for (const RecordField& field : RecordFields) {
      const auto same = [&](auto member) { return one.Row(index).*member == other.Row(index).*member; };
      if (!std::visit(same, field.Member)) return Difference{index, field.Id};
    }
  }
  return std::nullopt;
}

}  // namespace

QString frmDocument::UndoName() const { return TextOf(history.UndoName()); }
QString frmDocument::RedoName() const { return TextOf(history.RedoName()); }

void frmDocument::RecordStep(const QString& step, int rowBefore) {
  history.Record(BytesOf(step), rowBefore, table, shownIndex);
}

// A choice that was made and not stored yet is the first to be taken back.
void frmDocument::Undo() {
  if (BoxIsOpen()) return;
  CommitEdit();
  const QString step = UndoName();
  if (const auto moment = history.Undo()) ShowMoment(*moment, "Undone: " + step);
}

void frmDocument::Redo() {
  if (BoxIsOpen()) return;
  CommitEdit();
  const QString step = RedoName();
  if (const auto moment = history.Redo()) ShowMoment(*moment, "Done again: " + step);
}

void frmDocument::ShowMoment(const TableMoment& moment, const QString& deed) {
  const SignalStandardTable former = std::exchange(table, moment.Table);
  state.Changed = !history.AtSaved();
  Refill(ListRowOf(moment.CurrentRow));
  ShowWarnings();
  if (const auto difference = FirstDifference(former, table)) {
    std::optional<Place> place = PlaceOf(difference->Index, difference->Differs);
    if (place && difference->Differs == Field::State)
      place->Row =
          Modulation(former.Row(shownIndex)) == Modulation(table.Row(shownIndex)) ? DisplayModeRow : ModulationRow;
    if (place) GoTo(*place);
  }
  GridList->scrollToItem(GridList->currentItem());
  KeepInSight(*ActiveGrid, ActiveGrid->currentIndex());
  frame.ShowRemark(deed + '.');
}

}  // namespace chanplan
