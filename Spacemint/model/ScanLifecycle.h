#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/Preferences.h"
#include "Spacemint/model/ScanJob.h"
#include "Spacemint/model/VolumeWatch.h"
#include "core/scan/ScanTiming.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace spacemint {

/// Starts scans when they are due, and follows the running scan. Main thread only.
class ScanLifecycle : public QObject {
  Q_OBJECT
 public:
  /// Files and folders below this size, in bytes, have no node of their own.
  static constexpr Bytes minNodeSize = 20'000'000;

  struct Parts {
    ScanHistory& history;
    Messages& messages;
    const Preferences& preferences;
    const VolumeWatch& volume;
  };

  ScanLifecycle(const Parts& parts, const AppContext& context, const Desktop& desktop);

  /// The folder that the next scan measures, by the scope of the settings.
  const std::string& root() const;
  bool isScanning() const { return progress_.has_value(); }
  /// Present exactly while a scan runs.
  const std::optional<DiskScanner::Progress>& progress() const { return progress_; }
  /// What the running scan has found; empty while none runs.
  const FoundSoFar& found() const { return found_; }
  std::optional<double> fraction() const;
  /// The estimated time until the running scan ends; absent while the estimate would be a guess.
  std::optional<Seconds> timeRemaining() const;
  /// True when the last scan is older than this, is of another folder than `root`, or when there is none.
  bool isStale(Seconds olderThan) const;
  /// Why the last scan since the start of the program walked everything, in words that fit after "because";
  /// empty when it took over what had not changed. Absent before the first scan.
  const std::optional<std::string>& whyFull() const { return whyFull_; }

  /// Starts a scan, once the stored scans are read: a rescan continues the last one. Does nothing while a
  /// scan runs.
  void scan();
  /// Brings the current scan up to date with a quiet full scan that is neither shown nor stored, so that the
  /// folder is recorded again, as after a restart of the program. Nothing happens while a scan or a recorder
  /// runs, or without a scan of `root`. A scan that starts meanwhile ends this one.
  void record();
  /// Ends the running scan. If there is no other, what it has measured becomes the current scan
  /// (`Snapshot::measuredPart`). Of a scan that does not answer, a later call drops the result.
  void stop();
  /// Ends the running scan and drops its result.
  void cancel();
  /// Whether somebody looks at the progress. The running scan is faster meanwhile.
  void setWatched(bool isWatched);

  /// Schedules background scans at the interval of the settings. Call it again when the interval changed.
  void scheduleBackgroundScans();

 Q_SIGNALS:
  void progressChanged();
  void foundChanged();
  /// The finished scan is the first, or has another root than the last one.
  void rootChanged();

 private:
  void runScheduled(ActivityScheduler::Completion finished);
  ScanJob newJob() const;
  void start(const std::shared_ptr<ScanOrders>& orders);
  void progressed(const std::shared_ptr<ScanOrders>& orders, const DiskScanner::Progress& progress);
  void finish(ScanJob::Report report, const std::shared_ptr<ScanOrders>& orders);
  void finishRecording(ScanJob::Report report, const std::shared_ptr<ScanOrders>& orders);
  void remeasureEdited();
  void keepPart(Snapshot part, const std::shared_ptr<ScanOrders>& orders);
  void end();

  Parts parts_;
  const AppContext& context_;
  Desktop desktop_;
  std::optional<DiskScanner::Progress> progress_;
  FoundSoFar found_;
  /// Of the running scan, or of the one that `record` started.
  std::shared_ptr<ScanOrders> orders_;
  bool isWatched_ = false;
  std::chrono::steady_clock::time_point startedAt_;
  std::chrono::steady_clock::time_point stoppedAt_;
  ScanTiming::Expected expected_;
  std::optional<std::string> whyFull_;
  /// Paths that were cleaned while the scan ran. The scan may have measured them before.
  std::set<std::string> editedDuringScan_;
  std::unique_ptr<ActivityScheduler::Scheduled> scheduled_;
  std::optional<std::int64_t> scheduledHours_;
  ActivityScheduler::Completion scheduledRunFinished_;
};

}  // namespace spacemint
