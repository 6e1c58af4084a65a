#include "unit/system_timing.h"

#include <QCoreApplication>
#include <chrono>

#include "unit/port_platform.h"

namespace chanplan {
namespace {

// Turns of the event loop that begin within this time of the end of another are one with it.
constexpr std::chrono::microseconds OneTurn(50);

}  // namespace

LinkTiming SystemTiming() {
  const auto now = [] { return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()); };
  const auto letEventsRun = [now, ran = std::chrono::nanoseconds()](std::chrono::nanoseconds longest) mutable {
    const auto start = now();
    // Between two bytes of an upload there are several turns in a row, and the first handles all there is.
    if (longest.count() == 0 && start - ran < OneTurn) return;
    QCoreApplication::processEvents();
    ran = now();
    if (start + longest > ran) ShortSleep(start + longest - ran);
  };
  return {now, letEventsRun};
}

}  // namespace chanplan
