#pragma once

#include "core/history/SnapshotStore.h"

#include <map>
#include <mutex>

namespace spacemint {

/// The one writer of the current snapshot. Calls from several threads run one at a time, and an older state
/// that arrives after a newer one is dropped, so the order of arrival does not matter.
class SnapshotWriter {
 public:
  explicit SnapshotWriter(SnapshotStore store) : store_(std::move(store)) {}

  /// Saves the snapshot unless this or a newer revision has been saved; answers true if it saved. Snapshots
  /// are told apart by their exact date. Fails with the error of the store; the revision may then be tried
  /// again. Blocks until earlier calls are done.
  std::expected<bool, Error> save(const Snapshot& snapshot, std::int64_t revision);

 private:
  std::mutex mutex_;
  const SnapshotStore store_;
  std::map<Date, std::int64_t> written_;  // the highest revision of each snapshot
};

}  // namespace spacemint
