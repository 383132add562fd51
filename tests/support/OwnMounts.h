#pragma once

#include "support/ChildProcess.h"

#include <sched.h>
#include <sys/mount.h>

namespace spacemint::support {

/// Enters a new mount namespace, where this process may mount and other processes do not see it. For a child
/// process.
inline bool enterOwnMounts() {
  const bool root = geteuid() == 0;
  return unshare(root ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) == 0 &&
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

inline bool canMount() {
  return succeedsInChild(enterOwnMounts);
}

}  // namespace spacemint::support
