// What a print queue says of itself, which the platform library does not ask.
#pragma once

#include <string>

namespace chanplan {

/// Whether the queue `name` takes documents. A queue that says nothing counts as one that does.
bool QueueAcceptsJobs(const std::string& name);

}  // namespace chanplan
