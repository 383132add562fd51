#pragma once

#include <sys/types.h>

#include <chrono>

namespace spacemint {

/// Waits until a child process of this process has ended. Does not reap the child, so its process id is not
/// reused. False if the child still runs at `until`; true if `child` is no child of this process. Blocks; any
/// thread.
bool waitForExit(pid_t child, std::chrono::steady_clock::time_point until);

}  // namespace spacemint
