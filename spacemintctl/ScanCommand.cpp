#include "spacemintctl/ScanCommand.h"

#include "core/base/Translation.h"
#include "core/history/SnapshotCodec.h"
#include "core/history/SnapshotStore.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"
#include "core/host/VolumeInfo.h"
#include "core/scan/ScanPlan.h"
#include "core/scan/StoppableScan.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/ScanRoot.h"
#include "spacemintctl/SettingsCommand.h"
#include "spacemintctl/StoredScan.h"
#include "spacemintctl/TransferCommands.h"

namespace spacemint::ctl {

namespace {

constexpr int historyDays = 14;
constexpr std::chrono::milliseconds rowsInterval{500};

// Without wrong patterns.
Excludes excludesFor(const ScanOptions& options) {
  std::vector<std::string> patterns = storedSettings().excludes;
  patterns.insert(patterns.end(), options.excludes.begin(), options.excludes.end());
  return Excludes::usable(patterns, UserFolders::home());
}

// Says what is wrong with the patterns of the settings, and of the command line. Only the latter is an error.
bool mayExclude(const ScanOptions& options) {
  const std::string home = UserFolders::home();
  if (const auto stored = Excludes::compile(storedSettings().excludes, home); !stored) {
    complain(i18n("not used: {reason}", {{"reason", printable(stored.error().message)}}));
  }
  const auto asked = Excludes::compile(options.excludes, home);
  if (!asked) complain(printable(asked.error().message));
  return asked.has_value();
}

std::optional<VolumeStatus> volumeOf(const std::string& root) {
  return VolumeStatus::current(root == wholeDisk ? startupVolume() : root);
}

struct ScanOutcome {
  /// Absent if the folder could not be scanned, or the scan was interrupted before it measured anything.
  std::optional<DiskScanner::Result> result;
  /// The scan was interrupted.
  bool isPart = false;
};

ScanOutcome measure(const std::string& root, const ScanOptions& options, ScanPlan& plan) {
  const bool showsProgress = !options.quiet && ProgressLine::canBeSeen();
  const std::string locale = userLocale();
  ProgressLine line(showsProgress, showsProgress ? expectedIn(root) : ScanTiming::Expected{}, locale);
  StoppableScan stoppable{wasInterrupted};
  // An update is fast and has no part to show.
  const bool isUpdate = plan.update.has_value();
  DiskScanner::Arguments arguments{
      .root = root,
      .minNodeSize = options.minSize,
      .manner = always(options.throttle ? ScanManner::quiet : ScanManner::foreground),
      .shouldCancel = [isUpdate] { return isUpdate && wasInterrupted(); },
      .progress = [&](const DiskScanner::Progress& progress) { line.show(progress); },
      .look =
          [&, next = std::chrono::steady_clock::time_point{}](const DiskScanner::Unfinished& scan) mutable {
            const auto now = std::chrono::steady_clock::now();
            if (!showsProgress || now < next) return;
            next = now + rowsInterval;
            const FoundSoFar found = FoundSoFar::in(scan, root);
            if (found.items.empty()) return;
            line.setRows(foundRows(found, locale));
            line.show(scan.counted());
          }};
  stoppable.watch(arguments);
  if (auto result = plan.scan(arguments)) return {.result = std::move(result)};
  return {.result = stoppable.takePart(), .isPart = true};
}

// Prints what an interrupted scan has measured. Nothing is stored.
int answerPart(DiskScanner::Result part, const ScanOptions& options, const std::string& root, Date start) {
  const ScanPlan none;
  Snapshot snapshot = FinishedScan{.result = std::move(part),
                                   .plan = none,
                                   .minNodeSize = options.minSize,
                                   .start = start,
                                   .end = currentTime(),
                                   .volume = volumeOf(root)}
                          .snapshot();
  snapshot.measuredPart = ScanTiming::fraction(snapshot.root.size, expectedIn(root).bytes).value_or(0);
  print(scanAnswer(snapshot, options.top, {.home = UserFolders::home(), .locale = userLocale()}, ""));
  return interrupted;
}

bool answer(const Snapshot& snapshot, const ScanPlan& plan, const ScanOptions& options,
            const Wording& wording) {
  if (!options.exportTo.empty()) return exportScan(snapshot, options.exportTo);
  if (!options.json) return print(scanAnswer(snapshot, options.top, wording, plan.whyFull));
  auto document = SnapshotCodec::encode(snapshot);
  if (document) return print(withKind(std::move(*document), plan.whyFull) + '\n');
  complain(document.error().message);
  return false;
}

bool save(const Snapshot& snapshot) {
  const auto kept = keepScan(snapshot);
  if (!kept)
    complain(i18n("couldn't save the scan: {reason}", {{"reason", printable(kept.error().message)}}));
  return kept.has_value();
}

}  // namespace

ScanPlan planFor(const std::string& root, const ScanOptions& options, Date start,
                 const std::function<bool()>& shouldCancel) {
  auto earlier = options.full ? std::nullopt : std::optional{storedScan(SnapshotStore::ofRoot(root), "")};
  return ScanPlan::make(*hostEventJournal(),
                        {.root = root,
                         .minNodeSize = options.minSize,
                         .now = start,
                         .earlier = earlier && *earlier ? std::optional{std::move(**earlier)} : std::nullopt,
                         .mayReuse = !options.full,
                         .shouldCancel = shouldCancel,
                         .excludes = excludesFor(options)});
}

std::optional<Error> scanObstacle(const std::string& root) {
  auto folder = hostFolderListing()->open(root);
  if (folder) return std::nullopt;
  return std::move(folder).error();
}

ScanTiming::Expected expectedIn(const std::string& root) {
  const auto last = storedScan(SnapshotStore::ofRoot(root), "");
  const bool isVolume = root != wholeDisk && mountPointOf(root) == root;
  return ScanTiming::expected(last ? &*last : nullptr, root,
                              isVolume ? VolumeStatus::current(root) : std::nullopt,
                              root == wholeDisk ? readVolumes() : std::vector<VolumeReading>{});
}

std::expected<void, Error> keepScan(const Snapshot& snapshot) {
  const SnapshotStore store = SnapshotStore::ofRoot(snapshot.rootPath());
  auto entry = store.save(snapshot);
  if (!entry) return std::unexpected(std::move(entry).error());
  const SnapshotStore::Retention retention{
      .days = historyDays, .now = currentTime(), .timeZone = userTimeZone()};
  if (store.directory == SnapshotStore::standard().directory) store.prune(retention);
  SnapshotStore::pruneOthers(retention);
  return {};
}

int runScan(const ScanOptions& options) {
  const auto root = scanRoot(options.path);
  const auto problem = root ? scanObstacle(*root) : std::optional{root.error()};
  if (problem) {
    complain(printable(problem->message));
    return failed;
  }
  if (!mayExclude(options)) return wrongUsage;
  noteInterrupts();
  const Date start = currentTime();
  ScanPlan plan = planFor(*root, options, start, wasInterrupted);
  auto [result, isPart] = wasInterrupted() ? ScanOutcome{} : measure(*root, options, plan);
  if (result && isPart && !options.json && options.exportTo.empty())
    return answerPart(std::move(*result), options, *root, start);
  if (wasInterrupted() && (!result || isPart)) {
    complain(i18n("interrupted"));
    return interrupted;
  }
  if (!result) {
    complain(i18n("{path}: could not be scanned", {{"path", printable(*root)}}));
    return failed;
  }
  const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
  const Snapshot snapshot = FinishedScan{.result = std::move(*result),
                                         .plan = plan,
                                         .minNodeSize = options.minSize,
                                         .start = start,
                                         .end = currentTime(),
                                         .volume = volumeOf(*root)}
                                .snapshot();
  const std::string note = unreadNote(snapshot.coverage.unread, wording);
  const bool answered = answer(snapshot, plan, options, wording);
  if (!note.empty() && !options.quiet) complain(note);
  const bool saved = options.noSave || save(snapshot);
  return answered && saved ? done : failed;
}

std::optional<Snapshot> measuredScan(const ScanOptions& options) {
  const Date start = currentTime();
  ScanPlan plan{.fullScanDate = start};
  auto [result, isPart] = measure(options.path, options, plan);
  if (!result || isPart) return std::nullopt;
  return FinishedScan{.result = std::move(*result),
                      .plan = plan,
                      .minNodeSize = options.minSize,
                      .start = start,
                      .end = currentTime(),
                      .volume = VolumeStatus::current(options.path)}
      .snapshot();
}

}  // namespace spacemint::ctl
