#include "Spacemint/model/ScanWorker.h"

#include "core/scan/ChangeLog.h"
#include "core/scan/FinishedScan.h"
#include "core/tree/Paths.h"

namespace spacemint {

namespace {

// Passes on the first call and then what comes after the interval.
auto throttled(std::function<void(const DiskScanner::Progress&)> callback) {
  using SteadyClock = std::chrono::steady_clock;
  return [callback = std::move(callback),
          last = std::optional<SteadyClock::time_point>{}](const DiskScanner::Progress& progress) mutable {
    const auto now = SteadyClock::now();
    if (last && now - *last <= ScanJob::progressInterval) return;
    last = now;
    callback(progress);
  };
}

}  // namespace

ScanJob::Report ScanJob::run() const {
  const Date start = clock.now();
  // Before the journal is asked: where nothing was recorded until now, this scan is what recording begins
  // with.
  const auto walk = journal.beginWalk(root);
  const ChangeLog log{journal};
  ScanPlan plan = ScanPlan::make(log, {.root = root,
                                       .minNodeSize = minNodeSize,
                                       .now = start,
                                       .earlier = seed ? std::optional{*seed} : std::nullopt,
                                       .timeout = journalTimeout});
  if (walk) plan.eventID = walk->eventID();
  auto result = DiskScanner::scan({.root = root,
                                   .minNodeSize = minNodeSize,
                                   .reuse = plan.reuse,
                                   .throttleIO = true,
                                   .shouldCancel = [this] { return flag->isSet(); },
                                   .progress = throttled(progress),
                                   .listing = walk ? &walk->listing() : nullptr});
  if (flag->isSet()) return {};
  if (walk && result) walk->finish();
  if (!result) return {.failure = "Couldn't scan " + Paths::display(root, home) + "."};
  return report(FinishedScan{.result = std::move(*result),
                             .plan = plan,
                             .minNodeSize = minNodeSize,
                             .start = start,
                             .end = clock.now(),
                             .volume = volume.status()}
                    .snapshot());
}

ScanJob::Report ScanJob::report(Snapshot snapshot) const {
  Report report;
  const auto saved = store.save(snapshot);
  if (saved) {
    store.prune({.days = historyDays, .now = clock.now(), .timeZone = timeZone});
  } else {
    report.failure = "Couldn't save scan results: " + saved.error().message;
  }
  report.snapshot = std::move(snapshot);
  report.entries = store.entries(clock.now());
  return report;
}

}  // namespace spacemint
