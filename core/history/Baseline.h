#pragma once

#include "core/history/SnapshotStore.h"

#include <optional>
#include <vector>

namespace spacemint {

/// Earlier scans to compare the newest scan with, ordered by distance to one day before the newest; ties:
/// newer first. `history` is in the order of `SnapshotStore::entries`; its first entry is the newest scan.
/// Scans dated after the first entry are left out.
std::vector<SnapshotStore::Entry> baselineCandidates(const std::vector<SnapshotStore::Entry>& history);

/// The first of `baselineCandidates`; absent if there is none.
std::optional<SnapshotStore::Entry> defaultBaseline(const std::vector<SnapshotStore::Entry>& history);

}  // namespace spacemint
