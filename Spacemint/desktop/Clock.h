#pragma once

#include "core/base/Date.h"

#include <QFuture>
#include <QObject>
#include <QPromise>

#include <functional>
#include <memory>

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

  /// Finishes with true when `delay` has passed; never finishes if `context` was destroyed before.
  QFuture<bool> wait(std::chrono::milliseconds delay, QObject* context) {
    const auto promise = std::make_shared<QPromise<bool>>();
    promise->start();
    after(delay, context, [promise] {
      promise->addResult(true);
      promise->finish();
    });
    return promise->future();
  }

  struct Repeating {
    std::chrono::milliseconds interval{0};
    /// How much later a call may come, so that the system can combine several wake-ups.
    std::chrono::milliseconds tolerance{0};
  };

  /// Calls back repeatedly until `context` is destroyed.
  virtual void every(const Repeating& timing, QObject* context, Callback callback) = 0;
};

}  // namespace spacemint
