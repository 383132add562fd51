#pragma once

#include "Spacemint/desktop/ActivityScheduler.h"

#include <string>

namespace spacemint {

/// Runs an activity when its interval is over, by a timer of the kernel's that goes on while the system
/// sleeps: a run that was missed comes right after waking. The next interval begins when the run is finished.
///
/// A run that is due while the battery is low waits, however long that takes, and is looked at again every
/// few minutes. The tolerance of an activity is not used: one wake-up in hours is not worth bundling.
class CoarseScheduler final : public ActivityScheduler {
 public:
  struct Power {
    /// Where the kernel tells of batteries.
    std::string folder = "/sys/class/power_supply";
    /// How long to wait before the battery is looked at again.
    Seconds lookAgain{300};
  };

  CoarseScheduler() : CoarseScheduler(Power{}) {}
  explicit CoarseScheduler(Power power) : power_(std::move(power)) {}

  std::unique_ptr<Scheduled> schedule(const Activity& activity, Handler handler) override;

 private:
  Power power_;
};

}  // namespace spacemint
