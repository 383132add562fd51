#include "core/history/SnapshotStore.h"

#include "core/base/CalendarDays.h"
#include "core/base/DateSeconds.h"
#include "core/base/Log.h"
#include "core/base/Unicode.h"
#include "core/history/SnapshotCodec.h"
#include "core/host/AtomicFile.h"
#include "core/host/FolderListing.h"
#include "core/host/UserFolders.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>

namespace spacemint {

namespace {

constexpr std::string_view extension = ".json";

// A scan of a whole disk takes a few megabytes; a file larger than this is no stored scan.
constexpr std::size_t largestFile = std::size_t{1} << 30U;

std::optional<Date> dateOfFileName(std::string_view name) {
  if (!name.ends_with(extension)) return std::nullopt;
  name.remove_suffix(extension.size());
  double seconds = 0;
  const auto [end, failure] = std::from_chars(name.data(), name.data() + name.size(), seconds);
  if (failure != std::errc{} || end != name.data() + name.size()) return std::nullopt;
  return dateAfter(std::chrono::seconds{0}, seconds);
}

// Contains one folder for each scanned root other than the home folder and the whole disk.
std::string otherRoots() {
  return Paths::join(UserFolders::data(), "Spacemint/Other Snapshots");
}

std::vector<std::string> foldersIn(const std::string& path) {
  std::vector<std::string> folders;
  std::error_code failure;
  std::filesystem::directory_iterator item{path, failure};
  for (; !failure && item != std::filesystem::directory_iterator{}; item.increment(failure)) {
    std::error_code unknown;
    if (item->is_directory(unknown)) folders.push_back(item->path().string());
  }
  return folders;
}

// Deletes a file, but never a folder: `std::filesystem::remove` would also delete an empty folder.
void removeFile(const std::filesystem::path& path) {
  std::error_code failure;
  const auto status = std::filesystem::symlink_status(path, failure);
  if (!failure && !std::filesystem::is_directory(status)) std::filesystem::remove(path, failure);
}

}  // namespace

SnapshotStore SnapshotStore::standard() {
  return {.directory = Paths::join(UserFolders::data(), "Spacemint/Snapshots")};
}

SnapshotStore SnapshotStore::ofRoot(const std::string& root) {
  if (canonicallyEqual(root, UserFolders::home()) || root == wholeDisk) {
    return standard();
  }
  return {.directory = Paths::join(otherRoots(), Paths::hash(root))};
}

std::vector<SnapshotStore> SnapshotStore::all() {
  std::vector<SnapshotStore> stores{standard()};
  for (const std::string& folder : foldersIn(otherRoots())) stores.push_back({.directory = folder});
  return stores;
}

std::vector<SnapshotStore::Entry> SnapshotStore::entries(Date now) const {
  std::vector<Entry> found;
  std::error_code failure;
  std::filesystem::directory_iterator item{directory, failure};
  for (; !failure && item != std::filesystem::directory_iterator{}; item.increment(failure)) {
    const std::string name = item->path().filename().string();
    if (const auto date = dateOfFileName(name)) found.push_back({*date, Paths::join(directory, name)});
  }
  if (failure) return {};
  sortNewestFirst(found, now);
  return found;
}

void SnapshotStore::sortNewestFirst(std::vector<Entry>& entries, Date now) {
  std::ranges::stable_sort(entries, [&](const Entry& a, const Entry& b) {
    const bool isUnknown = a.date > now;
    return isUnknown != (b.date > now) ? !isUnknown : a.date > b.date;
  });
}

std::expected<Snapshot, Error> SnapshotStore::load(const Entry& entry) const {
  const auto document = readFile(entry.path, largestFile);
  if (!document) return std::unexpected(document.error());
  return SnapshotCodec::decode(*document);
}

std::expected<SnapshotStore::Entry, Error> SnapshotStore::save(const Snapshot& snapshot) const {
  if (auto folder = createPrivateFolders(directory); !folder)
    return std::unexpected(std::move(folder.error()));
  const auto document = SnapshotCodec::encode(snapshot);
  if (!document) return std::unexpected(document.error());

  const auto second = std::chrono::time_point_cast<std::chrono::seconds>(snapshot.date);  // toward zero
  const std::string name = std::to_string(second.time_since_epoch().count()) + std::string{extension};
  Entry entry{.date = second, .path = Paths::join(directory, name)};
  if (auto written = writeFileAtomically(entry.path, *document); !written) {
    return std::unexpected(std::move(written.error()));
  }
  return entry;
}

void SnapshotStore::prune(const Retention& retention) const {
  const Date oldest = daysEarlier(retention.now, retention.days, retention.timeZone).value_or(retention.now);
  std::set<std::chrono::local_days> keptDays;
  std::size_t position = 0;
  for (const Entry& entry : entries(retention.now)) {
    const bool isNewest = position++ < retention.alwaysKept;
    // With an unknown time zone, use days in UTC.
    const auto day =
        calendarDay(entry.date, retention.timeZone).or_else([&] { return calendarDay(entry.date, "UTC"); });
    if (isNewest || entry.date >= oldest) {
      const bool isFirstOfDay = !day || keptDays.insert(*day).second;
      if (isNewest || isFirstOfDay) continue;
    }
    log(LogLevel::debug, "deleting an old stored scan: " + entry.path);
    removeFile(entry.path);
  }
}

void SnapshotStore::pruneOthers(Retention retention) {
  const Date oldest = retention.now - std::chrono::days{retention.days};
  const std::size_t alwaysKept = retention.alwaysKept;
  for (const std::string& folder : foldersIn(otherRoots())) {
    const SnapshotStore store{.directory = folder};
    const auto scans = store.entries(retention.now);
    retention.alwaysKept = !scans.empty() && scans.front().date >= oldest ? alwaysKept : 0;
    store.prune(retention);
    std::error_code isNotEmpty;
    std::filesystem::remove(folder, isNotEmpty);
  }
}

}  // namespace spacemint
