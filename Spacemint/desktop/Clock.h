#pragma once

#include "core/base/Date.h"

#include <QFuture>
#include <QObject>
#include <QPromise>

#include <functional>
#include <memory>

namespace spacemint {

/// The time of day and timers. Main thread only, but for `now`.
class Clock {
 public:
  using Callback = std::function<void()>;

  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  virtual Date now() const = 0;

  /// Calls back once when `delay` has passed, unless `context` is gone by then.
  virtual void after(std::chrono::milliseconds delay, QObject* context, Callback callback) = 0;

  /// Finishes with true when `delay` has passed; never when `context` is gone by then.
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
    /// How much later a call may come, so that the system can wake up for several things at once.
    std::chrono::milliseconds tolerance{0};
  };

  /// Calls back again and again for as long as `context` is there.
  virtual void every(const Repeating& timing, QObject* context, Callback callback) = 0;
};

}  // namespace spacemint
