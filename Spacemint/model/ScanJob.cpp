#include "Spacemint/model/ScanJob.h"

#include "core/base/Isolate.h"
#include "core/base/Translation.h"
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

ScanPlan ScanJob::plan(Date start, bool mayReuse) const {
  return ScanPlan::make(journal, {.root = root,
                                  .minNodeSize = minNodeSize,
                                  .now = start,
                                  .earlier = seed ? std::optional{*seed} : std::nullopt,
                                  .mayReuse = mayReuse,
                                  .timeout = journalTimeout,
                                  .shouldCancel = [this] { return isCancelled(); },
                                  .excludes = excludes});
}

ScanJob::Report ScanJob::run() const {
  const Date start = clock.now();
  ScanPlan plan = this->plan(start, true);
  if (isCancelled()) return {};
  const std::string whyFull = plan.whyFull;
  // If nothing recorded this folder until now, recording starts with this scan.
  const auto crawl = plan.isFull() ? journal.beginCrawl(root) : nullptr;
  auto snapshot = measure(std::move(plan), start, crawl.get(), [this] { return isCancelled(); });
  if (isCancelled()) return {};
  if (!snapshot)
    return {.failure = i18n("Couldn't scan {path}.", {{"path", isolatedPath(Paths::display(root, home))}})};
  Report report = save(std::move(*snapshot));
  report.whyFull = whyFull;
  return report;
}

ScanJob::Report ScanJob::record() const {
  const Date start = clock.now();
  const auto crawl = journal.beginCrawl(root);
  if (!crawl) return {};
  return {.snapshot = measure(plan(start, false), start, crawl.get(),
                              [&] { return isCancelled() || crawl->hasFailed(); })};
}

// Absent if cancelled, or if the root cannot be scanned. `crawl` may be null.
std::optional<Snapshot> ScanJob::measure(ScanPlan plan, Date start, RecordingCrawl* crawl,
                                         const std::function<bool()>& shouldCancel) const {
  if (crawl != nullptr) plan.eventID = crawl->eventID();
  auto result = plan.scan({.root = root,
                           .minNodeSize = minNodeSize,
                           .manner = [this] { return orders->manner.load(); },
                           .shouldCancel = shouldCancel,
                           .progress = throttled(progress),
                           .look =
                               [&, tell = throttled([this](const DiskScanner::Unfinished& scan) {
                                     found(FoundSoFar::in(scan, root));
                                   })](const DiskScanner::Unfinished& scan) mutable {
                                 if (orders->isStopped) return stop(scan, start);
                                 tell(scan);
                               },
                           .listing = crawl});
  if (!result || shouldCancel()) return std::nullopt;
  if (crawl != nullptr) crawl->finish();
  return FinishedScan{.result = std::move(*result),
                      .plan = plan,
                      .minNodeSize = minNodeSize,
                      .start = start,
                      .end = clock.now(),
                      .volume = volume.status()}
      .snapshot();
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
