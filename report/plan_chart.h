// A picture of a plan: its standards side by side along the spectrum.
#pragma once

#include <string>
#include <string_view>

#include "core/signal_standard_table.h"

namespace chanplan {

/// The chart of `table` as an SVG file (UTF-8) in the colours that the reader prefers, light or
/// dark: a lane for every standard, its uplink bands above its downlink bands, with the parts that
/// other standards use too marked; a standard with sub-bands has them in outlines of its own bands. `caption` is UTF-8;
/// what XML cannot hold becomes U+FFFD.
std::string ChartSvg(const SignalStandardTable& table, std::string_view caption);

}  // namespace chanplan
