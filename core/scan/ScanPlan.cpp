#include "core/scan/ScanPlan.h"

#include "core/base/AsciiText.h"
#include "core/base/Log.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/host/Removal.h"
#include "core/host/VolumeTable.h"
#include "core/tree/Paths.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

namespace spacemint {

namespace {

using PathSet = std::unordered_set<std::string>;

// The parent folder of `path`; absent for the root, whose path has `rootLength` characters, and for "/".
std::optional<std::string> parentWithin(const std::string& path, std::size_t rootLength) {
  std::string parent = Paths::parent(path);
  if (parent == "/" || parent.size() < rootLength) return std::nullopt;
  return parent;
}

// The paths as the tree spells them: without a trailing "/", and on the data volume if the root is on it.
PathSet asInTree(const std::vector<std::string>& paths, const std::string& root) {
  const bool onDataVolume = canonicalPrefixLength(root, Paths::dataVolume).has_value();
  PathSet result;
  for (const std::string& given : paths) {
    std::string path = given;
    if (onDataVolume && !canonicalPrefixLength(path, root) &&
        !canonicalPrefixLength(path, Paths::dataVolume)) {
      path.insert(0, Paths::dataVolume);
    }
    result.emplace(Paths::withoutTrailingSlash(path));
  }
  return result;
}

// The node at `path`, compared byte by byte: two folders can have names that only look alike. Bytes that are
// not UTF-8 are stored as the replacement character, so a name with this character may be any of several.
const Node* nodeSpelled(const Snapshot& snapshot, std::string_view path) {
  constexpr std::string_view replacement = "\ufffd";
  const std::string prefix = Paths::join(snapshot.rootPath(), "");
  if (!path.starts_with(prefix) || path.contains(replacement)) return nullptr;
  path.remove_prefix(prefix.size());
  const Node* node = &snapshot.root;
  while (node != nullptr && !path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const auto child = std::ranges::find(node->children, path.substr(0, end), &Node::name);
    node = child != node->children.end() ? &*child : nullptr;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return node;
}

}  // namespace

// An earlier scan with what changed since.
struct EarlierScan::Unchanged {
  Snapshot previous;
  PathSet trees;
  // The changed folders and all folders above them.
  PathSet toCrawl;
  bool nothing = false;

  Unchanged(Snapshot earlier, const FolderChanges& changes) : previous(std::move(earlier)) {
    const std::string& root = previous.rootPath();
    trees = asInTree(changes.trees, root);
    nothing = trees.contains(std::string{Paths::withoutTrailingSlash(root)});
    for (const PathSet& paths : {asInTree(changes.directories, root), trees}) {
      for (const std::string& changed : paths) {
        if (changed.size() < root.size()) continue;
        std::optional<std::string> path = changed;
        while (path && toCrawl.insert(*path).second) path = parentWithin(*path, root.size());
      }
    }
  }

  bool isInChangedTree(const std::string& folder) const {
    if (nothing || trees.empty()) return nothing;
    std::optional<std::string> path = folder;
    while (path && !trees.contains(*path)) path = parentWithin(*path, previous.rootPath().size());
    return path.has_value();
  }

  // The node of a folder that need not be walked; null if it must be.
  const Node* reusable(const std::string& folder) const {
    if (toCrawl.contains(folder) || isInChangedTree(folder)) return nullptr;
    const Node* node = nodeSpelled(previous, folder);
    return node != nullptr && node->isDirectory && node->fileCount > 0 ? node : nullptr;
  }

