#pragma once

#include <sched.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace spacemint::support {

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
