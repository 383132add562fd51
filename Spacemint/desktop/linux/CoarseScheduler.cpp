#include "Spacemint/desktop/linux/CoarseScheduler.h"

#include "Spacemint/desktop/linux/BatteryLevel.h"
#include "core/host/FileHandle.h"

#include <QPointer>
#include <QSocketNotifier>

#include <sys/timerfd.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace spacemint {

namespace {

// One timer of the kernel's that goes on while the system sleeps. Read and write through its descriptor only.
class SleepingTimer {
 public:
  int descriptor() const { return handle_.get(); }

  void start(Seconds delay) {
    // A zero would stop the timer, and a year is as good as for ever.
    constexpr Seconds shortest{1e-6};
    constexpr Seconds longest = std::chrono::years{1};
    const auto wait = std::chrono::ceil<std::chrono::nanoseconds>(std::clamp(delay, shortest, longest));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(wait);
    itimerspec once{};
    once.it_value = {.tv_sec = seconds.count(), .tv_nsec = (wait - seconds).count()};
    timerfd_settime(handle_.get(), 0, &once, nullptr);
  }

  // False where it has not run out after all.
  bool takeEnd() {
    std::uint64_t times = 0;
    return read(handle_.get(), &times, sizeof times) == static_cast<ssize_t>(sizeof times);
  }

 private:
  FileHandle handle_{timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)};
};

class Repetition final : public ActivityScheduler::Scheduled {
 public:
  Repetition(Seconds interval, CoarseScheduler::Power power, ActivityScheduler::Handler handler)
      : interval_(interval),
        power_(std::move(power)),
        handler_(std::move(handler)),
        notifier_(timer_.descriptor(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { timerEnded(); });
    timer_.start(interval_);
  }

 private:
  void timerEnded() {
    if (!timer_.takeEnd()) return;
    if (isBatteryLow(power_.folder)) return timer_.start(power_.lookAgain);
    // A copy, because the handler may put an end to this object. Only the first call for this run counts, and
    // it may come when this object is gone.
    const auto handler = handler_;
    const int run = ++run_;
    handler([this, run, alive = QPointer{&notifier_}] {
      if (!alive || run != run_) return;
      ++run_;
      timer_.start(interval_);
    });
  }

  Seconds interval_;
  CoarseScheduler::Power power_;
  ActivityScheduler::Handler handler_;
  int run_ = 0;
  SleepingTimer timer_;
  QSocketNotifier notifier_;
};

}  // namespace

std::unique_ptr<ActivityScheduler::Scheduled> CoarseScheduler::schedule(const Activity& activity,
                                                                        Handler handler) {
  if (!(activity.interval > Seconds{0})) return std::make_unique<Scheduled>();
  return std::make_unique<Repetition>(activity.interval, power_, std::move(handler));
}

}  // namespace spacemint
