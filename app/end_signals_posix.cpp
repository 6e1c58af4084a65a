#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <csignal>

#include "app/end_signals.h"

namespace chanplan {
namespace {

int toEventLoop = -1;

// Little else may be called when a signal comes.
void Tell(int signal) {
  const char byte = static_cast<char>(signal);
  [[maybe_unused]] const ssize_t told = write(toEventLoop, &byte, 1);
}

}  // namespace

void WhenAskedToEnd(QObject& owner, const std::function<bool()>& mayEnd) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  toEventLoop = ends[1];
  auto* told = new QSocketNotifier(ends[0], QSocketNotifier::Read, &owner);
  QObject::connect(told, &QSocketNotifier::activated, &owner, [told, mayEnd, &owner] {
    char signal = 0;
    if (read(static_cast<int>(told->socket()), &signal, 1) != 1) return;
    told->setEnabled(false);
    auto* again = new QTimer(&owner);
    again->callOnTimeout([signal, mayEnd] {
      if (mayEnd()) raise(signal);
    });
    again->start(50);
  });
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;  // such as by `nohup`
    action.sa_handler = Tell;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace chanplan
