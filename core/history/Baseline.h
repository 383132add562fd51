#pragma once

#include "core/history/SnapshotStore.h"

#include <optional>
#include <vector>

namespace spacemint {

/// The scans that the first scan of `history` can be compared with, best first: earlier scans, ordered by
/// their distance from one day before it; ties: the newer one. `history` is in the order of
/// `SnapshotStore::entries`; a scan dated after the first one is no candidate.
std::vector<SnapshotStore::Entry> baselineCandidates(const std::vector<SnapshotStore::Entry>& history);

/// The first of the candidates; absent with fewer than two scans.
std::optional<SnapshotStore::Entry> defaultBaseline(const std::vector<SnapshotStore::Entry>& history);

}  // namespace spacemint
