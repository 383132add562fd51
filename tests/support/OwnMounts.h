#pragma once

#include "support/ChildProcess.h"

#include <sched.h>
#include <sys/mount.h>

#include <fstream>
#include <string>

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

/// Sets a limit of the kernel (a file of /proc/sys/user) for a new user namespace, so that other processes
/// keep theirs. For a child process.
inline bool setOwnLimit(const std::string& name, int value) {
  const std::string user = std::to_string(geteuid());
  if (unshare(CLONE_NEWUSER) != 0) return false;
  std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
  std::ofstream limit("/proc/sys/user/" + name);
  limit << value;
  return static_cast<bool>(limit.flush());
}

}  // namespace spacemint::support
