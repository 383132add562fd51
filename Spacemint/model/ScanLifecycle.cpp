#include "Spacemint/model/ScanLifecycle.h"

#include "core/base/Log.h"
#include "core/scan/ScanTiming.h"

#include <QPointer>

namespace spacemint {

namespace {

constexpr const char* threadName = "Spacemint scan";
constexpr const char* activityName = "app.spacemint.scan";
constexpr double scheduleTolerance = 0.25;
// A background run scans only if the last scan, started by the user or not, is older than this part of the
// interval.
constexpr double dueAfter = 0.5;

Seconds hours(std::int64_t count) {
  return std::chrono::duration<double, std::ratio<3'600>>{static_cast<double>(count)};
}

}  // namespace

ScanLifecycle::ScanLifecycle(const Parts& parts, const AppContext& context, const Desktop& desktop)
    : parts_(parts),
      context_(context),
      desktop_(desktop) {
  connect(&parts_.history, &ScanHistory::edited, this, [this](const std::string& path) {
    if (isScanning()) editedDuringScan_.insert(path);
  });
}

const std::string& ScanLifecycle::root() const {
  return parts_.preferences.scope() == ScanScope::disk ? context_.disk : context_.home;
}

std::optional<double> ScanLifecycle::fraction() const {
  return progress_ ? ScanTiming::fraction(progress_->bytes, expectedBytes_) : std::nullopt;
}

std::optional<Seconds> ScanLifecycle::timeRemaining() const {
  return ScanTiming::remaining(fraction(), desktop_.clock.steadyNow() - startedAt_);
}

bool ScanLifecycle::isStale(Seconds olderThan) const {
  return ScanTiming::isStale({.snapshot = parts_.history.snapshot().get(),
                              .root = root(),
                              .now = desktop_.clock.now(),
                              .olderThan = olderThan});
}

void ScanLifecycle::scan() {
  if (isScanning()) return;
  const SharedSnapshot& last = parts_.history.snapshot();
  startedAt_ = desktop_.clock.steadyNow();
  expectedBytes_ =
      ScanTiming::expectedBytes(last.get(), root(), parts_.volume.status(), parts_.volume.volumes());
  editedDuringScan_.clear();
  cancelFlag_ = std::make_shared<CancelFlag>(false);
  progress_ = DiskScanner::Progress{};
  Q_EMIT progressChanged();
  start(cancelFlag_, last);
}

void ScanLifecycle::start(const std::shared_ptr<CancelFlag>& flag, const SharedSnapshot& seed) {
  Tasks& tasks = desktop_.tasks;
  const QPointer<ScanLifecycle> self{this};
  ScanJob job{.root = root(),
              .minNodeSize = minNodeSize,
              .seed = seed,
              .flag = flag,
              .store = parts_.history.store(),
              .home = context_.home,
              .timeZone = context_.timeZone,
              .journal = context_.journal,
              .clock = desktop_.clock,
              .volume = desktop_.volume,
              .progress = [&tasks, self, flag](const DiskScanner::Progress& progress) {
                tasks.post([self, flag, progress] {
                  if (self) self->progressed(flag, progress);
                });
              }};
  tasks.run(
      Tasks::Priority::background, this, [job = std::move(job)] { return job.run(); },
      [this, flag](ScanJob::Report report) { finish(std::move(report), flag); }, threadName);
}

void ScanLifecycle::progressed(const std::shared_ptr<CancelFlag>& flag,
                               const DiskScanner::Progress& progress) {
  if (cancelFlag_ != flag) return;
  progress_ = progress;
  Q_EMIT progressChanged();
}

void ScanLifecycle::finish(ScanJob::Report report, const std::shared_ptr<CancelFlag>& flag) {
  // The report is of a scan that was cancelled; another may run by now.
  if (cancelFlag_ != flag) return;
  if (report.snapshot) whyFull_ = std::move(report.whyFull);
  end();
  if (report.failure) parts_.messages.show(*report.failure);
  if (!report.snapshot) return;
  const SharedSnapshot before = parts_.history.snapshot();
  if (!before || before->rootPath() != report.snapshot->rootPath()) Q_EMIT rootChanged();
  parts_.history.replace(std::move(*report.snapshot), std::move(report.entries));
  const auto edited = std::exchange(editedDuringScan_, {});
  parts_.history.remeasure({.paths = {edited.begin(), edited.end()}});
}

void ScanLifecycle::cancel() {
  if (!cancelFlag_) return;
  *cancelFlag_ = true;
  end();
}

void ScanLifecycle::end() {
  progress_.reset();
  cancelFlag_.reset();
  Q_EMIT progressChanged();
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
