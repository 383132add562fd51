#pragma once

#include "Spacemint/desktop/Clock.h"

#include <Qt>

namespace spacemint {

/// How a timer of the event loop is set so that it never comes early, and no later than it may.
struct TimerPlan {
  std::chrono::milliseconds interval{0};
  Qt::TimerType type = Qt::PreciseTimer;

  /// The coarsest timer that the tolerance allows. An interval below a millisecond becomes one.
  static TimerPlan of(const Clock::Repeating& timing);

  bool operator==(const TimerPlan&) const = default;
};

}  // namespace spacemint
