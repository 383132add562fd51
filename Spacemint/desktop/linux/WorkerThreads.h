#pragma once

#include "Spacemint/desktop/Tasks.h"

#include <chrono>
#include <memory>

namespace spacemint {

/// Threads that run functions: a few that share a queue, started when there is something to do and gone when
/// there has been nothing for a while, and one each for what is to have its own. Any thread.
///
/// A process that gets no thread from the system ends, as one does that gets no memory.
class WorkerThreads {
 public:
  struct Limits {
    int shared = 4;
    /// How long a shared thread waits for more before it ends.
    std::chrono::milliseconds idle{5'000};
  };

  explicit WorkerThreads(Limits limits);
  WorkerThreads(const WorkerThreads&) = delete;
  WorkerThreads& operator=(const WorkerThreads&) = delete;
  /// Drops what has not begun. What runs is left to run to its end on threads that are nobody's.
  ~WorkerThreads();

  enum class Order { later, sooner };
  void share(Order order, Tasks::Function function);

  /// On a thread of its own; a quiet one has a low priority.
  void runAlone(const char* threadName, bool isQuiet, Tasks::Function function);

  /// Takes nothing new, drops what has not begun and waits for what runs; whether that ended in time.
  bool finish(std::chrono::milliseconds timeout);

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;
};

}  // namespace spacemint
