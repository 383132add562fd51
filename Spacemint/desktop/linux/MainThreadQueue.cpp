#include "Spacemint/desktop/linux/MainThreadQueue.h"

#include <sys/eventfd.h>

#include <utility>

namespace spacemint {

MainThreadQueue::MainThreadQueue() : counter_(eventfd(0, EFD_SEMAPHORE | EFD_NONBLOCK | EFD_CLOEXEC)) {}

void MainThreadQueue::post(Tasks::Function function) {
  {
    const std::scoped_lock lock(mutex_);
    if (isClosed_) return;
    waiting_.push_back(std::move(function));
  }
  eventfd_write(counter_.get(), 1);
}

void MainThreadQueue::runNext() {
  eventfd_t one = 0;
  eventfd_read(counter_.get(), &one);
  Tasks::Function function;
  {
    const std::scoped_lock lock(mutex_);
    if (waiting_.empty()) return;
    function = std::move(waiting_.front());
    waiting_.pop_front();
  }
  function();
}

void MainThreadQueue::close() {
  std::deque<Tasks::Function> dropped;  // destroyed after the unlock: a destructor may post
  const std::scoped_lock lock(mutex_);
  isClosed_ = true;
  dropped.swap(waiting_);
}

}  // namespace spacemint
