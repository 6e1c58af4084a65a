// Changing the shape of a table: copying, deleting, pasting and adding standards and sub-bands.
//
// A selection is given by the table indices of its first and its last standard; the last one's
// sub-bands belong to it.
#pragma once

#include <span>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The rows of the selection in table order, and of the last standard as many sub-bands as its count
/// says: empty ones where the table, which was cut short, has none. So what is pasted behind them
/// never becomes their sub-band. No more than a table can take.
std::vector<SignalStandardRecord> CopyStandards(const SignalStandardTable& table, int first, int last);

/// Removes the rows of the selection; the rows behind it move up.
void DeleteStandards(SignalStandardTable& table, int first, int last);

/// Whether pasting `records` fills the table. Also true when they fit exactly.
bool PasteFillsTable(const SignalStandardTable& table, std::span<const SignalStandardRecord> records);

/// Inserts `records` before row `at`; what does not fit is dropped from the end.
void PasteStandards(SignalStandardTable& table, int at, std::span<const SignalStandardRecord> records);

/// Sets the count of the last standard to the sub-bands that it has, if it promises more: what is
/// added behind it would become theirs.
void PutLastCountRight(SignalStandardTable& table);

/// Adds "[New Standard]" at the end, behind a last standard whose count is put right; false when the
/// table is full.
bool AppendBlankStandard(SignalStandardTable& table);

/// Adds an empty sub-band behind the last one of the standard at index `standard`. False when the
/// table holds 199 rows or more: one place is left free for a new standard.
bool AddSubband(SignalStandardTable& table, int standard);

/// Removes the last sub-band of the standard at index `standard`, if it has one.
void RemoveSubband(SignalStandardTable& table, int standard);

}  // namespace chanplan
