// What editing a cell does to a table. Texts are Windows-1252.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// What became of a text that was to be stored. Only a stored one changes the table.
enum class CellOutcome { Stored, NotANumber, OutOfRange };

/// Stores `text` into a field of the standard at index `standard`: a name as it stands, of a number
/// the leading part, so that an empty text is 0, rounded where the field holds whole numbers.
CellOutcome StoreDetail(SignalStandardTable& table, int standard, Field field, std::string_view text);

/// Stores `text` into a field of sub-band `number` (1 = the first) of the standard at index
/// `standard`. Unlike in a standard, all of the text has to be a number, blanks around it aside.
CellOutcome StoreBand(SignalStandardTable& table, int standard, int number, Field field, std::string_view text);

enum class CountOutcome { Set, TableFull };

/// Gives the standard at index `standard` that many sub-bands (none for less than 0), by adding
/// empty ones behind its last one or by taking the last ones away. A damaged count is put right
/// first. TableFull when the table took only a part of them, or none.
CountOutcome SetSubbandCount(SignalStandardTable& table, int standard, std::int32_t count);

/// The number in a record's `State` for the positions that are chosen in the list of modulation
/// types and in that of display modes (the second one is active); -1, nothing chosen, counts as 0.
int GetStateCode(int modulation, int displayMode);

/// Puts the code into `State`; bits of it that no list shows stay.
void SetStateCode(SignalStandardRecord& standard, int code);

}  // namespace chanplan
