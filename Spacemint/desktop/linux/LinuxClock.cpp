#include "Spacemint/desktop/linux/LinuxClock.h"

#include "Spacemint/desktop/linux/TimerPlan.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace spacemint {

Date LinuxClock::now() const {
  return std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
}

void LinuxClock::after(std::chrono::milliseconds delay, QObject* context, Callback callback) {
  QTimer::singleShot(std::max(delay, std::chrono::milliseconds{0}), context,
                     [callback = std::move(callback)] { callback(); });
}

void LinuxClock::every(const Repeating& timing, QObject* context, Callback callback) {
  const TimerPlan plan = TimerPlan::of(timing);
  auto* timer = new QTimer(context);
  timer->setTimerType(plan.type);
  QObject::connect(timer, &QTimer::timeout, context, [callback = std::move(callback)] { callback(); });
  timer->start(plan.interval);
}

}  // namespace spacemint
