#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace spacemint {

/// Runs functions on one dedicated thread. Threads that a function starts inherit the priority of this
/// thread, which is the priority of the thread that made the object, not that of the caller.
class CallThread {
 public:
  /// Runs the function and blocks until it returns. Rethrows what it throws. Any thread; no call may be
  /// running when the object is destroyed.
  void call(std::function<void()> function);

 private:
  void run(const std::stop_token& stop);

  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::deque<std::packaged_task<void()>> calls_;
  std::jthread thread_{[this](const std::stop_token& stop) { run(stop); }};  // last: uses all above
};

}  // namespace spacemint
