#pragma once

#include "core/base/Error.h"
#include "core/history/SnapshotStore.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint::ctl {

/// The stored scans of all folders, newest first; scans dated in the future last.
std::vector<SnapshotStore::Entry> storedScans();

/// Loads the stored scan for a `--scan` argument: the newest scan whose local date and time begin with `date`
/// ("2026-03-01", "2026-03-01 14:05"), or the scan of that second since 1970. An empty `date` means the
/// newest scan that can be read.
std::expected<Snapshot, Error> storedScan(std::string_view date);
/// Like the function above, among the scans of one store.
std::expected<Snapshot, Error> storedScan(const SnapshotStore& store, std::string_view date);

/// Like `storedScan`, but prints the reason on standard error where there is no such scan.
std::optional<Snapshot> storedScanOrComplaint(std::string_view date);

/// The earlier scans that a scan may be compared with.
struct EarlierScans {
  std::optional<Snapshot> usual = {};
  /// There are some, but they left out other files and folders.
  bool leftOutOthers = false;
};

/// The earlier scan of the same folder that `current` is compared with if the user names none; absent if
/// there is none that can be read.
EarlierScans usualBaseline(const Snapshot& current);

/// True if `date` matches a scan made at `scanned`.
bool namesScan(std::string_view date, Date scanned);

}  // namespace spacemint::ctl
