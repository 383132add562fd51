#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Tasks.h"
#include "Spacemint/model/Messages.h"
#include "core/history/SnapshotStore.h"
#include "core/history/SnapshotWriter.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// A snapshot that nobody changes any more, so that threads can share it.
using SharedSnapshot = std::shared_ptr<const Snapshot>;

/// The current scan and the stored ones. Main thread only.
class ScanHistory : public QObject {
  Q_OBJECT
 public:
  using Entry = SnapshotStore::Entry;
  /// Changes a snapshot; returns whether it did.
  using Edit = std::function<bool(Snapshot&)>;

  ScanHistory(SnapshotStore store, Tasks& tasks, const Clock& clock, Messages& messages);

  const SnapshotStore& store() const { return store_; }
  /// The current scan; null before the first.
  const SharedSnapshot& snapshot() const { return snapshot_; }
  /// The stored scans, newest first; scans dated after now come last.
  const std::vector<Entry>& entries() const { return entries_; }
  /// The earlier scan that growth is measured against.
  const std::optional<Entry>& baselineEntry() const { return baselineEntry_; }
  /// Grows by one with each new or edited current scan.
  std::int64_t revision() const { return revision_; }
  bool isLoaded() const { return isLoaded_; }

  /// Reads what is stored and makes the newest readable scan the current one, unless there is one by then.
  void load(std::function<void()> then);

  /// A new scan; `entries` is the history with it.
  void replace(Snapshot snapshot, std::vector<Entry> entries);

  /// The current scan, brought up to date. It stays the scan that is stored: nothing is written, and
  /// `entries` and the scan's date stay. There must be a current scan.
  void update(Snapshot snapshot);
  /// When `update` was last called for the current scan.
  const std::optional<Date>& updatedAt() const { return updatedAt_; }

  /// Changes the current scan, here and on the disk; nothing without one.
  void edit(const std::string& path, const Edit& edit);

  struct Remeasuring {
    std::vector<std::string> paths;
    /// What cannot be measured is taken to be empty.
    bool assumeEmptied = false;
    /// Also paths that the scan does not have, with the folders above them that it does not have.
    bool addIfMissing = false;
  };

  /// Measures items again and puts what is there now into the current scan; then calls `then`.
  void remeasure(
      Remeasuring request, std::function<void()> then = [] {});

  /// The user chose an earlier scan to compare with.
  void setBaselineEntry(std::optional<Entry> entry);
  /// The scans that may be the baseline, the best first: the one that the user chose, or else the one of
  /// until now and then those of `baselineCandidates`.
  std::vector<Entry> possibleBaselines() const;
  /// The first of `possibleBaselines` that the current scan can be compared with.
  void settleBaseline(std::optional<Entry> entry) { assignBaseline(std::move(entry)); }

 Q_SIGNALS:
  /// What is stored was read. Comes once.
  void loaded();
  void snapshotChanged();
  void entriesChanged();
  void baselineEntryChanged();
  /// The current scan or its baseline changed.
  void changed();
  /// The item at `path` was measured again in the current scan.
  void edited(const std::string& path);

 private:
  struct Loaded;

  static Loaded readNewest(const SnapshotStore& store, Date now);
  void take(Loaded loaded);
  void setSnapshot(Snapshot snapshot);
  void setEntries(std::vector<Entry> entries);
  bool assignBaseline(std::optional<Entry> entry);
  void save();

  SnapshotStore store_;
  Tasks& tasks_;
  const Clock& clock_;
  Messages& messages_;
  std::shared_ptr<SnapshotWriter> writer_;
  SharedSnapshot snapshot_;
  std::vector<Entry> entries_;
  std::optional<Entry> baselineEntry_;
  bool isBaselineChosen_ = false;
  std::optional<Date> updatedAt_;
  std::int64_t revision_ = 0;
  bool isLoaded_ = false;
};

}  // namespace spacemint
