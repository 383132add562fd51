#pragma once

#include "core/base/Date.h"

#include <QObject>

#include <functional>

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

  struct Repeating {
    std::chrono::milliseconds interval{0};
    /// How much later a call may come, so that the system can wake up for several things at once.
    std::chrono::milliseconds tolerance{0};
  };

  /// Calls back again and again for as long as `context` is there.
  virtual void every(const Repeating& timing, QObject* context, Callback callback) = 0;
};

}  // namespace spacemint
