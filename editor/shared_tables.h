// Records that all documents share: the clipboard of whole standards, and a table that is passed on.
#pragma once

#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// One instance for the whole application, owned by its start-up.
struct SharedTables {
  /// Whole standards, each followed by its sub-bands, in table order.
  std::vector<SignalStandardRecord> StandardClipboard;
  /// Set once standards were copied; nothing clears it.
  bool StandardClipboardFull = false;
  PassedRows Passed;
};

}  // namespace chanplan
