#pragma once

#include "Spacemint/desktop/Tasks.h"

#include <chrono>
#include <memory>

namespace spacemint {

/// Runs functions on a few shared threads, or on a thread of their own. Shared threads are started when they
/// are needed and end when there was nothing to do for a while. Any thread.
///
/// The process ends if the system cannot start a thread, as it does if there is no memory.
class WorkerThreads {
 public:
  struct Limits {
    int shared = 4;
    /// How long a shared thread waits for the next function before it ends.
    std::chrono::milliseconds idle{5'000};
  };

  explicit WorkerThreads(Limits limits);
  WorkerThreads(const WorkerThreads&) = delete;
  WorkerThreads& operator=(const WorkerThreads&) = delete;
  /// Drops functions that have not begun. Running functions are not interrupted.
  ~WorkerThreads();

  enum class Order { later, sooner };
  void share(Order order, Tasks::Function function);

  /// On a thread of its own; a quiet one has a low priority.
  void runAlone(const char* threadName, bool isQuiet, Tasks::Function function);

  /// Refuses new functions, drops functions that have not begun, and waits for running functions. Returns
  /// whether they ended within `timeout`.
  bool finish(std::chrono::milliseconds timeout);

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;
};

}  // namespace spacemint
