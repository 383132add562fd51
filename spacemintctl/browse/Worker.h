#pragma once

#include "spacemintctl/browse/Inbox.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace spacemint::ctl {

/// A thread that does one piece of work after the other. The destructor waits for the piece that runs and
/// drops the others.
class Worker {
 public:
  /// Called on the thread of the screen when the work is done; may be empty.
  using Then = std::function<void()>;
  using Work = std::function<Then()>;

  explicit Worker(Inbox& inbox);
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// The thread of the screen only, like the calls of `Then`, which end with this object.
  void run(Work work);
  /// Has `then` called. Any thread; for the work, while it runs.
  void tell(Then then);

 private:
  void loop(const std::stop_token& stop);

  Inbox& inbox_;
  std::shared_ptr<bool> isWanted_ = std::make_shared<bool>(true);
  std::mutex mutex_;
  std::condition_variable_any changed_;
  std::deque<Work> waiting_;
  std::jthread thread_;
};

}  // namespace spacemint::ctl
