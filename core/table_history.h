// What a table was before its changes, so that they can be taken back and made again.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// A table as it was, and the row (table index, -1 = none) to go to in it.
struct TableMoment {
  SignalStandardTable Table;
  int CurrentRow = -1;

  bool operator==(const TableMoment&) const = default;
};

/// The changes of one document's table since it was loaded. Every change is a step with a name, kept
/// as the rows that it left; the document's table stays the document's own.
class TableHistory {
 public:
  /// More steps push out the oldest. So many of full tables with names of 24 characters take 7 MB.
  static constexpr std::size_t MostSteps = 200;

  /// Begins without steps. `table` counts as saved.
  explicit TableHistory(const SignalStandardTable& table = {});

  /// The change `name` has made the table what `after` is; it began in row `rowBefore` and ended in
  /// `rowAfter`. Steps that were taken back can no longer be made again. A change that left the table
  /// as it was makes no step and drops none.
  void Record(std::string name, int rowBefore, const SignalStandardTable& after, int rowAfter);

  bool CanUndo() const { return done > 0; }
  bool CanRedo() const { return done < steps.size(); }
  /// The step that `Undo` takes back, or `Redo` makes again; empty when there is none.
  std::string_view UndoName() const { return CanUndo() ? steps[done - 1].Name : std::string_view(); }
  std::string_view RedoName() const { return CanRedo() ? steps[done].Name : std::string_view(); }

  /// Takes the last step back: the table before it. Nothing when there is none.
  std::optional<TableMoment> Undo();
  /// Makes the step again that was taken back last: the table after it. Nothing when there is none.
  std::optional<TableMoment> Redo();

  /// The table is saved as it is now.
  void MarkSaved() { saved = done; }
  /// The table is in no file, wherever the steps lead.
  void ForgetSaved() { saved.reset(); }
  /// Whether the steps have led back to where the table was saved. Changes by hand to the same values
  /// do not count.
  bool AtSaved() const { return saved == done; }

 private:
  using Rows = std::vector<SignalStandardRecord>;  // those in use

  struct Step {
    std::string Name;
    int RowBefore;
    int RowAfter;
    Rows After;
  };

  const Rows& RowsAfter(std::size_t stepCount) const { return stepCount == 0 ? start : steps[stepCount - 1].After; }
  void DropOldest();

  Rows start;  // before the first step
  std::deque<Step> steps;
  std::size_t done = 0;                  // of the steps; the rest was taken back
  std::optional<std::size_t> saved = 0;  // steps that were done then; nothing when no steps lead there any more
};

}  // namespace chanplan
