#pragma once

#include "support/ChildProcess.h"

#include <sched.h>
#include <sys/mount.h>

namespace spacemint::support {

/// As root of a namespace of one's own, where mounting is allowed and nobody else sees it. For a child
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
