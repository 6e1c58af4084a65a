// Ending in order when the user or the system asks for it.
#pragma once

#include <exception>

namespace chanplan {

/// Thrown where a command ends because it was asked to.
class Interrupted : public std::exception {};

/// From now on SIGINT, SIGTERM and SIGHUP are counted instead of ending the program, and a pipe without a reader is an
/// error of writing.
void CountInterruptions();
/// How often the program was asked to end.
int Interruptions();
/// 128 and the number of the signal, as shells have it.
int InterruptedExitCode();
/// Throws Interrupted when the program was asked to end at least `times` times.
void EndIfInterrupted(int times = 1);

}  // namespace chanplan
