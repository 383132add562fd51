#include "Spacemint/desktop/linux/ThreadTasks.h"

#include <utility>

namespace spacemint {

ThreadTasks::ThreadTasks(WorkerThreads::Limits limits)
    : notifier_(queue_->descriptor(), QSocketNotifier::Read),
      threads_(limits) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                   [queue = queue_] { queue->runNext(); });
}

ThreadTasks::~ThreadTasks() {
  queue_->close();
}

// Other threads get only the number of the `done` function: the function itself holds objects of the main
// thread.
void ThreadTasks::start(Task task) {
  const std::uint64_t number = ++lastNumber_;
  done_.emplace(number, std::move(task.done));
  Function whole = [this, queue = queue_, number, work = std::move(task.work)]() mutable {
    std::exchange(work, {})();
    queue->post([this, number] { finished(number); });
  };
  switch (task.priority) {
    case Priority::background:
    case Priority::alone:
      return threads_.runAlone(task.threadName == nullptr ? "Spacemint work" : task.threadName,
                               task.priority == Priority::background, std::move(whole));
    case Priority::utility:
      return threads_.share(WorkerThreads::Order::later, std::move(whole));
    case Priority::userInitiated:
      return threads_.share(WorkerThreads::Order::sooner, std::move(whole));
  }
}

void ThreadTasks::finished(std::uint64_t number) {
  const auto found = done_.extract(number);
  if (found.mapped()) found.mapped()();
}

}  // namespace spacemint