  bool isInReusedFolder(const std::string& item) const {
    std::optional<std::string> folder = parentWithin(item, previous.rootPath().size());
    while (folder && *folder != previous.rootPath() && reusable(*folder) == nullptr) {
      folder = parentWithin(*folder, previous.rootPath().size());
    }
    return folder && *folder != previous.rootPath();
  }
};

namespace {

// What the scan leaves out now, with the sizes that the earlier scan found or knew.
std::map<std::string, Bytes> lastSizesIn(const Snapshot& earlier, const ScanPlan::Arguments& arguments) {
  std::map<std::string, Bytes> sizes;
  for (const LeftOut& item : earlier.coverage.leftOut) {
    if (item.kind == LeftOut::Kind::excluded && item.size) sizes.emplace(item.path, *item.size);
  }
  if (earlier.coverage.excludes == arguments.excludes.patterns()) return sizes;
  walkTree(earlier.root, [&](const std::string& path, const Node& node) {
    if (!arguments.excludes.leavesOutBelow(arguments.root, path, node.isDirectory)) return true;
    sizes.emplace(path, saturatingAdd(node.size, earlier.coverage.excludedBelow(path).size));
    return false;
  });
  return sizes;
}

// Why the earlier scan cannot be reused; empty if it can.
std::string_view obstacle(const ScanPlan::Arguments& arguments) {
  if (!arguments.mayReuse) return i18nMark("that was asked for");
  if (!arguments.earlier) return i18nMark("there is no earlier scan");
  const Snapshot& earlier = *arguments.earlier;
  if (!canonicallyEqual(earlier.rootPath(), arguments.root))
    return i18nMark("the last scan was of another folder");
  if (earlier.minNodeSize != arguments.minNodeSize) return i18nMark("the last scan used another --min-size");
  if (earlier.coverage.excludes != arguments.excludes.patterns())
    return i18nMark("the last scan left out other folders");
  if (earlier.eventID.value_or(0) == 0) return i18nMark("nothing recorded changes at the last scan");
  // With a date in the future the next full scan would be too late.
  if (earlier.fullScanDate > arguments.now) return i18nMark("the last full scan is dated in the future");
  if (!earlier.canSeedIncrementalScan({.root = arguments.root,
                                       .minNodeSize = arguments.minNodeSize,
                                       .now = arguments.now,
                                       .fullScanInterval = fullScanInterval,
                                       .excludes = arguments.excludes.patterns()})) {
    return earlier.fullScanDate && earlier.root.fileCount > 0 && earlier.format == Snapshot::currentFormat
               ? i18nMark("the last full scan is three days old")
               : i18nMark("the last scan is incomplete or from another version");
  }
  return {};
}

}  // namespace

EarlierScan::EarlierScan(Snapshot previous, const FolderChanges& changes)
    : unchanged_(std::make_shared<const Unchanged>(std::move(previous), changes)) {}

DiskScanner::Reuse EarlierScan::reuse() const {
  return [unchanged = unchanged_](const std::string& path) { return unchanged->reusable(path); };
}

Coverage EarlierScan::carriedOver() const {
  const Coverage& earlier = unchanged_->previous.coverage;
  Coverage carried{.places = earlier.places};
  // Items beyond the list may be anywhere.
  carried.unread.folders = earlier.unread.folders - std::ssize(earlier.unread.paths);
  for (const std::string& path : earlier.unread.paths) {
    if (!unchanged_->isInReusedFolder(path)) continue;
    carried.unread.paths.push_back(path);
    ++carried.unread.folders;
  }
  for (const LeftOut& item : earlier.leftOut) {
    if (unchanged_->isInReusedFolder(item.path)) carried.leftOut.push_back(item);
  }
  return carried;
}

namespace {

// A scan visits every mount point, so that it counts each mount for itself. It reuses nothing of a mount that
// is not the one of the earlier scan.
void markPlaces(FolderChanges& changes, const std::string& root, const std::vector<CoveredPlace>& earlier,
                const std::vector<ListedPlace>& now) {
  const auto inTree = [&](const std::string& mountPoint) {
    return isAtOrBelow(mountPoint, root) ? mountPoint : root;  // above the root, or below a link to it
  };
  for (std::size_t i = 1; i < now.size(); ++i) {
    const bool isSame = std::ranges::find(earlier, now[i], &CoveredPlace::place) != earlier.end();
    (isSame ? changes.directories : changes.trees).push_back(inTree(now[i].mountPoint));
  }
  for (const CoveredPlace& covered : earlier) {
    const bool isGone = std::ranges::find(now, covered.place) == now.end();
    if (isGone) changes.trees.push_back(inTree(covered.place.mountPoint));
  }
}

// A recorder measures whole folders: it does not know what is excluded, and could not tell what is on which
// of several mounts.
bool mayUpdate(const Snapshot& earlier, const std::vector<ListedPlace>& now) {
  if (!earlier.coverage.excludes.empty()) return false;
  const auto& before = earlier.coverage.places;
  return now.size() <= 1 && before.size() == now.size() && (now.empty() || before[0].place == now[0]);
}

// A rescan does not enter these folders, so it need not visit the folders above them.
void dropExcluded(FolderChanges& changes, const ScanPlan::Arguments& arguments) {
  const auto isExcluded = [&](const std::string& folder) {
    return arguments.excludes.leavesOutBelow(arguments.root, folder, true);
  };
  std::erase_if(changes.directories, isExcluded);
  std::erase_if(changes.trees, isExcluded);
}

ScanPlan planned(EventJournal& journal, ScanPlan::Arguments arguments) {
  ScanPlan plan{.fullScanDate = arguments.now, .excludes = arguments.excludes};
  if (arguments.earlier) plan.lastSizes = lastSizesIn(*arguments.earlier, arguments);
  JournalQuery query{
      .root = arguments.root, .timeout = arguments.timeout, .shouldCancel = arguments.shouldCancel};
  // Take the id first, so that the journal's next answer includes all changes from now on.
  const std::uint64_t id = journal.currentEventID(query);
  if (id != 0) plan.eventID = id;
  plan.whyFull = obstacle(arguments);
  if (!plan.whyFull.empty()) return plan;

  query.since = *arguments.earlier->eventID;
  const auto places = hostListingPlaces(arguments.root);
  query.minNodeSize = arguments.minNodeSize;
  query.folderLimit = arguments.updateLimit;
  using Measured = std::expected<MeasuredChanges, JournalError>;
  Measured measured = mayUpdate(*arguments.earlier, places) ? journal.measuredChanges(query)
                                                            : Measured{std::unexpected(JournalError::failed)};
  if (measured) {
    ScanUpdate update{.earlier = std::move(*arguments.earlier), .changes = std::move(*measured)};
    if (update.isUsable()) {
      plan.fullScanDate = *update.earlier.fullScanDate;
      plan.carriedOver = update.earlier.coverage;
      plan.carriedOver.unread = {};  // an update looks at these folders again
      plan.update = std::move(update);
      return plan;
    }
    arguments.earlier = std::move(update.earlier);
  }
  if (!arguments.mayWalk) {
    plan.whyFull = textOf(measured ? JournalError::failed : measured.error());
    return plan;
  }
  auto changes = journal.changes(query);
  if (!changes) {
    plan.whyFull = textOf(changes.error());
    return plan;
  }
  plan.fullScanDate = *arguments.earlier->fullScanDate;
  dropExcluded(*changes, arguments);
  markPlaces(*changes, arguments.root, arguments.earlier->coverage.places, places);
  const EarlierScan earlier{std::move(*arguments.earlier), *changes};
  plan.reuse = earlier.reuse();
  plan.carriedOver = earlier.carriedOver();
  return plan;
}

}  // namespace

ScanPlan ScanPlan::make(EventJournal& journal, Arguments arguments) {
  const std::string scan = "the scan of " + arguments.root;
  const bool mayWalk = arguments.mayWalk;
  ScanPlan plan = planned(journal, std::move(arguments));
  log(LogLevel::info, plan.update  ? scan + " is updated with the folders that changed"
                      : plan.reuse ? scan + " takes the folders without changes from the last scan"
                      : mayWalk    ? scan + " is a full scan, because " + plan.whyFull
                                   : scan + " is not updated, because " + plan.whyFull);
  return plan;
}

std::optional<DiskScanner::Result> ScanPlan::scan(DiskScanner::Arguments arguments) {
  arguments.excludes = &excludes;
  if (update) return std::move(*update).run(arguments);
  arguments.reuse = std::move(reuse);
  return DiskScanner::scan(arguments);
}

namespace {

void readSpaces(Coverage& coverage) {
  for (CoveredPlace& covered : coverage.places) {
    const auto space = readSpace(covered.place.mountPoint);
    if (!space) continue;
    covered.volumeTotal = space->total;
    covered.volumeFree = space->free;
  }
}

// What a full scan alone can measure stays as it was.
void takeFullScanBytes(std::vector<CoveredPlace>& places, const std::vector<CoveredPlace>& earlier) {
  for (CoveredPlace& covered : places) {
    const auto before = std::ranges::find(earlier, covered.place, &CoveredPlace::place);
    if (before == earlier.end()) continue;
    covered.folderBytes = before->folderBytes;
    covered.inlineBytes = before->inlineBytes;
  }
}

// Adds what an earlier scan knew. What is excluded in the folders taken from it is known from it only.
void add(Coverage& coverage, const Coverage& more, const PathSet& reusedFolders) {
  const auto isInReused = [&](const std::string& item) {
    std::optional<std::string> folder = parentWithin(item, 0);
    while (folder && !reusedFolders.contains(*folder)) folder = parentWithin(*folder, 0);
    return folder.has_value();
  };
  takeFullScanBytes(coverage.places, more.places);
  Unread& unread = coverage.unread;
  unread.folders += more.unread.folders;
  unread.paths.insert(unread.paths.end(), more.unread.paths.begin(), more.unread.paths.end());
  std::ranges::sort(unread.paths);
  unread.paths.resize(std::min(unread.paths.size(), Unread::pathLimit));
  for (const LeftOut& item : more.leftOut) {
    const bool isThere = item.kind == LeftOut::Kind::excluded
                             ? isInReused(item.path)
                             : item.kind == LeftOut::Kind::snapshot && fileIdentity(item.path);
    if (isThere) coverage.leftOut.push_back(item);
  }
  std::ranges::sort(coverage.leftOut);
}

// Of many excluded folders without a known size, the first ones are enough.
void addLastSizes(Coverage& coverage, const std::map<std::string, Bytes>& sizes) {
  std::size_t unknown = 0;
  std::erase_if(coverage.leftOut, [&](LeftOut& item) {
    if (item.kind != LeftOut::Kind::excluded || item.size) return false;
    if (const auto known = sizes.find(item.path); known != sizes.end()) item.size = known->second;
    return !item.size && ++unknown > Unread::pathLimit;
  });
}

}  // namespace

Snapshot FinishedScan::snapshot() && {
  Coverage& coverage = result.coverage;
  add(coverage, plan.carriedOver, result.reusedFolders);
  addLastSizes(coverage, plan.lastSizes);
  readSpaces(coverage);
  // The next scan may be able to read these items although the journal reports no change.
  const auto eventID = result.coverage.unread.hasFailures ? std::nullopt : plan.eventID;
  return {.date = end,
          .duration = end - start,
          .root = std::move(result.root),
          .fileCount = result.fileCount,
          .volumeFree = volume ? volume->free : 0,
          .volumeTotal = volume ? volume->total : 0,
          .minNodeSize = minNodeSize,
          .eventID = eventID,
          .fullScanDate = plan.fullScanDate,
          .coverage = std::move(coverage)};
}

}  // namespace spacemint
