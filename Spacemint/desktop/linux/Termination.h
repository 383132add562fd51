#pragma once

#include <QSocketNotifier>

#include <functional>

namespace spacemint {

/// The system's wish that this process ends (the signals SIGTERM, SIGINT and SIGHUP) as a call on the main
/// thread. It comes once: the second such signal ends the process at once. A signal that was ignored when the
/// process began, as under nohup, stays ignored. At most one object at a time.
class Termination {
 public:
  explicit Termination(std::function<void()> requested);
  Termination(const Termination&) = delete;
  Termination& operator=(const Termination&) = delete;
  /// The signals have their usual effect again.
  ~Termination();

 private:
  QSocketNotifier notifier_;
};

}  // namespace spacemint
