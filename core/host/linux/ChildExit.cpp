#include "core/host/ChildExit.h"

#include "core/host/FileHandle.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

using Clock = std::chrono::steady_clock;

// Without a pidfd to wait on, `waitForExit` checks the child every `lookInterval`.
constexpr std::chrono::milliseconds longestWait{1'000};
constexpr std::chrono::milliseconds lookInterval{10};

bool hasEnded(pid_t child) {
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
    if (errno != EINTR) return true;
  }
  return info.si_pid == child;
}

}  // namespace

bool waitForExit(pid_t child, Clock::time_point until) {
  if (hasEnded(child)) return true;
  // Not every version of the C library declares pidfd_open() for C++.
  const FileHandle process{static_cast<int>(syscall(SYS_pidfd_open, child, 0))};
  pollfd watched{process.get(), POLLIN, 0};
  const auto step = process ? longestWait : lookInterval;
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    if (left.count() <= 0) return hasEnded(child);
    poll(&watched, process ? 1 : 0, static_cast<int>(std::min(left, step).count()));
    if (hasEnded(child)) return true;
  }
}

}  // namespace spacemint
