#pragma once

#include "core/base/Date.h"

#include <functional>
#include <memory>

namespace spacemint {

/// Repeats work that may wait for a good moment. Main thread only.
///
/// A run that is due at a bad moment begins at the next good one. The interval runs on while the system
/// sleeps; a run that was due meanwhile comes soon after waking.
class ActivityScheduler {
 public:
  struct Activity {
    const char* identifier = "";
    /// From the end of one run to the next run, in seconds. Zero or less means never.
    Seconds interval{0};
    /// How much later a run may come, in seconds.
    Seconds tolerance{0};
  };

  using Completion = std::function<void()>;
  /// Does one run, and calls `finished` when the run is over. The next run comes only after that.
  using Handler = std::function<void(Completion finished)>;

  /// Destroy it to end the repetition.
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

  /// Whether work that nobody waits for may begin now. It may not while the battery is low.
  virtual bool isGoodMoment() const = 0;
};

}  // namespace spacemint
