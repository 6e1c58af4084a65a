// The text of a recovery copy.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>

#include "core/file_system.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// A document that was not saved: what it takes to have it again as it was.
struct UnsavedTable {
  QString Caption;
  std::uint16_t UnitTableTag = 0;
  std::optional<FileStamp> KnownFile;
  SignalStandardTable Table;

  bool operator==(const UnsavedTable&) const = default;
};

/// A copy's content: four lines about the document, then the table as a file of its own.
std::string CopyText(const UnsavedTable& unsaved);
/// Nothing when `text` is no copy.
std::optional<UnsavedTable> ReadCopyText(const std::string& text);

}  // namespace chanplan
