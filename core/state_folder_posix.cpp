#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "core/state_folder.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

fs::path Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? fs::path() : fs::path(value);
}

}  // namespace

fs::path StateFolder() {
  if (const fs::path state = Variable("XDG_STATE_HOME"); state.is_absolute()) return state / "chanplans";
  fs::path home = Variable("HOME");
  if (home.empty())
    if (const passwd* user = getpwuid(getuid())) home = user->pw_dir;
  return home.is_absolute() ? home / ".local" / "state" / "chanplans" : fs::path();
}

}  // namespace chanplan
