#pragma once

#include "Spacemint/desktop/Clock.h"

#include <Qt>

namespace spacemint {

/// The system's clocks, and timers of the event loop. A repeating timer fires together with other timers of
/// the system, as far as its tolerance allows.
class LinuxClock final : public Clock {
 public:
  Date now() const override;
  std::chrono::steady_clock::time_point steadyNow() const override {
    return std::chrono::steady_clock::now();
  }
  void after(std::chrono::milliseconds delay, QObject* context, Callback callback) override;
  void every(const Repeating& timing, QObject* context, Callback callback) override;
};

/// The settings of a Qt timer that never fires early, and never later than a tolerance allows.
struct TimerPlan {
  std::chrono::milliseconds interval{0};
  Qt::TimerType type = Qt::PreciseTimer;

  /// Takes the coarsest timer that the tolerance allows. An interval below a millisecond becomes one
  /// millisecond.
  static TimerPlan of(const Clock::Repeating& timing);

  bool operator==(const TimerPlan&) const = default;
};

}  // namespace spacemint
