#pragma once

#include "core/base/Date.h"

#include <functional>
#include <memory>

namespace spacemint {

/// Repeating work that may wait for a good moment. Main thread only.
///
/// The time between two runs counts while the system sleeps; a run that was missed by it comes soon after.
class ActivityScheduler {
 public:
  struct Activity {
    const char* identifier = "";
    /// From one run to the next; nothing ever runs when it is zero or less.
    Seconds interval{0};
    /// How much later a run may be.
    Seconds tolerance{0};
  };

  using Completion = std::function<void()>;
  /// Is handed what to call when the run is over. There is no next run before that.
  using Handler = std::function<void(Completion finished)>;

  /// Runs for as long as it lives.
  class Scheduled {
   public:
    Scheduled() = default;
    Scheduled(const Scheduled&) = delete;
    Scheduled& operator=(const Scheduled&) = delete;
    virtual ~Scheduled() = default;
  };

  ActivityScheduler() = default;
  ActivityScheduler(const ActivityScheduler&) = delete;
  ActivityScheduler& operator=(const ActivityScheduler&) = delete;
  virtual ~ActivityScheduler() = default;

  virtual std::unique_ptr<Scheduled> schedule(const Activity& activity, Handler handler) = 0;
};

}  // namespace spacemint
