#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace spacemint::ctl {

/// Functions that other threads hand to the thread of the screen.
class Inbox {
 public:
  Inbox();
  ~Inbox();
  Inbox(const Inbox&) = delete;
  Inbox& operator=(const Inbox&) = delete;

  /// Any thread. `work` is called by `run`.
  void post(std::function<void()> work);
  /// Calls everything that was posted, in order. The thread of the screen only.
  void run();
  /// The descriptor that is readable while something waits.
  int descriptor() const { return ends_[0]; }

 private:
  std::mutex mutex_;
  std::vector<std::function<void()>> waiting_;
  int ends_[2] = {-1, -1};
};

}  // namespace spacemint::ctl
