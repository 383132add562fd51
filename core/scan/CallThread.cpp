#include "core/scan/CallThread.h"

namespace spacemint {

void CallThread::call(std::function<void()> function) {
  std::packaged_task<void()> task{std::move(function)};
  auto done = task.get_future();
  {
    const std::lock_guard hold(mutex_);
    calls_.push_back(std::move(task));
  }
  changed_.notify_one();
  done.get();
}

void CallThread::run(const std::stop_token& stop) {
  std::unique_lock hold(mutex_);
  while (changed_.wait(hold, stop, [this] { return !calls_.empty(); })) {
    auto task = std::move(calls_.front());
    calls_.pop_front();
    hold.unlock();
    task();
    hold.lock();
  }
}

}  // namespace spacemint
