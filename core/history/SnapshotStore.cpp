#include "core/history/SnapshotStore.h"

#include "core/base/CalendarDays.h"
#include "core/base/DateSeconds.h"
#include "core/history/SnapshotCodec.h"
#include "core/host/AtomicFile.h"
#include "core/host/UserFolders.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <functional>
#include <set>

namespace spacemint {

namespace {

constexpr std::string_view extension = ".json";

// A whole-disk tree takes a few megabytes; a file beyond this is none of ours.
constexpr std::size_t largestFile = std::size_t{1} << 30U;

std::optional<Date> dateOfFileName(std::string_view name) {
  if (!name.ends_with(extension)) return std::nullopt;
  name.remove_suffix(extension.size());
  double seconds = 0;
  const auto [end, failure] = std::from_chars(name.data(), name.data() + name.size(), seconds);
  if (failure != std::errc{} || end != name.data() + name.size()) return std::nullopt;
  return dateAfter(std::chrono::seconds{0}, seconds);
}

// `remove` alone would take an empty folder, too; nothing but a file is a scan.
void removeFile(const std::filesystem::path& path) {
  std::error_code failure;
  const auto status = std::filesystem::symlink_status(path, failure);
  if (!failure && !std::filesystem::is_directory(status)) std::filesystem::remove(path, failure);
}

}  // namespace

SnapshotStore SnapshotStore::standard() {
  return {.directory = Paths::join(UserFolders::data(), "Spacemint/Snapshots")};
}

std::vector<SnapshotStore::Entry> SnapshotStore::entries() const {
  std::vector<Entry> found;
  std::error_code failure;
  std::filesystem::directory_iterator item{directory, failure};
  for (; !failure && item != std::filesystem::directory_iterator{}; item.increment(failure)) {
    const std::string name = item->path().filename().string();
    if (const auto date = dateOfFileName(name)) found.push_back({*date, Paths::join(directory, name)});
  }
  if (failure) return {};
  std::ranges::stable_sort(found, std::greater{}, &Entry::date);
  return found;
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
  constexpr std::size_t alwaysKept = 2;
  std::set<std::chrono::local_days> keptDays;
  std::size_t position = 0;
  for (const Entry& entry : entries()) {
    const bool isNewest = position++ < alwaysKept;
    // Without a usable zone the days are those of Greenwich, which `UTC` always names.
    const auto day =
        calendarDay(entry.date, retention.timeZone).or_else([&] { return calendarDay(entry.date, "UTC"); });
    if (isNewest || entry.date >= oldest) {
      const bool isFirstOfDay = !day || keptDays.insert(*day).second;
      if (isNewest || isFirstOfDay) continue;
    }
    removeFile(entry.path);
  }
}

}  // namespace spacemint
