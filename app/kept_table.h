// The unit's table in a file of its own, before something else takes its place.
#pragma once

#include <QDateTime>
#include <QString>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The file's full path, as the user writes it, and why the table could not be put there; empty when it is.
struct KeptTable {
  QString Path;
  QString Failure;
};

/// Saves `table` in the user's documents, in a new file called "Unit 2026-11-21 18.45.sig" by `now`, with a number
/// where there is such a file.
KeptTable KeepTable(const SignalStandardTable& table, const QDateTime& now);

}  // namespace chanplan
