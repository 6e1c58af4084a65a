// Systems that ask programs to end by signals.
#pragma once

#include <QObject>
#include <functional>

namespace chanplan {

/// Once the system asks the program to end, `mayEnd` is called by the event loop again and again until it says so; the
/// program ends of the signal then. The same signal once more ends it at once. For one `owner` a program.
void WhenAskedToEnd(QObject& owner, const std::function<bool()>& mayEnd);

}  // namespace chanplan
