#include "app/end_signals.h"

namespace chanplan {

// The platform library tells of the session's end, and there are no signals.
void WhenAskedToEnd(QObject& /*owner*/, const std::function<bool()>& /*mayEnd*/) {}

}  // namespace chanplan
