// Reads any bytes as the copy of a table that a former run left behind.
#include <string>

#include "app/recovery_copy.h"
#include "core/table_difference.h"
#include "tests/fuzz/fuzz_target.h"

namespace chanplan::fuzzing {

void FuzzRecoveryCopy(const std::uint8_t* data, std::size_t size) {
  const std::optional<UnsavedTable> unsaved = ReadCopyText(std::string(TakeInput(data, size)));
  if (!unsaved) return;
  Require(unsaved->Table.Count >= 0 && unsaved->Table.Count <= MaxRecords, "a table holds at most 200 rows");
  const std::string copied = CopyText(*unsaved);
  const std::optional<UnsavedTable> again = ReadCopyText(copied);
  Require(again.has_value(), "what was copied can be read");
  Require(again->Caption == unsaved->Caption && again->UnitTableTag == unsaved->UnitTableTag &&
              again->KnownFile == unsaved->KnownFile && RowDifferences(again->Table, unsaved->Table).empty(),
          "what is read is what was copied");
  Require(CopyText(*again) == copied, "copying is stable");
}

}  // namespace chanplan::fuzzing
