#include "core/history/Baseline.h"

#include <algorithm>

namespace spacemint {

std::vector<SnapshotStore::Entry> baselineCandidates(const std::vector<SnapshotStore::Entry>& history) {
  if (history.empty()) return {};
  const Date newest = history.front().date;
  std::vector<SnapshotStore::Entry> earlier(history.begin() + 1, history.end());
  std::erase_if(earlier, [&](const SnapshotStore::Entry& entry) { return entry.date > newest; });
  const auto distanceFromADayEarlier = [&](const SnapshotStore::Entry& entry) {
    return std::chrono::abs(Seconds{timeBetween(entry.date, newest)} - std::chrono::days{1});
  };
  std::ranges::stable_sort(earlier, {}, distanceFromADayEarlier);
  return earlier;
}

std::optional<SnapshotStore::Entry> defaultBaseline(const std::vector<SnapshotStore::Entry>& history) {
  auto candidates = baselineCandidates(history);
  if (candidates.empty()) return std::nullopt;
  return std::move(candidates.front());
}

}  // namespace spacemint
