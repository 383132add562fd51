#include "Spacemint/model/ScanLifecycle.h"

#include "core/base/Log.h"

#include <QPointer>

namespace spacemint {

namespace {

constexpr const char* threadName = "Spacemint scan";
constexpr const char* activityName = "app.spacemint.scan";
constexpr double scheduleTolerance = 0.25;
// A background run scans only if the last scan, started by the user or not, is older than this part of the
// interval.
constexpr double dueAfter = 0.5;
constexpr std::chrono::seconds handOverTime{2};

Seconds hours(std::int64_t count) {
  return std::chrono::duration<double, std::ratio<3'600>>{static_cast<double>(count)};
}

}  // namespace

ScanLifecycle::ScanLifecycle(const Parts& parts, const AppContext& context, const Desktop& desktop)
    : parts_(parts),
      context_(context),
      desktop_(desktop) {
  connect(&parts_.history, &ScanHistory::edited, this, [this](const std::string& path) {
    if (orders_) editedDuringScan_.insert(path);
  });
}

const std::string& ScanLifecycle::root() const {
  return parts_.preferences.scope() == ScanScope::disk ? context_.disk : context_.home;
}

std::optional<double> ScanLifecycle::fraction() const {
  return progress_ ? ScanTiming::fraction(progress_->bytes, expected_.bytes) : std::nullopt;
}

std::optional<Seconds> ScanLifecycle::timeRemaining() const {
  if (!progress_) return std::nullopt;
  return ScanTiming::remaining(*progress_, expected_, desktop_.clock.steadyNow() - startedAt_);
}

bool ScanLifecycle::isStale(Seconds olderThan) const {
  return ScanTiming::isStale({.snapshot = parts_.history.snapshot().get(),
                              .root = root(),
                              .now = desktop_.clock.now(),
                              .olderThan = olderThan});
}

void ScanLifecycle::scan() {
  if (!parts_.history.isLoaded()) {
    connect(&parts_.history, &ScanHistory::loaded, this, &ScanLifecycle::scan, Qt::SingleShotConnection);
    return;
  }
  if (isScanning()) return;
  cancel();
  startedAt_ = desktop_.clock.steadyNow();
  expected_ = ScanTiming::expected(parts_.history.snapshot().get(), root(), parts_.volume.status(),
                                   parts_.volume.volumes());
  editedDuringScan_.clear();
  orders_ = std::make_shared<ScanOrders>();
  progress_ = DiskScanner::Progress{};
  setWatched(isWatched_);
  Q_EMIT progressChanged();
  start(orders_);
}

void ScanLifecycle::record() {
  const SharedSnapshot& scan = parts_.history.snapshot();
  if (orders_ || !scan || scan->rootPath() != root()) return;
  editedDuringScan_.clear();
  orders_ = std::make_shared<ScanOrders>();
  ScanJob job = newJob();
  // The current scan stays comparable with itself as it is stored.
  job.minNodeSize = scan->minNodeSize;
  job.excludes = Excludes::usable(scan->coverage.excludes, context_.home);
  desktop_.tasks.run(
      Tasks::Priority::background, this, [job = std::move(job)] { return job.record(); },
      [this, orders = orders_](ScanJob::Report report) { finishRecording(std::move(report), orders); },
      threadName);
}

// With the orders, for the current settings.
ScanJob ScanLifecycle::newJob() const {
  return {.root = root(),
          .minNodeSize = minNodeSize,
          .excludes = Excludes::usable(parts_.preferences.excludes(), context_.home),
          .seed = parts_.history.snapshot(),
          .orders = orders_,
          .store = parts_.history.store(),
          .home = context_.home,
          .timeZone = context_.timeZone,
          .journal = context_.journal,
          .clock = desktop_.clock,
          .volume = desktop_.volume};
}

void ScanLifecycle::start(const std::shared_ptr<ScanOrders>& orders) {
  Tasks& tasks = desktop_.tasks;
  const QPointer<ScanLifecycle> self{this};
  ScanJob job = newJob();
  job.progress = [&tasks, self, orders](const DiskScanner::Progress& progress) {
    tasks.post([self, orders, progress] {
      if (self) self->progressed(orders, progress);
    });
  };
  job.found = [&tasks, self, orders](FoundSoFar found) {
    tasks.post([self, orders, found = std::move(found)]() mutable {
      if (!self || self->orders_ != orders) return;
      self->found_ = std::move(found);
      Q_EMIT self->foundChanged();
    });
  };
  job.stopped = [&tasks, self, orders](Snapshot part) {
    tasks.post([self, orders, part = std::move(part)]() mutable {
      if (self) self->keepPart(std::move(part), orders);
    });
  };
  tasks.run(
      Tasks::Priority::background, this, [job = std::move(job)] { return job.run(); },
      [this, orders](ScanJob::Report report) { finish(std::move(report), orders); }, threadName);
}

void ScanLifecycle::progressed(const std::shared_ptr<ScanOrders>& orders,
                               const DiskScanner::Progress& progress) {
  if (orders_ != orders) return;
  progress_ = progress;
  Q_EMIT progressChanged();
}

void ScanLifecycle::finish(ScanJob::Report report, const std::shared_ptr<ScanOrders>& orders) {
  // The report is of a scan that was cancelled; another may run by now.
  if (orders_ != orders) return;
  if (report.snapshot) whyFull_ = std::move(report.whyFull);
  end();
  if (report.failure) parts_.messages.show(*report.failure);
  if (!report.snapshot) return;
  const SharedSnapshot before = parts_.history.snapshot();
  if (!before || before->rootPath() != report.snapshot->rootPath()) Q_EMIT rootChanged();
  parts_.history.replace(std::move(*report.snapshot), std::move(report.entries));
  remeasureEdited();
}

void ScanLifecycle::finishRecording(ScanJob::Report report, const std::shared_ptr<ScanOrders>& orders) {
  if (orders_ != orders) return;
  orders_.reset();
  // Without the comparison, an item that was left out of scans meanwhile would come back.
  const bool isSame =
      report.snapshot && report.snapshot->coverage.excludes == parts_.history.snapshot()->coverage.excludes;
  if (!isSame) return;
  parts_.history.update(std::move(*report.snapshot));
  remeasureEdited();
}

void ScanLifecycle::remeasureEdited() {
  const auto edited = std::exchange(editedDuringScan_, {});
  parts_.history.remeasure({.paths = {edited.begin(), edited.end()}});
}

void ScanLifecycle::keepPart(Snapshot part, const std::shared_ptr<ScanOrders>& orders) {
  if (orders_ != orders) return;
  part.measuredPart = ScanTiming::fraction(part.root.size, expected_.bytes).value_or(0);
  end();
  if (part.fileCount > 0) parts_.history.replace(std::move(part), parts_.history.entries());
}

// The scan hands over what it has measured at its next folder. One that does not get there is dropped at a
// later stop; the second click of a double click is none.
void ScanLifecycle::stop() {
  if (!orders_) return;
  if (parts_.history.snapshot()) return cancel();
  const auto now = desktop_.clock.steadyNow();
  if (!orders_->isStopped.exchange(true)) stoppedAt_ = now;
  if (now - stoppedAt_ >= handOverTime) cancel();
}

void ScanLifecycle::cancel() {
  if (!orders_) return;
  orders_->isCancelled = true;
  end();
}

void ScanLifecycle::setWatched(bool isWatched) {
  isWatched_ = isWatched;
  if (isScanning()) orders_->manner = isWatched ? ScanManner::waiting : ScanManner::quiet;
}

void ScanLifecycle::end() {
  progress_.reset();
  orders_.reset();
  found_ = {};
  Q_EMIT progressChanged();
  Q_EMIT foundChanged();
  if (scheduledRunFinished_) std::exchange(scheduledRunFinished_, nullptr)();
}

void ScanLifecycle::scheduleBackgroundScans() {
  const std::int64_t interval = parts_.preferences.scanIntervalHours();
  if (scheduledHours_ == interval) return;
  scheduledHours_ = interval;
  // End the old repetition before the new one begins.
  scheduled_.reset();
  scheduled_ = desktop_.scheduler.schedule(
      {.identifier = activityName,
       .interval = hours(interval),
       .tolerance = hours(interval) * scheduleTolerance},
      [this](ActivityScheduler::Completion finished) { runScheduled(std::move(finished)); });
}

void ScanLifecycle::runScheduled(ActivityScheduler::Completion finished) {
  const bool isDue = parts_.preferences.hasStarted() && !isScanning() &&
                     isStale(hours(parts_.preferences.scanIntervalHours()) * dueAfter);
  if (!isDue) {
    log(LogLevel::info, !parts_.preferences.hasStarted() ? "no scan: the user has not begun"
                        : isScanning()                   ? "no scan: one is running"
                                                         : "no scan: the last scan is fresh enough");
    return finished();
  }
  scheduledRunFinished_ = std::move(finished);
  scan();
}

}  // namespace spacemint
