// CUPS: the platform library drops a document that the queue turns away, and tells nobody.
#include <cups/cups.h>

#include <QLibrary>
#include <string_view>

#include "editor/print_queue.h"

namespace chanplan {
namespace {

// The library that the platform library prints with, found when it is needed: linked to the program
// it would take a tenth more memory from every start.
template <typename Function>
Function* Resolve(const char* name) {
  return reinterpret_cast<Function*>(QLibrary::resolve("cups", 2, name));
}

}  // namespace

bool QueueAcceptsJobs(const std::string& name) {
  const auto getDestination = Resolve<decltype(cupsGetNamedDest)>("cupsGetNamedDest");
  const auto getOption = Resolve<decltype(cupsGetOption)>("cupsGetOption");
  const auto freeDestinations = Resolve<decltype(cupsFreeDests)>("cupsFreeDests");
  if (getDestination == nullptr || getOption == nullptr || freeDestinations == nullptr) return true;
  cups_dest_t* queue = getDestination(CUPS_HTTP_DEFAULT, name.c_str(), nullptr);
  if (queue == nullptr) return true;
  const char* accepting = getOption("printer-is-accepting-jobs", queue->num_options, queue->options);
  const bool accepts = accepting == nullptr || std::string_view(accepting) != "false";
  freeDestinations(1, queue);
  return accepts;
}

}  // namespace chanplan
