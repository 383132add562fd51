#pragma once

#include "Spacemint/desktop/Tasks.h"
#include "core/host/FileHandle.h"

#include <deque>
#include <mutex>

namespace spacemint {

/// A queue of functions that the main thread runs. Any thread, except `runNext` and `close`.
///
/// It consists of a mutex and an eventfd, nothing of Qt, so that the thread sanitizer can see all of it.
class MainThreadQueue {
 public:
  MainThreadQueue();

  /// A file descriptor that is readable while functions wait; -1 if the system had no descriptor left.
  int descriptor() const { return counter_.get(); }

  /// After `close` the function is destroyed at once, on the calling thread.
  void post(Tasks::Function function);

  /// Runs the oldest function. Only one at a time: a function may run an event loop of its own, which must be
  /// able to run the next functions. Main thread only.
  void runNext();

  /// Destroys all waiting functions, on the calling thread. Nothing runs afterwards.
  void close();

 private:
  FileHandle counter_;
  std::mutex mutex_;
  std::deque<Tasks::Function> waiting_;
  bool isClosed_ = false;
};

}  // namespace spacemint
