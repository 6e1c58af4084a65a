// The printed listing as a PDF file.
#pragma once

#include <string>
#include <string_view>

#include "core/signal_standard_table.h"

namespace chanplan {

enum class PaperSize { Letter, A4 };

/// The file's bytes for the listing of `table` in a document captioned `caption` (UTF-8). Leaves a
/// quarter of an inch free at every edge; a device dot is 1/720 inch. A QGuiApplication must live,
/// on whatever screen or none. Throws PrintFailure.
std::string PdfListing(const SignalStandardTable& table, std::string_view caption, PaperSize paper);

}  // namespace chanplan
