#include "spacemintctl/ScanCommand.h"

#include "core/history/SnapshotCodec.h"
#include "core/history/SnapshotStore.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"
#include "core/scan/DiskScanner.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/StoredScan.h"

#include <filesystem>

namespace spacemint::ctl {

namespace {

constexpr int historyDays = 14;

Date now() {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

// The one spelling of a root under which its scans are kept: absolute, without a "/" at the end.
std::expected<std::string, Error> rootFor(const std::string& path) {
  if (path.empty()) return UserFolders::home();
  if (path.starts_with('/')) return std::string{Paths::withoutTrailingSlash(path)};
  std::error_code failure;
  const std::string absolute = std::filesystem::canonical(path, failure);
  if (failure) return std::unexpected(systemError(path, failure.value()));
  return absolute;
}

// Why `root` cannot be scanned, if it cannot.
std::optional<Error> obstacle(const std::string& root) {
  auto folder = hostFolderListing()->open(root);
  if (folder) return std::nullopt;
  return std::move(folder).error();
}

// How much a scan of `root` will find: what the last one found, else what is used on the volume that it
// covers.
std::optional<Bytes> expectedBytes(const std::string& root) {
  const auto last = storedScan(SnapshotStore::standard(), "");
  if (last && last->rootPath() == root) return last->root.size;
  if (mountPointOf(root) != root) return std::nullopt;
  const auto volume = VolumeStatus::current(root);
  return volume ? std::optional{volume->used()} : std::nullopt;
}

std::optional<DiskScanner::Result> measure(const std::string& root, const ScanOptions& options) {
  const bool showsProgress = !options.quiet && ProgressLine::canBeSeen();
  ProgressLine line(showsProgress, showsProgress ? expectedBytes(root) : std::nullopt, userLocale());
  return DiskScanner::scan({.root = root,
                            .minNodeSize = options.minSize,
                            .throttleIO = options.throttle,
                            .shouldCancel = wasInterrupted,
                            .progress = [&](const DiskScanner::Progress& progress) { line.show(progress); }});
}

Snapshot snapshotOf(DiskScanner::Result result, Bytes minNodeSize, Date start) {
  const auto volume = VolumeStatus::current(result.root.name);
  const Date end = now();
  return {.date = end,
          .duration = end - start,
          .root = std::move(result.root),
          .fileCount = result.fileCount,
          .volumeFree = volume ? volume->free : 0,
          .volumeTotal = volume ? volume->total : 0,
          .minNodeSize = minNodeSize,
          .fullScanDate = start};
}

bool answer(const Snapshot& snapshot, const ScanOptions& options, const Wording& wording) {
  if (!options.json) return print(scanAnswer(snapshot, options.top, wording));
  const auto document = SnapshotCodec::encode(snapshot);
  if (document) return print(*document + '\n');
  complain(document.error().message);
  return false;
}

// Keeps the scan and drops those that are due.
bool save(const Snapshot& snapshot) {
  const SnapshotStore store = SnapshotStore::standard();
  const auto entry = store.save(snapshot);
  if (!entry) {
    complain("couldn't save the scan: " + printable(entry.error().message));
    return false;
  }
  store.prune({.days = historyDays, .now = now(), .timeZone = userTimeZone()});
  return true;
}

}  // namespace

int runScan(const ScanOptions& options) {
  const auto root = rootFor(options.path);
  const auto problem = root ? obstacle(*root) : std::optional{root.error()};
  if (problem) {
    complain(printable(problem->message));
    return failed;
  }
  noteInterrupts();
  const Date start = now();
  auto result = measure(*root, options);
  if (!result) {
    complain(wasInterrupted() ? "interrupted" : printable(*root) + ": could not be scanned");
    return wasInterrupted() ? interrupted : failed;
  }
  const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
  const std::string note = unreadNote(result->unread, wording);
  const Snapshot snapshot = snapshotOf(std::move(*result), options.minSize, start);
  const bool answered = answer(snapshot, options, wording);
  if (!note.empty() && !options.quiet) complain(note);
  const bool saved = options.noSave || save(snapshot);
  return answered && saved ? done : failed;
}

}  // namespace spacemint::ctl
