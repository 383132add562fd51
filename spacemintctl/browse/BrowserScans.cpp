#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/cleanup/Remeasure.h"
#include "core/host/FileStamp.h"
#include "core/host/FolderSum.h"
#include "core/host/VolumeInfo.h"
#include "core/scan/ScanPlan.h"
#include "core/scan/ScanTiming.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/StoredScan.h"
#include "spacemintctl/browse/BrowseText.h"
#include "spacemintctl/browse/Browser.h"

#include <unordered_map>
#include <unordered_set>

namespace spacemint::ctl {

namespace {

// Small files and folders of one folder that get a line each.
constexpr std::size_t mostSmallRows = 10'000;

// Scans `root` as `spacemintctl scan` does, and stores the scan. `problem` receives why it could not be
// stored.
Measurement::Work wholeScan(std::string root, Bytes minSize, std::shared_ptr<std::string> problem) {
  return [root = std::move(root), minSize,
          problem = std::move(problem)](const Measurement::Watched& watched) -> std::optional<Snapshot> {
    DiskScanner::Arguments arguments{.root = root, .minNodeSize = minSize};
    watched(arguments);
    const Date start = currentTime();
    ScanPlan plan = planFor(root, {.minSize = minSize}, start, arguments.shouldCancel);
    auto result = arguments.shouldCancel() ? std::nullopt : plan.scan(arguments);
    if (!result) return std::nullopt;
    Snapshot scan = FinishedScan{.result = std::move(*result),
                                 .plan = plan,
                                 .minNodeSize = minSize,
                                 .start = start,
                                 .end = currentTime(),
                                 .volume = VolumeStatus::current(root == wholeDisk ? startupVolume() : root)}
                        .snapshot();
    if (const auto kept = keepScan(scan); !kept) *problem = kept.error().message;
    return scan;
  };
}

// Measures a folder: all of it, or only what is not in `known`, the nodes of its subfolders by path.
using KnownFolders = std::unordered_map<std::string, Node>;

Measurement::Work folderScan(std::string path, const Snapshot& scan, KnownFolders known) {
  return [path = std::move(path), minSize = scan.minNodeSize, patterns = scan.coverage.excludes,
          known = std::move(known)](const Measurement::Watched& watched) -> std::optional<Snapshot> {
    const Excludes excludes = Excludes::usable(patterns, "");
    DiskScanner::Arguments arguments{
        .root = path, .minNodeSize = minSize, .excludes = &excludes, .smallEntriesOfRoot = mostSmallRows};
    watched(arguments);
    if (!known.empty()) {
      arguments.reuse = [&](const std::string& folder) {
        const auto found = known.find(folder);
        return found == known.end() ? nullptr : &found->second;
      };
    }
    auto result = DiskScanner::scan(arguments);
    if (!result) return std::nullopt;
    return Snapshot{.root = std::move(result->root), .fileCount = result->fileCount};
  };
}

KnownFolders knownFolders(const Node* folder, const std::string& path) {
  KnownFolders known;
  if (folder == nullptr) return known;
  for (const Node& child : folder->children) {
    if (!child.isDirectory) continue;
    known.emplace(Paths::join(path, child.name), Node{.name = child.name,
                                                      .size = child.size,
                                                      .isDirectory = true,
                                                      .fileCount = child.fileCount,
                                                      .isWorktree = child.isWorktree});
  }
  return known;
}

// A folder of a new scan. What is too small for a scan stays as it was listed until it is listed again.
Node withSmallItems(const Node& scanned, const Node& listed, Bytes minSize) {
  std::unordered_set<std::string_view> names;
  for (const Node& child : scanned.children) names.insert(child.name);
  Node folder{.name = scanned.name,
              .size = scanned.size,
              .isDirectory = true,
              .children = listed.children,
              .fileCount = scanned.fileCount};
  std::erase_if(folder.children, [&](const Node& child) {
    return isStored(child.size, child.fileCount, minSize) || names.contains(child.name);
  });
  for (const Node& child : scanned.children)
    folder.children.push_back({.name = child.name,
                               .size = child.size,
                               .isDirectory = child.isDirectory,
                               .modified = child.modified,
                               .fileCount = child.fileCount,
                               .isWorktree = child.isWorktree});
  return folder;
}

}  // namespace

void Browser::startScan() {
  if (isScanning() || !mayMeasure()) return;
  const Bytes minSize = hasScan_ ? tree_.scan().minNodeSize : ScanOptions{}.minSize;
  expected_ =
      hasScan_ ? ScanTiming::expected(&tree_.scan(), setup_.root, std::nullopt, {}) : expectedIn(setup_.root);
  scanStart_ = std::chrono::steady_clock::now();
  progress_.clear();
  auto problem = std::make_shared<std::string>();
  scanning_ = std::make_unique<Measurement>(
      inbox_, wholeScan(setup_.root, minSize, problem),
      Measurement::Events{
          .advanced = [this](const auto& progress,
                             std::optional<Node> folder) { scanAdvanced(progress, std::move(folder)); },
          .ended =
              [this, problem](std::optional<Snapshot> scan) {
                scanEnded(std::move(scan));
                if (!problem->empty())
                  say(i18n("Couldn't save the scan: {reason}", {{"reason", *problem}}), true);
              }});
  scanning_->show(folder_);
}

void Browser::scanAdvanced(const DiskScanner::Progress& progress, std::optional<Node> folder) {
  progress_ = progressText(progress, expected_, std::chrono::steady_clock::now() - scanStart_, view_.locale);
  if (hasScan_ || !folder) return;
  soFar_ = std::move(folder);
  if (page_ == Page::folder) updateRows();
}

void Browser::scanEnded(std::optional<Snapshot> scan) {
  scanning_.reset();
  if (!scan) {
    view_.emptyText = i18n("This folder could not be scanned.");
    return say(i18n("{path} could not be scanned.", {{"path", Paths::display(setup_.root, view_.home)}}),
               true);
  }
  isPartial_ = scan->measuredPart.has_value();
  if (isPartial_) {
    scan->measuredPart = ScanTiming::fraction(scan->root.size, expected_.bytes).value_or(0);
    scan->date = currentTime();
    scan->minNodeSize = ScanOptions{}.minSize;
  }
  if (!hasScan_) sayWhatIsUnread(scan->coverage.unread);
  hasScan_ = true;
  isStored_ = !isPartial_;
  const BrowseTree::Folder shown = tree_.folder(folder_);
  const Node* scanned = scan->nodeAt(folder_);
  soFar_.reset();
  if (shown.isComplete && scanned != nullptr)
    soFar_ = withSmallItems(*scanned, *shown.node, scan->minNodeSize);
  tree_.setScan(std::move(*scan));
  if (!touchedMeanwhile_.empty()) {
    worker_.run([this, paths = std::exchange(touchedMeanwhile_, {}), minSize = tree_.scan().minNodeSize,
                 excludes = tree_.scan().coverage.excludes] {
      std::vector<Measured> measured;
      for (const std::string& path : paths) measured.push_back(measureAgain(path, minSize, excludes));
      return [this, measured, paths] {
        for (const Measured& item : measured) tree_.put(item);
        storeScan(paths);
        if (page_ == Page::folder) updateRows();
      };
    });
  }
  if (!choseBaseline_ && !isPartial_) loadUsualBaseline();
  if (page_ != Page::folder) return;
  updateRows();
  listFolder();
}

void Browser::sayWhatIsUnread(const Unread& unread) {
  const std::string note = unreadNote(unread, {.home = view_.home, .locale = view_.locale});
  if (!note.empty()) say(note.substr(0, note.find('\n')), true);
}

void Browser::listFolder() {
  if (!mayMeasure() || !hasScan_ || !hasStarted_) return;
  if (tree_.folder(folder_).isComplete) return lookIntoFolder();
  const Node* known = tree_.scan().nodeAt(folder_);
  const std::string path = folder_;
  const auto advanced = [this](const auto&, std::optional<Node> folder) {
    if (!folder || page_ != Page::folder) return;
    soFar_ = std::move(folder);
    updateRows();
  };
  const auto ended = [this, path](std::optional<Snapshot> scan) {
    listing_.reset();
    soFar_.reset();
    if (!scan) return folderFailed(path);
    tree_.keepListing(path, std::move(scan->root));
    if (page_ != Page::folder) return;
    updateRows();
    lookIntoFolder();
  };
  listing_ = std::make_unique<Measurement>(inbox_, folderScan(path, tree_.scan(), knownFolders(known, path)),
                                           Measurement::Events{.advanced = advanced, .ended = ended});
  listing_->show(path);
}

void Browser::lookIntoFolder() {
  const Node* folder = tree_.folder(folder_).node;
  if (folder == nullptr) return;
  std::unordered_set<std::string> names;
  for (const Node& child : folder->children) names.insert(child.name);
  worker_.run([this, path = folder_, names = std::move(names)] {
    auto look = std::make_shared<FolderLook>(lookInto(path, names));
    return [this, path, look] {
      if (page_ != Page::folder || path != folder_) return;
      look_ = std::move(*look);
      updateRows();
    };
  });
}

void Browser::measureFolderAgain() {
  if (!mayMeasure()) return say(i18n("This scan was imported: nothing here can be measured again."), true);
  if (page_ != Page::folder || !hasScan_) return;
  if (folder_ == setup_.root) return startScan();
  const std::string path = folder_;
  const Bytes minSize = tree_.scan().minNodeSize;
  listing_ = std::make_unique<Measurement>(
      inbox_, folderScan(path, tree_.scan(), {}),
      Measurement::Events{
          .advanced =
              [this](const auto& progress, std::optional<Node>) {
                say(i18n("Measuring again: {progress}",
                         {{"progress", progressText(progress, ScanTiming::Expected{}, {}, view_.locale)}}));
              },
          .ended =
              [this, path, minSize](std::optional<Snapshot> scan) {
                listing_.reset();
                if (!scan) return folderFailed(path);
                Node stored = scan->root;
                std::erase_if(stored.children, [&](const Node& child) {
                  return !isStored(child.size, child.fileCount, minSize);
                });
                tree_.putFolder(path, std::move(stored));
                tree_.keepListing(path, std::move(scan->root));
                storeScan({path});
                say(i18n("Measured again."));
                if (page_ == Page::folder) updateRows();
              }});
}

// A folder that has gone since leaves the tree, with the highest folder above it that has gone, too.
void Browser::folderFailed(const std::string& path) {
  std::string gone = path;
  while (gone != setup_.root && !mayExist(Paths::parent(gone))) gone = Paths::parent(gone);
  if (gone != setup_.root && !mayExist(gone)) {
    tree_.put({.path = gone, .exists = false});
    storeScan({gone});
    if (page_ == Page::folder && isAtOrBelow(folder_, gone)) show(Paths::parent(gone));
  }
  if (page_ == Page::folder) updateRows();
  say(i18n("{path} can't be read.", {{"path", Paths::display(path, view_.home)}}), true);
}

void Browser::loadUsualBaseline() {
  worker_.run([this, date = tree_.scan().date, root = setup_.root,
               excludes = tree_.scan().coverage.excludes] {
    auto baseline = std::make_shared<std::optional<Snapshot>>(
        usualBaseline(
            {.date = date, .root = {.name = root, .isDirectory = true}, .coverage = {.excludes = excludes}})
            .usual);
    return [this, baseline] {
      if (!choseBaseline_) setBaseline(std::move(*baseline));
    };
  });
}

void Browser::setBaseline(std::optional<Snapshot> baseline) {
  baseline_ = std::move(baseline);
  view_.showsGrowth = baseline_.has_value();
  if (page_ == Page::folder) updateRows();
}

void Browser::chooseBaseline() {
  if (!hasScan_ || !mayMeasure()) return say(i18n("There is no earlier scan to compare with."));
  auto entries = SnapshotStore::ofRoot(setup_.root).entries(view_.now);
  const Date newest = std::chrono::floor<std::chrono::seconds>(tree_.scan().date);
  std::erase_if(entries, [&](const SnapshotStore::Entry& entry) { return entry.date >= newest; });
  if (entries.empty()) return say(i18n("There is no earlier scan of this folder to compare with."));
  Popup popup = box(i18n("Compare with"), {}, i18n("Enter choose   Esc leave as it is"));
  popup.choices.emplace_back(i18n("No other scan"));
  for (const auto& entry : entries)
    popup.choices.push_back(BrowseText::scanName(entry.date, view_.now, view_.locale));
  popup.chosen = 1;
  ask(std::move(popup), [this, entries](std::size_t choice) {
    choseBaseline_ = true;
    if (choice == 0) return setBaseline(std::nullopt);
    worker_.run([this, entry = entries[choice - 1]]() -> Worker::Then {
      auto scan = std::make_shared<std::expected<Snapshot, Error>>(SnapshotStore{}.load(entry));
      return [this, scan] {
        if (!*scan) return say(scan->error().message, true);
        if ((*scan)->rootPath() != tree_.scan().rootPath())
          return say(i18n("That scan is of another folder."), true);
        setBaseline(std::move(**scan));
      };
    });
  });
}

}  // namespace spacemint::ctl
