// A record's numbers as the report and the listing show them.
#pragma once

#include <algorithm>
#include <array>
#include <string>

#include "core/record_fields.h"

namespace chanplan {

inline constexpr auto PrintedValues = static_cast<std::size_t>(
    std::ranges::count_if(RecordFields, [](const RecordField& field) { return !field.PrintPicture.empty(); }));

/// The columns "Type" to "Step": State, both start frequencies, both channels, Bandwidth, Spacing,
/// Step, with "." as decimal point and "," between thousands.
std::array<std::string, PrintedValues> FormattedValues(const SignalStandardRecord& record);

}  // namespace chanplan
