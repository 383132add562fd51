#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace spacemint {

/// A thread that makes calls for others, who wait for them. Threads that a call starts have the priority of
/// whoever made this object, and not that of the caller. Any thread; it is destroyed when nobody calls.
class CallThread {
 public:
  /// What the call throws comes out here.
  void call(std::function<void()> function);

 private:
  void run(const std::stop_token& stop);

  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::deque<std::packaged_task<void()>> calls_;
  std::jthread thread_{[this](const std::stop_token& stop) { run(stop); }};  // last: it uses all of the above
};

}  // namespace spacemint
