#pragma once

#include "core/host/EventJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"

#include <optional>

namespace spacemint {

/// A new scan that is made of an earlier one and of the measured changes since. It opens no folder that the
/// journal knows.
struct ScanUpdate {
  Snapshot earlier;
  MeasuredChanges changes;

  /// Whether the changes form a tree that is not too deep. Otherwise they cannot be used.
  bool isUsable() const;

  /// Returns what a full scan would find, except that among equal sizes the order of the earlier scan is kept
  /// and new items come last. Uses the same arguments as a scan of the same root, except `skip` and `reuse`.
  /// Absent if cancelled. Blocks while it scans the folders that the journal does not know. Any thread.
  std::optional<DiskScanner::Result> run(const DiskScanner::Arguments& arguments) &&;
};

}  // namespace spacemint
