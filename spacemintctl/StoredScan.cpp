#include "spacemintctl/StoredScan.h"

#include "core/base/Translation.h"
#include "core/history/Baseline.h"
#include "spacemintctl/Console.h"

#include <algorithm>
#include <iterator>

namespace spacemint::ctl {

namespace {

Error notFound(std::string message) {
  return {.domain = "history", .message = std::move(message)};
}

using Entries = std::vector<SnapshotStore::Entry>;

std::expected<Snapshot, Error> load(const SnapshotStore::Entry& entry) {
  return SnapshotStore{}.load(entry);
}

std::expected<Snapshot, Error> newestReadable(const Entries& entries) {
  std::optional<Error> firstProblem;
  for (const auto& entry : entries) {
    auto snapshot = load(entry);
    if (snapshot) return snapshot;
    if (!firstProblem) firstProblem = std::move(snapshot).error();
  }
  return std::unexpected(firstProblem
                             ? *firstProblem
                             : notFound(i18n("no scan in the history yet; \"spacemintctl scan\" makes one")));
}

std::expected<Snapshot, Error> scanAmong(const Entries& entries, std::string_view date) {
  if (date.empty()) return newestReadable(entries);
  const auto found = std::ranges::find_if(
      entries, [&](const SnapshotStore::Entry& entry) { return namesScan(date, entry.date); });
  if (found != entries.end()) return load(*found);
  return std::unexpected(notFound(i18n("no scan of \"{date}\" in the history", {{"date", printable(date)}})));
}

}  // namespace

bool namesScan(std::string_view date, Date scanned) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(scanned.time_since_epoch()).count();
  std::string wanted{date};
  // Accept "2026-03-01T14:05" and "2026-03-01 14:05".
  if (wanted.size() > 10 && wanted[10] == 'T') wanted[10] = ' ';
  return wanted == std::to_string(seconds) || (wanted.size() >= 4 && localTime(scanned).starts_with(wanted));
}

std::vector<SnapshotStore::Entry> storedScans() {
  Entries entries;
  for (const SnapshotStore& store : SnapshotStore::all())
    std::ranges::move(store.entries(), std::back_inserter(entries));
  SnapshotStore::sortNewestFirst(entries, currentTime());
  return entries;
}

std::expected<Snapshot, Error> storedScan(std::string_view date) {
  return scanAmong(storedScans(), date);
}

std::optional<Snapshot> storedScanOrComplaint(std::string_view date) {
  auto scan = storedScan(date);
  if (scan) return std::move(*scan);
  complain(printable(scan.error().message));
  return std::nullopt;
}

std::expected<Snapshot, Error> storedScan(const SnapshotStore& store, std::string_view date) {
  return scanAmong(store.entries(currentTime()), date);
}

EarlierScans usualBaseline(const Snapshot& current) {
  const SnapshotStore store = SnapshotStore::ofRoot(current.rootPath());
  auto history = store.entries();
  std::erase_if(history, [&](const SnapshotStore::Entry& entry) {
    return entry.date > std::chrono::floor<std::chrono::seconds>(current.date);
  });
  bool leftOutOthers = false;
  for (const auto& entry : baselineCandidates(history)) {
    auto scan = store.load(entry);
    if (!scan || scan->rootPath() != current.rootPath()) continue;
    if (scan->coverage.excludes == current.coverage.excludes) return {.usual = std::move(*scan)};
    leftOutOthers = true;
  }
  return {.leftOutOthers = leftOutOthers};
}

}  // namespace spacemint::ctl
