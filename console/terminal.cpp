#include "console/terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace chanplan {
namespace {

bool IsTerminal(int stream) {
#ifdef _WIN32
  return _isatty(stream) != 0;
#else
  return isatty(stream) != 0;
#endif
}

}  // namespace

bool StandardOutputIsTerminal() { return IsTerminal(1); }
bool StandardErrorIsTerminal() { return IsTerminal(2); }

}  // namespace chanplan
