#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/Preferences.h"
#include "Spacemint/model/ScanJob.h"
#include "Spacemint/model/VolumeWatch.h"

#include <QObject>

#include <set>

namespace spacemint {

/// When scans run, and the one that is running. Main thread only.
class ScanLifecycle : public QObject {
  Q_OBJECT
 public:
  /// Smaller files and folders are not kept apart.
  static constexpr Bytes minNodeSize = 20'000'000;

  /// Where scans look and what they need.
  struct Places {
    std::string home;
    /// Root of a scan of the whole disk.
    std::string disk;
    std::string timeZone;
    EventJournal& journal;
  };

  struct Parts {
    ScanHistory& history;
    Messages& messages;
    const Preferences& preferences;
    const VolumeWatch& volume;
  };

  ScanLifecycle(const Parts& parts, const Desktop& desktop, Places places);

  /// What a scan of the chosen scope measures.
  const std::string& root() const;
  bool isScanning() const { return progress_.has_value(); }
  /// Present exactly while a scan runs.
  const std::optional<DiskScanner::Progress>& progress() const { return progress_; }
  std::optional<double> fraction() const;
  std::optional<Seconds> timeRemaining(Date now) const;
  bool isStale(Seconds olderThan) const;

  /// Begins a scan; nothing while one runs.
  void scan();
  /// Ends the scan that runs; nothing comes of it.
  void cancel();

  /// Scans again and again, from now on at the interval of the settings.
  void scheduleBackgroundScans();

 Q_SIGNALS:
  void progressChanged();
  /// A scan takes the place of one of another folder, or is the first.
  void rootChanged();

 private:
  void runScheduled(ActivityScheduler::Completion finished);
  void start(const std::shared_ptr<CancelFlag>& flag, const SharedSnapshot& seed);
  void progressed(const std::shared_ptr<CancelFlag>& flag, const DiskScanner::Progress& progress);
  void finish(ScanJob::Report report, const std::shared_ptr<CancelFlag>& flag);
  void end();

  Parts parts_;
  Desktop desktop_;
  Places places_;
  std::optional<DiskScanner::Progress> progress_;
  std::shared_ptr<CancelFlag> cancelFlag_;
  Date startedAt_;
  Bytes expectedBytes_ = 0;
  /// Paths that were cleaned while the scan ran, and perhaps after it had passed there.
  std::set<std::string> editedDuringScan_;
  std::unique_ptr<ActivityScheduler::Scheduled> scheduled_;
  std::optional<std::int64_t> scheduledHours_;
  ActivityScheduler::Completion scheduledRunFinished_;
};

}  // namespace spacemint
