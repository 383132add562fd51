#pragma once

#include "Spacemint/desktop/Tasks.h"
#include "Spacemint/desktop/linux/MainThreadQueue.h"
#include "Spacemint/desktop/linux/WorkerThreads.h"

#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace spacemint {

/// Runs tasks on `WorkerThreads`. Create and destroy it on the main thread, which needs an event loop.
///
/// Work that still runs at the destruction is not interrupted, and its `done` is not called. The work may
/// still use its data, so a process that leaves work behind must end by `_exit`. A `done` that is not called
/// is destroyed on the main thread.
class ThreadTasks final : public Tasks {
 public:
  ThreadTasks() : ThreadTasks(WorkerThreads::Limits{}) {}
  explicit ThreadTasks(WorkerThreads::Limits limits);
  ~ThreadTasks() override;

  void start(Task task) override;
  void post(Function function) override { queue_->post(std::move(function)); }

  /// For the end of the process: refuses new tasks, drops tasks that have not begun, and waits for running
  /// tasks without an event loop. Returns whether all have ended. Main thread only.
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
