#include "Spacemint/model/ScanJob.h"

#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/scan/ScanPlan.h"
#include "core/tree/Paths.h"

namespace spacemint {

namespace {

// Forwards the first call, and later calls at most once per interval.
auto throttled(auto callback) {
  using SteadyClock = std::chrono::steady_clock;
  return [callback = std::move(callback),
          last = std::optional<SteadyClock::time_point>{}](const auto& argument) mutable {
    const auto now = SteadyClock::now();
    if (last && now - *last <= ScanJob::progressInterval) return;
    last = now;
    callback(argument);
  };
}

}  // namespace

ScanJob::Report ScanJob::run() const {
  const Date start = clock.now();
  const auto isCancelled = [this] { return orders->isCancelled.load(); };
  ScanPlan plan = ScanPlan::make(journal, {.root = root,
                                           .minNodeSize = minNodeSize,
                                           .now = start,
                                           .earlier = seed ? std::optional{*seed} : std::nullopt,
                                           .timeout = journalTimeout,
                                           .shouldCancel = isCancelled,
                                           .excludes = excludes});
  if (isCancelled()) return {};
  // If nothing recorded this folder until now, recording starts with this scan.
  const auto crawl = plan.isFull() ? journal.beginCrawl(root) : nullptr;
  if (crawl) plan.eventID = crawl->eventID();
  auto result = plan.scan({.root = root,
                           .minNodeSize = minNodeSize,
                           .manner = [this] { return orders->manner.load(); },
                           .shouldCancel = isCancelled,
                           .progress = throttled(progress),
                           .look =
                               [&, tell = throttled([this](const DiskScanner::Unfinished& scan) {
                                     found(FoundSoFar::in(scan, root));
                                   })](const DiskScanner::Unfinished& scan) mutable {
                                 if (orders->isStopped) return stop(scan, start);
                                 tell(scan);
                               },
                           .listing = crawl.get()});
  if (isCancelled()) return {};
  if (crawl && result) crawl->finish();
  if (!result)
    return {.failure = i18n("Couldn't scan {path}.", {{"path", isolatedPath(Paths::display(root, home))}})};
  Report report = save(FinishedScan{.result = std::move(*result),
                                    .plan = plan,
                                    .minNodeSize = minNodeSize,
                                    .start = start,
                                    .end = clock.now(),
                                    .volume = volume.status()}
                           .snapshot());
  report.whyFull = plan.whyFull;
  return report;
}

void ScanJob::stop(const DiskScanner::Unfinished& scan, Date start) const {
  if (orders->isCancelled.exchange(true)) return;
  const ScanPlan none;
  stopped(FinishedScan{.result = scan.soFar(),
                       .plan = none,
                       .minNodeSize = minNodeSize,
                       .start = start,
                       .end = clock.now(),
                       .volume = volume.status()}
              .snapshot());
}

ScanJob::Report ScanJob::save(Snapshot snapshot) const {
  Report report;
  const auto saved = store.save(snapshot);
  if (saved) {
    store.prune({.days = historyDays, .now = clock.now(), .timeZone = timeZone});
  } else {
    report.failure = i18n("Couldn't save scan results: {reason}", {{"reason", saved.error().message}});
  }
  report.snapshot = std::move(snapshot);
  report.entries = store.entries(clock.now());
  return report;
}

}  // namespace spacemint
