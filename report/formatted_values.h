// A record's numbers as the report and the listing show them.
#pragma once

#include <array>
#include <string>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The columns "Type" to "Step": State, both start frequencies, both channels, Bandwidth, Spacing,
/// Step, with "." as decimal point and "," between thousands.
std::array<std::string, 8> FormattedValues(const SignalStandardRecord& record);

}  // namespace chanplan
