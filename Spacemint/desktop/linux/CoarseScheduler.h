#pragma once

#include "Spacemint/desktop/ActivityScheduler.h"

#include <string>

namespace spacemint {

/// Whether the system runs on batteries that each hold less than 20 %. `folder` is where the kernel lists
/// power supplies: /sys/class/power_supply. False without a battery. Any thread.
bool isBatteryLow(const std::string& folder);

/// Runs an activity when its interval has passed. The kernel's timer runs on while the system sleeps: a run
/// that was due meanwhile comes right after waking. The next interval begins when the run has finished. Main
/// thread only.
///
/// A run that is due while the battery is low waits until the battery is not; the level is read every few
/// minutes. The tolerance of an activity is not used: one wake-up in hours is not worth combining.
class CoarseScheduler final : public ActivityScheduler {
 public:
  struct Power {
    /// Where the kernel lists power supplies.
    std::string folder = "/sys/class/power_supply";
    /// How long to wait before the battery's level is read again, in seconds.
    Seconds lookAgain{300};
  };

  CoarseScheduler() : CoarseScheduler(Power{}) {}
  explicit CoarseScheduler(Power power) : power_(std::move(power)) {}

  std::unique_ptr<Scheduled> schedule(const Activity& activity, Handler handler) override;
  bool isGoodMoment() const override { return !isBatteryLow(power_.folder); }

 private:
  Power power_;
};

}  // namespace spacemint
