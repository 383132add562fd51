#pragma once

#include <mutex>

namespace spacemint {

/// Locks a mutex that its owners hold for less time than it takes to sleep and to be woken. Tries again and
/// again for a few microseconds before it sleeps. Any thread.
inline std::unique_lock<std::mutex> lockSoon(std::mutex& mutex) {
  constexpr int mostTries = 200;
  std::unique_lock lock{mutex, std::try_to_lock};
  for (int tries = 0; !lock && tries < mostTries; ++tries) {
#if defined(__x86_64__)
    __builtin_ia32_pause();
#endif
    if (lock.try_lock()) break;
  }
  if (!lock) lock.lock();
  return lock;
}

}  // namespace spacemint
