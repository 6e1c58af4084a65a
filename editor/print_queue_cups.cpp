// CUPS: the platform library drops a document that the queue turns away, and tells nobody.
#include <cups/cups.h>

#include <string_view>

#include "editor/print_queue.h"

namespace chanplan {

bool QueueAcceptsJobs(const std::string& name) {
  cups_dest_t* queue = cupsGetNamedDest(CUPS_HTTP_DEFAULT, name.c_str(), nullptr);
  if (queue == nullptr) return true;
  const char* accepting = cupsGetOption("printer-is-accepting-jobs", queue->num_options, queue->options);
  const bool accepts = accepting == nullptr || std::string_view(accepting) != "false";
  cupsFreeDests(1, queue);
  return accepts;
}

}  // namespace chanplan
