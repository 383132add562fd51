#pragma once

#include "Spacemint/desktop/Tasks.h"
#include "core/host/FileHandle.h"

#include <deque>
#include <mutex>

namespace spacemint {

/// Functions on their way to the main thread. Any thread.
///
/// A thread sanitizer sees everything of it: a mutex and a counter of the kernel's, nothing inside Qt.
class MainThreadQueue {
 public:
  MainThreadQueue();

  /// Ready to read while functions are waiting; -1 where the system had no descriptor left.
  int descriptor() const { return counter_.get(); }

  /// Once it is closed, a function is destroyed at once, on the thread that posts it.
  void post(Tasks::Function function);

  /// Runs the function that has waited longest. One at a time, so that a function which waits in an event
  /// loop of its own does not hold up those behind it.
  void runNext();

  /// Nothing runs any more. What is waiting is destroyed on the calling thread.
  void close();

 private:
  FileHandle counter_;
  std::mutex mutex_;
  std::deque<Tasks::Function> waiting_;
  bool isClosed_ = false;
};

}  // namespace spacemint
