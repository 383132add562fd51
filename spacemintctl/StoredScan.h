#pragma once

#include "core/base/Error.h"
#include "core/history/SnapshotStore.h"

#include <expected>
#include <string>
#include <string_view>

namespace spacemint::ctl {

/// The stored scans of all folders, newest first, scans dated after now last.
std::vector<SnapshotStore::Entry> storedScans();

/// The stored scan that `--scan` names: the newest scan whose local date and time begin with the text
/// ("2026-03-01", "2026-03-01 14:05"), or the scan of that second since 1970. Empty text names the newest
/// scan that can be read.
std::expected<Snapshot, Error> storedScan(std::string_view date);
/// The same among the scans of one store.
std::expected<Snapshot, Error> storedScan(const SnapshotStore& store, std::string_view date);

/// True when `date` names the scan made at `scanned`.
bool namesScan(std::string_view date, Date scanned);

}  // namespace spacemint::ctl
