#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/ScanHistory.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ScanJournal.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// Says to one scan that its result is not wanted any more; also what tells scans apart. Any thread.
class CancelFlag {
 public:
  void set() {
    const std::lock_guard hold(lock_);
    value_ = true;
  }
  bool isSet() const {
    const std::lock_guard hold(lock_);
    return value_;
  }

 private:
  mutable std::mutex lock_;
  bool value_ = false;
};

/// One scan from its plan to its file in the history: what runs on the scan's thread.
struct ScanJob {
  std::string root;
  Bytes minNodeSize = 0;
  /// May be reused, where the journal knows what changed since. Null for a full scan.
  SharedSnapshot seed;
  std::shared_ptr<const CancelFlag> flag;
  SnapshotStore store;
  std::string home;
  std::string timeZone;
  ScanJournal& journal;
  const Clock& clock;
  StartupVolume& volume;
  /// Told on the scan's thread, at most twice a second.
  std::function<void(const DiskScanner::Progress&)> progress;

  /// Stored scans that are kept, besides the two newest: the newest of each of so many days.
  static constexpr int historyDays = 14;
  static constexpr std::chrono::milliseconds progressInterval{500};
  static constexpr std::chrono::seconds journalTimeout{60};

  /// How it ended: a snapshot, a failure, both where it could not be saved, or neither when cancelled.
  struct Report {
    std::optional<Snapshot> snapshot = {};
    std::optional<std::string> failure = {};
    /// The history after it, when there is a snapshot.
    std::vector<SnapshotStore::Entry> entries = {};
  };

  Report run() const;

 private:
  Report report(Snapshot snapshot) const;
};

}  // namespace spacemint
