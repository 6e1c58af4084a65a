// Who a test's child process is, other than root.
#pragma once

#include <grp.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "tests/core/small_disk.h"

namespace chanplan::testing {

/// Makes this process, a child of the test's, that of an ordinary user for good.
inline void BecomeUser(uid_t user, gid_t group) {
  if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0)
    throw std::runtime_error(Impossible + "no other user: " + std::strerror(errno));
}

}  // namespace chanplan::testing
