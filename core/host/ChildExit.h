#pragma once

#include <sys/types.h>

#include <chrono>

namespace spacemint {

/// Waits until a child process of ours has ended, without reaping it, so that its number stays its own; false
/// when it still runs at `until`. True for what is no child.
bool waitForExit(pid_t child, std::chrono::steady_clock::time_point until);

}  // namespace spacemint
