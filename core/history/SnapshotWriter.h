#pragma once

#include "core/history/SnapshotStore.h"

#include <map>
#include <mutex>

namespace spacemint {

/// Saves successive revisions of the current snapshot. Any thread: calls run one at a time, and a revision
/// that arrives after a newer one is dropped, so the order of the calls does not matter.
class SnapshotWriter {
 public:
  explicit SnapshotWriter(SnapshotStore store) : store_(std::move(store)) {}

  /// Saves the snapshot unless this or a newer revision of it was saved before; returns true if it was saved
  /// now. `snapshot.date` identifies the snapshot. Blocks until earlier calls are done. Fails with the error
  /// of the store; the same revision can then be saved again.
  std::expected<bool, Error> save(const Snapshot& snapshot, std::int64_t revision);

 private:
  std::mutex mutex_;
  const SnapshotStore store_;
  std::map<Date, std::int64_t> written_;  // the highest saved revision of each snapshot
};

}  // namespace spacemint
