#pragma once

#include <QSocketNotifier>

#include <functional>

namespace spacemint {

/// Turns the signals SIGTERM, SIGINT and SIGHUP into one call of `requested` on the main thread. A second
/// signal ends the process at once. A signal that was ignored when the process started, as under nohup, stays
/// ignored. Main thread only; at most one object at a time.
class Termination {
 public:
  explicit Termination(std::function<void()> requested);
  Termination(const Termination&) = delete;
  Termination& operator=(const Termination&) = delete;
  /// Restores the default effect of the signals.
  ~Termination();

 private:
  QSocketNotifier notifier_;
};

}  // namespace spacemint
