#pragma once

#include "core/base/Date.h"

#include <QObject>

#include <functional>

namespace spacemint {

/// The time of day, a steady clock and timers. Main thread only, except `now` and `steadyNow`.
class Clock {
 public:
  using Callback = std::function<void()>;

  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  /// The wall clock. The user or a time server can set it forwards and back: never measure a duration with
  /// it.
  virtual Date now() const = 0;

  /// A clock that only runs forwards, for durations. It stands still while the system sleeps.
  virtual std::chrono::steady_clock::time_point steadyNow() const = 0;

  /// Calls back once when `delay` has passed, unless `context` was destroyed before.
  virtual void after(std::chrono::milliseconds delay, QObject* context, Callback callback) = 0;

  struct Repeating {
    std::chrono::milliseconds interval{0};
    /// How much later a call may come, so that the system can combine several wake-ups.
    std::chrono::milliseconds tolerance{0};
  };

  /// Calls back repeatedly until `context` is destroyed.
  virtual void every(const Repeating& timing, QObject* context, Callback callback) = 0;
};

}  // namespace spacemint
