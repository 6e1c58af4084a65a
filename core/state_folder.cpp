#include "core/state_folder.h"

#include <cstdlib>

#ifndef _WIN32
#include <pwd.h>
#include <unistd.h>
#endif

namespace chanplan {
namespace {

namespace fs = std::filesystem;

fs::path Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? fs::path() : fs::path(value);
}

}  // namespace

#ifdef _WIN32

fs::path StateFolder() {
  const fs::path local = Variable("LOCALAPPDATA");
  return local.empty() ? local : local / "Chanplans";
}

#else

fs::path StateFolder() {
  if (const fs::path state = Variable("XDG_STATE_HOME"); state.is_absolute()) return state / "chanplans";
  fs::path home = Variable("HOME");
  if (home.empty())
    if (const passwd* user = getpwuid(getuid())) home = user->pw_dir;
  return home.is_absolute() ? home / ".local" / "state" / "chanplans" : fs::path();
}

#endif

}  // namespace chanplan
