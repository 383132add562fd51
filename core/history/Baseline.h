#pragma once

#include "core/history/SnapshotStore.h"

#include <optional>
#include <vector>

namespace spacemint {

/// The earlier scans of a history, given newest first, in the order in which they lend themselves to being
/// compared with the newest: the nearest to one day before it first, of two as near the newer one.
std::vector<SnapshotStore::Entry> baselineCandidates(const std::vector<SnapshotStore::Entry>& history);

/// The first of the candidates; absent with fewer than two scans.
std::optional<SnapshotStore::Entry> defaultBaseline(const std::vector<SnapshotStore::Entry>& history);

}  // namespace spacemint
