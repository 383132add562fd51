#include "Spacemint/desktop/linux/TimerPlan.h"

#include <algorithm>

namespace spacemint {

using std::chrono::milliseconds;

// A coarse timer comes up to 5 % early or late, a very coarse one up to a second. The interval is lengthened
// by that much, so it may be off by twice as much in the end.
TimerPlan TimerPlan::of(const Clock::Repeating& timing) {
  const auto interval = std::max(timing.interval, milliseconds{1});
  constexpr milliseconds second{1'000};
  if (timing.tolerance >= 2 * second && interval >= second) return {interval + second, Qt::VeryCoarseTimer};
  const auto twentieth = interval / 19 + milliseconds{1};
  if (timing.tolerance >= 2 * twentieth) return {interval + twentieth, Qt::CoarseTimer};
  return {interval, Qt::PreciseTimer};
}

}  // namespace spacemint
