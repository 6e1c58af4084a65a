// The printed listing: a line for each record, with a head on every page.
#pragma once

#include <string_view>

#include "core/signal_standard_table.h"
#include "report/print_surface.h"

namespace chanplan {

/// Prints `table` of a document captioned `caption` (UTF-8) and ends the surface's document. A
/// standard with k sub-bands marks the next k - 1 records as its own; the k-th is printed like a
/// standard, other than in the HTML report. Throws PrintFailure.
void PrintListing(PrintSurface& surface, const SignalStandardTable& table, std::string_view caption);

}  // namespace chanplan
