#include "core/state_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace chanplan {
namespace {

namespace fs = std::filesystem;

// Sets a variable, or takes it away, until the end of a test.
class Variable {
 public:
  Variable(const char* variable, const char* value) : name(variable) {
    if (const char* set = std::getenv(name)) former = set;
    Set(value);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { Set(former ? former->c_str() : nullptr); }

 private:
  void Set(const char* value) const { value == nullptr ? unsetenv(name) : setenv(name, value, 1); }

  const char* name;
  std::optional<std::string> former;
};

TEST(StateFolder, IsWhereTheUserKeepsStates) {
  const Variable state("XDG_STATE_HOME", "/var/states"), home("HOME", "/home/alice");
  EXPECT_EQ(StateFolder(), "/var/states/chanplans");
}

TEST(StateFolder, IsInTheHomeFolderUnlessAnotherIsNamedWhole) {
  const Variable home("HOME", "/home/alice");
  for (const char* named : {static_cast<const char*>(nullptr), "", "states", "./states"}) {
    const Variable state("XDG_STATE_HOME", named);
    EXPECT_EQ(StateFolder(), "/home/alice/.local/state/chanplans");
  }
}

TEST(StateFolder, IsNowhereWithoutAHomeFolder) {
  const Variable state("XDG_STATE_HOME", nullptr), home("HOME", "alice");
  EXPECT_EQ(StateFolder(), fs::path());
}

TEST(StateFolder, IsInTheHomeThatTheSystemKnowsOf) {
  const Variable state("XDG_STATE_HOME", nullptr), home("HOME", nullptr);
  EXPECT_TRUE(StateFolder().is_absolute());
}

}  // namespace
}  // namespace chanplan
