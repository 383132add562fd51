#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/ScanHistory.h"
#include "core/host/EventJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/Excludes.h"
#include "core/scan/FoundSoFar.h"
#include "core/scan/ScanPlan.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// What the main thread tells one running scan. Its address also identifies the scan.
struct ScanOrders {
  /// Ends the scan without a report.
  std::atomic<bool> isCancelled = false;
  /// Ends the scan; `ScanJob::stopped` gets what it has measured.
  std::atomic<bool> isStopped = false;
  std::atomic<ScanManner> manner = ScanManner::quiet;
};

/// One scan. Its functions run on the scan's thread.
struct ScanJob {
  std::string root;
  Bytes minNodeSize = 0;
  Excludes excludes;
  /// The earlier scan, which is reused when the journal knows what changed since. Null for a full scan.
  SharedSnapshot seed;
  std::shared_ptr<ScanOrders> orders;
  SnapshotStore store;
  std::string home;
  std::string timeZone;
  EventJournal& journal;
  const Clock& clock;
  StartupVolume& volume;
  /// Called on the scan's thread, at most twice a second.
  std::function<void(const DiskScanner::Progress&)> progress = [](const auto&) {};
  /// Called as often as `progress`.
  std::function<void(FoundSoFar)> found = [](const auto&) {};
  /// Called once on the scan's thread, if the scan was stopped before its end.
  std::function<void(Snapshot)> stopped = [](const auto&) {};

  /// Besides the two newest scans, the newest scan of each of so many days is kept.
  static constexpr int historyDays = 14;
  static constexpr std::chrono::milliseconds progressInterval{500};
  static constexpr std::chrono::seconds journalTimeout{60};

  /// The outcome: a snapshot, a failure, both when the snapshot could not be saved, or neither when
  /// cancelled.
  struct Report {
    std::optional<Snapshot> snapshot = {};
    std::optional<std::string> failure = {};
    /// As in `ScanPlan`.
    std::string whyFull = {};
    /// The history after the scan, when there is a snapshot.
    std::vector<SnapshotStore::Entry> entries = {};
  };

  /// The scan, from its plan to its file in the history.
  Report run() const;
  /// A full scan that sets up the recorder and is not stored. Reports nothing if a recorder runs already, or
  /// cannot run.
  Report record() const;

 private:
  bool isCancelled() const { return orders->isCancelled; }
  ScanPlan plan(Date start, bool mayReuse) const;
  std::optional<Snapshot> measure(ScanPlan plan, Date start, RecordingCrawl* crawl,
                                  const std::function<bool()>& shouldCancel) const;
  void stop(const DiskScanner::Unfinished& scan, Date start) const;
  Report save(Snapshot snapshot) const;
};

}  // namespace spacemint
