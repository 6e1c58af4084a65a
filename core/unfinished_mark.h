// The sign of a file whose content is being changed in place.
#pragma once

namespace chanplan {

/// Stands in the place of a file's first byte while its content is changed in place, and when that was cut short.
inline constexpr char UnfinishedMark = '\0';

}  // namespace chanplan
