// What the print system says of itself, which the platform library does not ask.
#pragma once

#include <string>

namespace chanplan {

/// The name of the print server when it cannot be reached; empty when it answers.
std::string SilentPrintServer();

/// Why the document that this thread has just sent was not taken, in the print server's words; empty when it
/// was.
std::string DocumentRefusal();

}  // namespace chanplan
