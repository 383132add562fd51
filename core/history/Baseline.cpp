#include "core/history/Baseline.h"

#include <algorithm>

namespace spacemint {

std::vector<SnapshotStore::Entry> baselineCandidates(const std::vector<SnapshotStore::Entry>& history) {
  if (history.size() < 2) return {};
  const Date target = history.front().date - std::chrono::days{1};
  std::vector<SnapshotStore::Entry> earlier(history.begin() + 1, history.end());
  std::ranges::stable_sort(
      earlier, {}, [&](const SnapshotStore::Entry& entry) { return std::chrono::abs(entry.date - target); });
  return earlier;
}

std::optional<SnapshotStore::Entry> defaultBaseline(const std::vector<SnapshotStore::Entry>& history) {
  auto candidates = baselineCandidates(history);
  if (candidates.empty()) return std::nullopt;
  return std::move(candidates.front());
}

}  // namespace spacemint
