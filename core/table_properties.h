// The summary of a table and its file.
#pragma once

#include <chrono>
#include <string>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The properties text of a document captioned `caption` (UTF-8; the path of its file when it has
/// one), lines ended by CR LF, none after the last.
std::string TableProperties(const SignalStandardTable& table, const std::string& caption);

/// `utc` as the properties show it: moved by exactly -6 hours, whatever the local time zone, in the
/// form "March 05, 2004  02:07:09 PM".
std::string PropertiesTime(std::chrono::sys_seconds utc);

}  // namespace chanplan
