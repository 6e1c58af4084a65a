// The link's timing where a program runs.
#pragma once

#include "unit/unit_link.h"

namespace chanplan {

/// The monotonic clock; events of the QCoreApplication run, then the thread sleeps.
LinkTiming SystemTiming();

}  // namespace chanplan
