#include "spacemintctl/StoredScan.h"

#include "spacemintctl/Console.h"

#include <algorithm>

namespace spacemint::ctl {

namespace {

Error notFound(std::string message) {
  return {.domain = "history", .message = std::move(message)};
}

std::expected<Snapshot, Error> newestReadable(const SnapshotStore& store,
                                              const std::vector<SnapshotStore::Entry>& entries) {
  std::optional<Error> firstProblem;
  for (const auto& entry : entries) {
    auto snapshot = store.load(entry);
    if (snapshot) return snapshot;
    if (!firstProblem) firstProblem = std::move(snapshot).error();
  }
  return std::unexpected(
      firstProblem ? *firstProblem : notFound("no scan in the history yet; \"spacemintctl scan\" makes one"));
}

}  // namespace

bool namesScan(std::string_view date, Date scanned) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(scanned.time_since_epoch()).count();
  std::string wanted{date};
  // Both ways of writing a date with a time.
  if (wanted.size() > 10 && wanted[10] == 'T') wanted[10] = ' ';
  return wanted == std::to_string(seconds) || (wanted.size() >= 4 && localTime(scanned).starts_with(wanted));
}

std::expected<Snapshot, Error> storedScan(const SnapshotStore& store, std::string_view date) {
  const auto entries = store.entries();
  if (date.empty()) return newestReadable(store, entries);
  const auto found = std::ranges::find_if(
      entries, [&](const SnapshotStore::Entry& entry) { return namesScan(date, entry.date); });
  if (found != entries.end()) return store.load(*found);
  return std::unexpected(notFound("no scan of \"" + printable(date) + "\" in the history"));
}

}  // namespace spacemint::ctl
