// Windows: the spooler refuses a document when it is begun, which the platform library reports.
#include "editor/print_queue.h"

namespace chanplan {

bool QueueAcceptsJobs(const std::string& /*name*/) { return true; }

}  // namespace chanplan
