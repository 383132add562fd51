#pragma once

#include "Spacemint/desktop/Tasks.h"
#include "Spacemint/desktop/linux/MainThreadQueue.h"
#include "Spacemint/desktop/linux/WorkerThreads.h"

#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace spacemint {

/// Tasks on threads of our own. Made and destroyed on the main thread, which needs an event loop.
///
/// Where work is still running when it is destroyed, that work runs on by itself and nothing is done after
/// it; what the work uses has to live on, so a process that leaves work behind ends by `_exit`. A `done` that
/// is never called is destroyed on the main thread.
class ThreadTasks final : public Tasks {
 public:
  ThreadTasks() : ThreadTasks(WorkerThreads::Limits{}) {}
  explicit ThreadTasks(WorkerThreads::Limits limits);
  ~ThreadTasks() override;

  void start(Task task) override;
  void post(Function function) override { queue_->post(std::move(function)); }

  /// For the end of the process: takes no more tasks, drops those that have not begun and waits for those
  /// that run, without running an event loop; whether all ended. Main thread only.
  bool finish(std::chrono::milliseconds timeout) { return threads_.finish(timeout); }

 private:
  void finished(std::uint64_t number);

  std::shared_ptr<MainThreadQueue> queue_ = std::make_shared<MainThreadQueue>();
  QSocketNotifier notifier_;
  std::unordered_map<std::uint64_t, Function> done_;
  std::uint64_t lastNumber_ = 0;
  WorkerThreads threads_;
};

}  // namespace spacemint
