#include "Spacemint/desktop/linux/LinuxClock.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace spacemint {

using std::chrono::milliseconds;

Date LinuxClock::now() const {
  return std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
}

void LinuxClock::after(milliseconds delay, QObject* context, Callback callback) {
  QTimer::singleShot(std::max(delay, milliseconds{0}), context,
                     [callback = std::move(callback)] { callback(); });
}

void LinuxClock::every(const Repeating& timing, QObject* context, Callback callback) {
  const TimerPlan plan = TimerPlan::of(timing);
  auto* timer = new QTimer(context);
  timer->setTimerType(plan.type);
  QObject::connect(timer, &QTimer::timeout, context, [callback = std::move(callback)] { callback(); });
  timer->start(plan.interval);
}

// Qt fires a coarse timer up to 5 % early or late, a very coarse timer up to a second early or late. The
// interval is made longer by that error, so that the timer is late by at most twice the error and never
// early.
TimerPlan TimerPlan::of(const Clock::Repeating& timing) {
  const auto interval = std::max(timing.interval, milliseconds{1});
  constexpr milliseconds second{1'000};
  if (timing.tolerance >= 2 * second && interval >= second) return {interval + second, Qt::VeryCoarseTimer};
  const auto twentieth = interval / 19 + milliseconds{1};
  if (timing.tolerance >= 2 * twentieth) return {interval + twentieth, Qt::CoarseTimer};
  return {interval, Qt::PreciseTimer};
}

}  // namespace spacemint
