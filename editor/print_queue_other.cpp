// Without CUPS, as on Windows, whose spooler refuses a document when it is begun: the platform library reports that.
#include "editor/print_queue.h"

namespace chanplan {

std::string SilentPrintServer() { return {}; }

std::string DocumentRefusal() { return {}; }

}  // namespace chanplan
