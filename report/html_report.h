// The HTML report: a table of all records for a browser.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The whole file's bytes (Windows-1252) for `table` in a document captioned `caption` (UTF-8; what
/// the code page lacks becomes "?"). Exactly `Subbands` rows behind a standard have an empty name.
/// Names and caption are not escaped.
std::string ReportText(const SignalStandardTable& table, std::string_view caption);

/// Writes the report to `path`, or leaves the file that was there whole and returns the error.
std::error_code SaveReport(const std::filesystem::path& path, const SignalStandardTable& table,
                           std::string_view caption);

/// The file name that is proposed for the report of a document captioned `caption`: the name of the
/// document's file up to its first ".", then ".htm"; "Untitled.htm" for a caption without a ".".
std::string ProposedReportName(std::string_view caption);

}  // namespace chanplan
