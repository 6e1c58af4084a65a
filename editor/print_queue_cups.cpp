// CUPS: the platform library sends documents through it, and looks at no outcome.
#include <cups/cups.h>

#include <QLibrary>

#include "editor/print_queue.h"

namespace chanplan {
namespace {

// The library that the platform library prints with, found when it is needed: linked to the program
// it would take a tenth more memory from every start.
template <typename Function>
Function* Resolve(const char* name) {
  return reinterpret_cast<Function*>(QLibrary::resolve("cups", 2, name));
}

// The outcome of this thread's last request.
ipp_status_t LastStatus() {
  const auto lastError = Resolve<decltype(cupsLastError)>("cupsLastError");
  return lastError == nullptr ? IPP_STATUS_OK : lastError();
}

std::string LastReason() {
  const auto lastErrorString = Resolve<decltype(cupsLastErrorString)>("cupsLastErrorString");
  const char* reason = lastErrorString == nullptr ? nullptr : lastErrorString();
  return reason == nullptr || *reason == '\0' ? "no reason was given" : reason;
}

}  // namespace

// The library's reason tells little here, such as "Bad file descriptor".
std::string SilentPrintServer() {
  const auto server = Resolve<decltype(cupsServer)>("cupsServer");
  const auto newRequest = Resolve<decltype(ippNewRequest)>("ippNewRequest");
  const auto doRequest = Resolve<decltype(cupsDoRequest)>("cupsDoRequest");
  const auto deleteAnswer = Resolve<decltype(ippDelete)>("ippDelete");
  if (server == nullptr || newRequest == nullptr || doRequest == nullptr || deleteAnswer == nullptr) return {};
  deleteAnswer(doRequest(CUPS_HTTP_DEFAULT, newRequest(IPP_OP_CUPS_GET_DEFAULT), "/"));
  return LastStatus() == IPP_STATUS_ERROR_SERVICE_UNAVAILABLE ? server() : std::string();
}

std::string DocumentRefusal() { return LastStatus() <= IPP_STATUS_OK_EVENTS_COMPLETE ? std::string() : LastReason(); }

}  // namespace chanplan
