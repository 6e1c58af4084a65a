#include "console/interruption.h"

#include <csignal>
#include <initializer_list>

namespace chanplan {
namespace {

volatile std::sig_atomic_t count = 0;
volatile std::sig_atomic_t lastSignal = 0;

void Count(int signal) {
  std::signal(signal, Count);  // some systems forget it
  lastSignal = signal;
  count = count + 1;
}

}  // namespace

void CountInterruptions() {
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, Count);
#ifdef SIGHUP
  std::signal(SIGHUP, Count);
#endif
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN);  // who no longer reads what is told about a transfer does not end it
#endif
}

int Interruptions() { return count; }

int InterruptedExitCode() { return 128 + lastSignal; }

void EndIfInterrupted(int times) {
  if (Interruptions() >= times) throw Interrupted();
}

}  // namespace chanplan
