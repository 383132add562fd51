#include "Spacemint/desktop/linux/CoarseScheduler.h"

#include "core/host/FileHandle.h"

#include <QPointer>
#include <QSocketNotifier>

#include <sys/timerfd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <utility>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

constexpr int lowPercentage = 20;

std::string fact(const fs::path& supply, const char* name) {
  std::ifstream file(supply / name);
  std::string value;
  std::getline(file, value);
  return value;
}

// Mice and keyboards have batteries, too: their scope is "Device".
bool isOfTheSystem(const fs::path& supply) {
  return fact(supply, "type") == "Battery" && fact(supply, "scope") != "Device";
}

bool isLow(const fs::path& battery) {
  std::ifstream file(battery / "capacity");
  int percentage = 0;
  return file >> percentage && percentage < lowPercentage;
}

// A timer of the kernel that runs on while the system sleeps.
class SleepingTimer {
 public:
  int descriptor() const { return handle_.get(); }

  void start(Seconds delay) {
    // Zero would stop the timer. Longer than a year could overflow the nanoseconds.
    constexpr Seconds shortest{1e-6};
    constexpr Seconds longest = std::chrono::years{1};
    const auto wait = std::chrono::ceil<std::chrono::nanoseconds>(std::clamp(delay, shortest, longest));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(wait);
    itimerspec once{};
    once.it_value = {.tv_sec = seconds.count(), .tv_nsec = (wait - seconds).count()};
    timerfd_settime(handle_.get(), 0, &once, nullptr);
  }

  // False if the timer has not expired.
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
    // A copy, because the handler may destroy this object. `finished` may be called after that, and more than
    // once: only the first call for this run counts.
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

bool isBatteryLow(const std::string& folder) {
  bool isDischarging = false;
  std::error_code failed;
  for (fs::directory_iterator supply(folder, failed), end; !failed && supply != end;
       supply.increment(failed)) {
    if (!isOfTheSystem(supply->path())) continue;
    if (!isLow(supply->path())) return false;
    if (fact(supply->path(), "status") == "Discharging") isDischarging = true;
  }
  return isDischarging;
}

std::unique_ptr<ActivityScheduler::Scheduled> CoarseScheduler::schedule(const Activity& activity,
                                                                        Handler handler) {
  if (!(activity.interval > Seconds{0})) return std::make_unique<Scheduled>();
  return std::make_unique<Repetition>(activity.interval, power_, std::move(handler));
}

}  // namespace spacemint
