#include "core/table_history.h"

#include <algorithm>
#include <utility>

namespace chanplan {
namespace {

std::vector<SignalStandardRecord> RowsOf(const SignalStandardTable& table) {
  return {table.Records.begin(), table.Records.begin() + table.Count};
}

SignalStandardTable TableOf(const std::vector<SignalStandardRecord>& rows) {
  SignalStandardTable table;
  std::ranges::copy(rows, table.Records.begin());
  table.Count = static_cast<std::int16_t>(rows.size());
  return table;
}

}  // namespace

TableHistory::TableHistory(const SignalStandardTable& table) : start(RowsOf(table)) {}

void TableHistory::Record(std::string name, int rowBefore, const SignalStandardTable& after, int rowAfter) {
  Rows rows = RowsOf(after);
  if (rows == RowsAfter(done)) return;
  steps.resize(done);
  if (saved > done) saved.reset();
  steps.push_back({std::move(name), rowBefore, rowAfter, std::move(rows)});
  ++done;
  if (steps.size() > MostSteps) DropOldest();
}

std::optional<TableMoment> TableHistory::Undo() {
  if (!CanUndo()) return std::nullopt;
  --done;
  return TableMoment{TableOf(RowsAfter(done)), steps[done].RowBefore};
}

std::optional<TableMoment> TableHistory::Redo() {
  if (!CanRedo()) return std::nullopt;
  ++done;
  return TableMoment{TableOf(RowsAfter(done)), steps[done - 1].RowAfter};
}

void TableHistory::DropOldest() {
  start = std::move(steps.front().After);
  steps.pop_front();
  --done;
  saved = saved > 0u ? std::optional(*saved - 1) : std::nullopt;
}

}  // namespace chanplan
