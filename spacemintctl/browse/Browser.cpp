#include "spacemintctl/browse/Browser.h"

#include "core/analysis/DevTools.h"
#include "core/analysis/Search.h"
#include "core/analysis/Suggestions.h"
#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/cleanup/Cleanup.h"
#include "core/cleanup/CleanupText.h"
#include "core/host/AtomicFile.h"
#include "core/host/FileStamp.h"
#include "core/host/UserFolders.h"
#include "core/places/SuggestionPlaces.h"
#include "core/scan/ScanPlan.h"
#include "core/volume/VolumeStatus.h"
#include "spacemintctl/CleanCommand.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/StoredScan.h"
#include "spacemintctl/TransferCommands.h"
#include "spacemintctl/browse/BrowseText.h"

#include <algorithm>
#include <unordered_map>

namespace spacemint::ctl {

namespace {

// Small files and folders of one folder that get a line each.
constexpr std::size_t mostSmallRows = 10'000;
constexpr std::size_t mostFound = 1'000;

Popup box(std::string title, std::vector<Paragraph> text, std::string keys) {
  return {.title = std::move(title), .text = std::move(text), .keys = std::move(keys)};
}

// Appends the text of a key to what was typed.
void append(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const auto part = [&](unsigned shift, unsigned mark, unsigned mask) {
    text += static_cast<char>(mark | ((character >> shift) & mask));
  };
  if (character < 0x800) {
    part(6, 0xc0, 0x1f);
  } else {
    if (character < 0x10000) {
      part(12, 0xe0, 0x0f);
    } else {
      part(18, 0xf0, 0x07);
      part(12, 0x80, 0x3f);
    }
    part(6, 0x80, 0x3f);
  }
  part(0, 0x80, 0x3f);
}

void removeLastCharacter(std::string& text) {
  while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xc0U) == 0x80U) text.pop_back();
  if (!text.empty()) text.pop_back();
}

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
                                 .volume = VolumeStatus::current(root)}
                        .snapshot();
    if (const auto kept = keepScan(scan); !kept) *problem = kept.error().message;
    return scan;
  };
}

// Measures a folder: all of it, or only what is not in `known`, the nodes of its subfolders by path.
using KnownFolders = std::unordered_map<std::string, Node>;

Measurement::Work folderScan(std::string path, Bytes minSize, KnownFolders known) {
  return [path = std::move(path), minSize,
          known = std::move(known)](const Measurement::Watched& watched) -> std::optional<Snapshot> {
    DiskScanner::Arguments arguments{
        .root = path, .minNodeSize = minSize, .smallEntriesOfRoot = mostSmallRows};
    watched(arguments);
    if (!known.empty()) {
      arguments.reuse = [&](const std::string& folder) -> std::optional<Node> {
        const auto found = known.find(folder);
        return found == known.end() ? std::nullopt : std::optional{found->second};
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

// A folder that is being measured again shows the sizes of the last scan until the new ones are there.
void fillIn(Node& soFar, const Node* last) {
  if (last == nullptr) return;
  std::unordered_map<std::string_view, const Node*> byName;
  for (const Node& child : last->children) byName.emplace(child.name, &child);
  for (Node& child : soFar.children) {
    const auto found = byName.find(child.name);
    if (child.size > 0 || found == byName.end()) continue;
    child.size = found->second->size;
    child.fileCount = found->second->fileCount;
  }
  soFar.size = last->size;
  soFar.fileCount = last->fileCount;
}

}  // namespace

Browser::Browser(BrowserSetup setup, Inbox& inbox, const Wording& wording)
    : setup_(std::move(setup)),
      inbox_(inbox),
      context_(cleanupContext(wording)),
      worker_(inbox) {
  context_.trash = trash_.get();
  view_.home = setup_.importedFrom.empty() ? wording.home : "";
  view_.locale = wording.locale;
  view_.now = currentTime();
  if (setup_.scan) {
    hasScan_ = true;
    isStored_ = mayMeasure();
    tree_.setScan(std::move(*setup_.scan));
    setup_.scan.reset();
  }
  if (mayMeasure()) {
    if (hasScan_) loadUsualBaseline();
    startScan();
  }
  show(setup_.folder);
}

// Scanning

void Browser::startScan() {
  if (isScanning() || !mayMeasure()) return;
  const Bytes minSize = hasScan_ ? tree_.scan().minNodeSize : ScanOptions{}.minSize;
  expected_ = hasScan_ ? std::optional{tree_.scan().root.size} : expectedBytes(setup_.root);
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
                if (!problem->empty()) say("Couldn't save the scan: " + *problem, true);
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
    view_.emptyText = "This folder could not be scanned.";
    return say(Paths::display(setup_.root, view_.home) + " could not be scanned", true);
  }
  isPartial_ = scan->date == Date{};
  if (isPartial_) {
    scan->date = currentTime();
    scan->minNodeSize = ScanOptions{}.minSize;
  }
  hasScan_ = true;
  isStored_ = !isPartial_;
  tree_.setScan(std::move(*scan));
  soFar_.reset();
  if (!touchedMeanwhile_.empty()) {
    worker_.run([this, paths = std::exchange(touchedMeanwhile_, {}), minSize = tree_.scan().minNodeSize] {
      std::vector<Measured> measured;
      for (const std::string& path : paths) measured.push_back(measureAgain(path, minSize));
      return [this, measured] {
        for (const Measured& item : measured) tree_.put(item);
        storeScan();
        if (page_ == Page::folder) updateRows();
      };
    });
  }
  if (!choseBaseline_ && !isPartial_) loadUsualBaseline();
  if (page_ != Page::folder) return;
  updateRows();
  listFolder();
}

void Browser::listFolder() {
  if (!mayMeasure() || !hasScan_ || tree_.folder(folder_).isComplete) return;
  const Node* known = tree_.scan().nodeAt(folder_);
  const std::string path = folder_;
  listing_ = std::make_unique<Measurement>(
      inbox_, folderScan(path, tree_.scan().minNodeSize, knownFolders(known, path)),
      Measurement::Events{.advanced =
                              [this](const auto&, std::optional<Node> folder) {
                                if (!folder || page_ != Page::folder) return;
                                soFar_ = std::move(folder);
                                updateRows();
                              },
                          .ended =
                              [this, path](std::optional<Snapshot> scan) {
                                listing_.reset();
                                soFar_.reset();
                                if (scan) {
                                  tree_.keepListing(path, std::move(scan->root));
                                } else {
                                  say(Paths::display(path, view_.home) + " can't be read", true);
                                }
                                if (page_ == Page::folder) updateRows();
                              }});
  listing_->show(path);
}

void Browser::measureFolderAgain() {
  if (!mayMeasure()) return say("This scan was imported: nothing here can be measured again.", true);
  if (page_ != Page::folder || !hasScan_) return;
  if (folder_ == setup_.root) return startScan();
  const std::string path = folder_;
  const Bytes minSize = tree_.scan().minNodeSize;
  listing_ = std::make_unique<Measurement>(
      inbox_, folderScan(path, minSize, {}),
      Measurement::Events{
          .advanced =
              [this](const auto& progress, std::optional<Node>) {
                say("Measuring again: " + progressText(progress, std::nullopt, {}, view_.locale));
              },
          .ended =
              [this, path, minSize](std::optional<Snapshot> scan) {
                listing_.reset();
                if (!scan) return say(Paths::display(path, view_.home) + " can't be read", true);
                Node stored = scan->root;
                std::erase_if(stored.children, [&](const Node& child) { return child.size < minSize; });
                tree_.putFolder(path, std::move(stored));
                tree_.keepListing(path, std::move(scan->root));
                storeScan();
                say("Measured again.");
                if (page_ == Page::folder) updateRows();
              }});
}

// Comparing

void Browser::loadUsualBaseline() {
  worker_.run([this, date = tree_.scan().date, root = setup_.root] {
    auto baseline = std::make_shared<std::optional<Snapshot>>(
        usualBaseline({.date = date, .root = {.name = root, .isDirectory = true}}));
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
  if (!hasScan_ || !mayMeasure()) return say("There is no earlier scan to compare with.");
  auto entries = SnapshotStore::ofRoot(setup_.root).entries(view_.now);
  const Date newest = std::chrono::floor<std::chrono::seconds>(tree_.scan().date);
  std::erase_if(entries, [&](const SnapshotStore::Entry& entry) { return entry.date >= newest; });
  if (entries.empty()) return say("There is no earlier scan of this folder to compare with.");
  Popup popup = box("Compare with", {}, "Enter choose   Esc leave as it is");
  popup.choices.emplace_back("No other scan");
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
          return say("That scan is of another folder.", true);
        setBaseline(std::move(**scan));
      };
    });
  });
}

// Moving

void Browser::show(const std::string& path, const std::string& chosen) {
  page_ = Page::folder;
  folder_ = path;
  soFar_.reset();
  listing_.reset();
  if (scanning_) scanning_->show(path);
  view_.cursor = view_.first = 0;
  view_.rows.clear();
  updateRows();
  if (!chosen.empty()) setRows(std::move(view_.rows), chosen);
  listFolder();
}

void Browser::updateRows() {
  const Row* current = view_.current();
  const std::string chosen = current == nullptr || view_.cursor == 0 ? "" : current->path;
  BrowseTree::Folder folder = tree_.folder(folder_);
  Node merged;
  if (!folder.isComplete && soFar_) {
    merged = *soFar_;
    if (hasScan_) fillIn(merged, folder.node);
    folder.node = &merged;
  }
  view_.title = Paths::display(folder_, view_.home);
  view_.figure = "";
  view_.emptyText = mayMeasure() && !folder.isComplete ? "Measuring…" : "Nothing is in this folder.";
  if (folder.node == nullptr) return setRows({}, "");
  view_.whole = folder.node->size;
  view_.figure = BrowseText::figure(folder.node->size, folder.node->fileCount, view_.locale);
  const Node* before = baseline_ ? baseline_->nodeAt(folder_) : nullptr;
  setRows(rowsOf({.folder = *folder.node,
                  .path = folder_,
                  .before = before,
                  .beforeMinimum = baseline_ ? std::optional{baseline_->minNodeSize} : std::nullopt,
                  .isComplete = folder.isComplete}),
          chosen);
}

void Browser::setRows(std::vector<Row> rows, const std::string& chosen) {
  sortRows(rows, view_.order);
  view_.rows = std::move(rows);
  if (chosen.empty()) return;
  const auto found = std::ranges::find(view_.rows, chosen, &Row::path);
  if (found != view_.rows.end()) view_.cursor = static_cast<std::size_t>(found - view_.rows.begin());
}

void Browser::open() {
  const Row* row = view_.current();
  if (row == nullptr || !row->isItem()) return;
  const Row chosen = *row;
  if (chosen.isDirectory) return show(chosen.path);
  if (page_ == Page::folder) return showInfo();
  show(parentOf(chosen.path), chosen.path);
}

void Browser::back() {
  if (page_ != Page::folder) return leavePage();
  if (folder_ == setup_.root) return say("This is the top of the scan.");
  show(parentOf(folder_), std::string{folder_});
}

void Browser::leavePage() {
  show(std::string{folder_}, chosenInFolder_);
}

void Browser::move(std::ptrdiff_t by) {
  const auto last = static_cast<std::ptrdiff_t>(view_.rows.size()) - 1;
  const auto cursor = static_cast<std::ptrdiff_t>(view_.cursor) + by;
  view_.cursor =
      static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(cursor, 0, std::max<std::ptrdiff_t>(last, 0)));
}

void Browser::orderBy(RowKey key) {
  if (key == RowKey::growth && !view_.showsGrowth) return say("Press b to choose a scan to compare with.");
  view_.order.isReversed = view_.order.key == key && !view_.order.isReversed;
  view_.order.key = key;
  setRows(std::move(view_.rows), "");
  view_.cursor = view_.first = 0;
}

// Other pages and boxes

void Browser::search(const std::string& text) {
  if (pieces(text, ' ').empty()) return;
  const auto query = parseSearch(text);
  if (!query) return say(query.error().message, true);
  static const FileKinds kinds = FileKinds::ofThisSystem();
  std::size_t count = 0;
  const auto results = spacemint::search(tree_.scan(), *query, kinds, view_.now, mostFound, &count);
  if (results.empty()) {
    return say("Nothing found. The scan has files and folders from " +
               ByteFormat::string(tree_.scan().minNodeSize, view_.locale) + " on.");
  }
  std::vector<Row> rows;
  for (const auto& [path, node] : results) {
    Row& row = rows.emplace_back(Row{.path = path,
                                     .name = Paths::display(path, view_.home),
                                     .size = node->size,
                                     .fileCount = node->isDirectory ? node->fileCount : 1,
                                     .modified = node->modified,
                                     .isDirectory = node->isDirectory});
    if (!baseline_) continue;
    const Node* before = baseline_->nodeAt(path);
    row.growth = saturatingSubtract(row.size, before == nullptr ? 0 : before->size);
    row.isNew = before == nullptr;
  }
  if (page_ == Page::folder) chosenInFolder_ = view_.current() == nullptr ? "" : view_.current()->path;
  page_ = Page::found;
  listing_.reset();
  view_.title = "Found: " + text;
  view_.figure = count > rows.size()
                     ? groupedNumber(static_cast<std::int64_t>(rows.size()), view_.locale) + " of " +
                           groupedNumber(static_cast<std::int64_t>(count), view_.locale)
                     : groupedNumber(static_cast<std::int64_t>(count), view_.locale) + " found";
  view_.whole = tree_.scan().root.size;
  view_.cursor = view_.first = 0;
  setRows(std::move(rows), "");
}

void Browser::showCleanable() {
  if (!hasScan_ || isPartial_) return say("Let the scan end first; then this shows what is safe to clean.");
  if (!mayMeasure()) return say("This scan was imported: nothing of it can be cleaned here.");
  const Snapshot& scan = tree_.scan();
  std::vector<Row> rows;
  cleanups_.clear();
  const auto add = [&](const std::string& path, Bytes size, const std::string& name, std::string note) {
    if (!isAtOrBelow(path, folder_)) return;
    rows.push_back({.path = path,
                    .name = name + " – " + Paths::display(path, view_.home),
                    .size = size,
                    .isDirectory = true,
                    .note = std::move(note)});
    if (const Node* node = scan.nodeAt(path)) rows.back().fileCount = node->fileCount;
  };
  for (const auto& found :
       DevTools::cleanups({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    add(found.path, found.size, std::string{found.target->title},
        CleanupText::cacheNote(*found.target, Paths::display(found.path, view_.home)));
    cleanups_.emplace(found.path, found);
  }
  if (const auto trash =
          Suggestions::trash({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    add(trash->path, trash->size, "Trash", "Deletes everything for good, including hidden items.");
    cleanups_.emplace(trash->path, EmptyTrashRequest{.place = trashPlace(&scan, view_.home, context_.data),
                                                     .size = trash->size});
  }
  for (const Suggestion& each :
       Suggestions::find({.in = scan, .home = view_.home, .environment = UserFolders::environment})) {
    if (std::ranges::find(projectFolders, each.id, &ProjectFolder::id) == projectFolders.end()) continue;
    for (const auto& location : each.locations) add(location.path, location.size, each.title, each.advice);
  }
  if (rows.empty()) return say("Nothing in this folder is known to be safe to clean.");
  if (page_ == Page::folder) chosenInFolder_ = view_.current() == nullptr ? "" : view_.current()->path;
  page_ = Page::cleanable;
  listing_.reset();
  Bytes sum = 0;
  for (const Row& row : rows) sum = saturatingAdd(sum, row.size);
  view_.title = "Safe to clean in " + Paths::display(folder_, view_.home);
  view_.figure = ByteFormat::string(sum, view_.locale);
  view_.whole = sum;
  view_.cursor = view_.first = 0;
  setRows(std::move(rows), "");
}

std::string Browser::aboutFolder(const std::string& path) const {
  if (!hasScan_ || !mayMeasure()) return "";
  for (const auto& found : DevTools::cleanups(
           {.in = tree_.scan(), .home = view_.home, .environment = UserFolders::environment})) {
    if (found.path == path)
      return std::string{found.target->title} + ": " + std::string{found.target->advice};
  }
  for (const Suggestion& each :
       Suggestions::find({.in = tree_.scan(), .home = view_.home, .environment = UserFolders::environment})) {
    for (const auto& location : each.locations) {
      if (location.path == path) return each.title + ": " + each.advice;
    }
  }
  return "";
}

void Browser::showInfo() {
  const Row* row = view_.current();
  if (row == nullptr || !row->isItem()) return;
  const std::string before = baseline_ ? localTime(baseline_->date) : "";
  ask(box("Info", BrowseText::info(*row, view_, before, row->isDirectory ? aboutFolder(row->path) : ""),
          "any key: back"),
      {});
}

void Browser::mark() {
  const Row* row = view_.current();
  if (row == nullptr || !row->isItem()) return;
  if (marked_.erase(row->path) == 0) marked_.emplace(row->path, row->size);
  move(1);
}

void Browser::say(std::string message, bool isWarning) {
  message_ = std::move(message);
  view_.footerStyle = isWarning ? Style::warning : Style::strong;
}

void Browser::ask(Popup popup, Choose choose) {
  view_.popup = std::move(popup);
  choose_ = std::move(choose);
}

void Browser::askFor(Popup popup, Enter enter) {
  view_.popup = std::move(popup);
  enter_ = std::move(enter);
}

void Browser::closePopup() {
  view_.popup.reset();
  choose_ = {};
  enter_ = {};
}

void Browser::pressInPopup(const Key& key) {
  using Kind = Key::Kind;
  Popup& popup = *view_.popup;
  if (popup.input) {
    if (key.kind == Kind::escape) return closePopup();
    if (key.kind == Kind::backspace) return removeLastCharacter(*popup.input);
    if (key.kind == Kind::character) return append(*popup.input, key.character);
    if (key.kind != Kind::enter) return;
    const std::string text = *popup.input;
    const Enter enter = std::move(enter_);
    closePopup();
    return enter(text);
  }
  if (stopRemoval_) {
    if (key.kind == Kind::escape || key.is('q')) *stopRemoval_ = true;
    return;
  }
  const bool isUp = key.kind == Kind::up || key.kind == Kind::wheelUp || key.is('k');
  const bool isDown = key.kind == Kind::down || key.kind == Kind::wheelDown || key.is('j');
  if (popup.choices.empty()) {
    if (isDown || key.kind == Kind::pageDown) {
      popup.firstLine = std::min(popup.firstLine + (isDown ? 1 : 10), popup.text.size());
    } else if (isUp || key.kind == Kind::pageUp) {
      popup.firstLine -= std::min<std::size_t>(popup.firstLine, isUp ? 1 : 10);
    } else if (key.kind != Kind::other && key.kind != Kind::click) {
      closePopup();
    }
    return;
  }
  if (isUp && popup.chosen > 0) --popup.chosen;
  if (isDown && popup.chosen + 1 < popup.choices.size()) ++popup.chosen;
  if (key.kind == Kind::escape || key.is('q') || key.is('n')) return closePopup();
  if (key.kind != Kind::enter) return;
  const std::size_t chosen = popup.chosen;
  const Choose choose = std::move(choose_);
  closePopup();
  choose(chosen);
}

void Browser::askWhetherToQuit() {
  if (hasScan_ || !isScanning()) {
    hasEnded_ = true;
    return;
  }
  Popup popup = box("The scan is not finished", {}, "Enter choose   Esc go on scanning");
  popup.choices = {"Keep what is measured so far", "Quit", "Go on scanning"};
  ask(std::move(popup), [this](std::size_t choice) {
    if (choice == 0 && scanning_) scanning_->stopAndKeep();
    if (choice == 1) hasEnded_ = true;
  });
}

void Browser::exportTo(const std::string& file) {
  if (file.empty()) return;
  const std::string path = file.starts_with("~/") ? Paths::join(UserFolders::home(), file.substr(2)) : file;
  if (mayExist(path)) return say(file + " is there already; nothing was written.", true);
  const auto written = writeFileAtomically(path, exported(tree_.scan()));
  if (written) return say("Exported to " + file + ". \"spacemintctl browse --import\" and ncdu open it.");
  say("Couldn't write the export: " + written.error().message, true);
}

// Removing

bool Browser::refusesRemoval() {
  if (setup_.whyReadOnly.empty()) return false;
  say(setup_.whyReadOnly, true);
  return true;
}

void Browser::askRemoval() {
  if (refusesRemoval()) return;
  std::vector<RemovalItem> items;
  for (const auto& [path, size] : marked_) items.push_back({.path = path, .size = size});
  const Row* row = view_.current();
  if (items.empty()) {
    if (row == nullptr || !row->isItem()) return;
    const auto cleanup = cleanups_.find(row->path);
    if (page_ == Page::cleanable && cleanup != cleanups_.end())
      return askCleanup(CleanupRequest{cleanup->second});
    items.push_back({.path = row->path, .size = row->size});
  }
  RemovalOffer offer = offerRemoval(std::move(items), context_, view_.now);
  if (!offer.forGood) return say(offer.refused.front(), true);
  Popup popup = box("Remove?", BrowseText::removal(offer, view_), "Enter do it   Esc keep everything");
  std::vector<std::optional<CleanupPlan>> plans;
  const auto choice = [&](const char* text, std::optional<CleanupPlan> plan) {
    popup.choices.emplace_back(text);
    plans.push_back(std::move(plan));
  };
  choice("Keep everything", std::nullopt);
  if (offer.toTrash) choice("Move to the Trash", std::move(offer.toTrash));
  choice("Delete for good", std::move(offer.forGood));
  ask(std::move(popup), [this, plans = std::move(plans)](std::size_t chosen) {
    if (plans[chosen]) carryOut(*plans[chosen]);
  });
}

void Browser::askCleanup(const CleanupRequest& request) {
  auto plan = planCleanup(request, context_, view_.now);
  if (!plan) return say(CleanupText::refusalText(request, plan.error(), context_), true);
  Popup popup = box(plan->title, BrowseText::cleanup(*plan, view_), "Enter do it   Esc keep everything");
  popup.choices = {"Keep everything", plan->button};
  ask(std::move(popup), [this, plan = std::move(*plan)](std::size_t chosen) {
    if (chosen == 1) carryOut(plan);
  });
}

void Browser::carryOut(CleanupPlan plan) {
  stopRemoval_ = std::make_shared<std::atomic<bool>>(false);
  view_.popup = box(plan.title, {{CleanupText::progressText(plan, {}, view_.locale)}}, "Esc stop");
  const bool toTrash = plan.steps.front().kind == CleanupStep::Kind::moveToTrash;
  const std::string trash =
      highestMissing(tree_.scan(), trashPlace(&tree_.scan(), view_.home, context_.data).folder);
  std::vector<std::string> touched = plan.touched;
  if (toTrash && tree_.scan().components(trash)) touched.push_back(trash);
  worker_.run([this, plan = std::move(plan), touched, stop = stopRemoval_, context = context_,
               minSize = tree_.scan().minNodeSize, locale = view_.locale]() -> Worker::Then {
    auto next = std::chrono::steady_clock::now();
    const CleanupReport report = Cleanup::carryOut(plan, context, [&](const Removed& soFar) {
      const auto now = std::chrono::steady_clock::now();
      if (now >= next) {
        next = now + std::chrono::milliseconds{100};
        worker_.tell([this, text = CleanupText::progressText(plan, soFar, locale)] {
          if (view_.popup && stopRemoval_) view_.popup->text = {{text}};
        });
      }
      return !*stop;
    });
    std::vector<Measured> measured;
    for (const std::string& path : touched) measured.push_back(measureAgain(path, minSize));
    return [this, plan, report, measured] { removed(plan, report, measured); };
  });
}

void Browser::removed(const CleanupPlan& plan, const CleanupReport& report,
                      const std::vector<Measured>& measured) {
  stopRemoval_.reset();
  closePopup();
  for (const Measured& item : measured) {
    tree_.put(item);
    if (isScanning()) touchedMeanwhile_.push_back(item.path);
    if (!item.exists)
      std::erase_if(marked_, [&](const auto& mark) { return isAtOrBelow(mark.first, item.path); });
  }
  storeScan();
  if (page_ == Page::folder) {
    updateRows();
    listFolder();
  } else if (page_ == Page::cleanable) {
    page_ = Page::folder;  // in case nothing is left
    showCleanable();
    if (page_ == Page::folder) leavePage();
  } else {
    std::erase_if(view_.rows, [](const Row& row) { return !mayExist(row.path); });
  }
  if (!report.isComplete(plan)) {
    return ask(
        box("Not everything was removed", {{CleanupText::outcome(plan, report, context_)}}, "any key: back"),
        {});
  }
  if (plan.steps.size() == 1) return say(CleanupText::outcome(plan, report, context_));
  const bool toTrash = plan.steps.front().kind == CleanupStep::Kind::moveToTrash;
  const std::int64_t count = std::ssize(plan.steps);
  const std::string done =
      toTrash ? counted(count, "Moved {count} item to the Trash", "Moved {count} items to the Trash",
                        view_.locale)
              : counted(count, "Deleted {count} item", "Deleted {count} items", view_.locale);
  say(CleanupText::successText(
      {.label = done, .removed = report.removed(), .freed = toTrash ? std::nullopt : report.freed()},
      view_.locale));
}

// Also the scan that the application shows, if this is one of another folder.
void Browser::storeScan() {
  if (!isStored_) return;
  worker_.run([this, scan = tree_.scan()]() -> Worker::Then {
    const auto saved = SnapshotStore::ofRoot(scan.rootPath()).save(scan);
    if (saved) return {};
    return
        [this, reason = saved.error().message] { say("Couldn't save changes to the scan: " + reason, true); };
  });
}

// Keys

void Browser::press(const Key& key, const ScreenSize& size) {
  using Kind = Key::Kind;
  view_.now = currentTime();
  if (view_.popup) return pressInPopup(key);
  if (key.kind != Kind::other) message_.clear();
  const auto page = static_cast<std::ptrdiff_t>(visibleRows(size));
  constexpr std::ptrdiff_t all = 1'000'000'000;
  switch (key.kind) {
    case Kind::up:
      return move(-1);
    case Kind::down:
      return move(1);
    case Kind::pageUp:
      return move(-page);
    case Kind::pageDown:
      return move(page);
    case Kind::home:
      return move(-all);
    case Kind::end:
      return move(all);
    case Kind::wheelUp:
      return move(-3);
    case Kind::wheelDown:
      return move(3);
    case Kind::right:
    case Kind::enter:
      return open();
    case Kind::left:
    case Kind::backspace:
      return back();
    case Kind::escape:
      return page_ == Page::folder ? void() : leavePage();
    case Kind::remove:
      return askRemoval();
    case Kind::click:
      if (const auto row = rowAt(view_, size, key.row)) {
        if (*row == view_.cursor) return open();
        view_.cursor = *row;
      }
      return;
    case Kind::other:
      return;
    case Kind::character:
      break;
  }
  switch (key.character) {
    case 'k':
      return move(-1);
    case 'j':
      return move(1);
    case 'l':
      return open();
    case 'h':
    case '<':
      return back();
    case 's':
      return orderBy(RowKey::size);
    case 'n':
      return orderBy(RowKey::name);
    case 'C':
      return orderBy(RowKey::count);
    case 'M':
      return orderBy(RowKey::age);
    case 'G':
      return orderBy(RowKey::growth);
    case 't':
      view_.order.foldersFirst = !view_.order.foldersFirst;
      return setRows(std::move(view_.rows), "");
    case 'g':
      view_.share = static_cast<ShareColumn>((static_cast<unsigned>(view_.share) + 1) % 4);
      return;
    case 'i':
      return showInfo();
    case ' ':
      return mark();
    case 'u':
      return marked_.clear();
    case 'd':
      return askRemoval();
    case 'c':
      return showCleanable();
    case 'b':
      return chooseBaseline();
    case 'r':
      return measureFolderAgain();
    case '?':
      return ask(box("Keys", BrowseText::help(), "any key: back"), {});
    case '/': {
      if (!hasScan_) return say("Let the scan end first; then its files can be searched.");
      Popup popup = box("Search", {{"Part of a name, *.iso, >1GB, <10MB, older:1y, newer:2w, type:video"}},
                        "Enter search   Esc leave");
      popup.input.emplace();
      return askFor(std::move(popup), [this](const std::string& text) { search(text); });
    }
    case 'e': {
      if (!hasScan_) return say("Let the scan end first; then it can be exported.");
      Popup popup = box("Export the scan to", {}, "Enter write   Esc leave");
      popup.input = "~/spacemint-" + localTime(tree_.scan().date).substr(0, 10) + ".json";
      return askFor(std::move(popup), [this](const std::string& file) { exportTo(file); });
    }
    case 'q':
      return askWhetherToQuit();
    default:
      return;
  }
}

std::string Browser::statusText() const {
  const Row* row = view_.current();
  if (page_ == Page::cleanable && row != nullptr) return row->note;
  std::string text;
  if (!marked_.empty()) {
    Bytes sum = 0;
    for (const auto& [_, size] : marked_) sum = saturatingAdd(sum, size);
    text = groupedNumber(static_cast<std::int64_t>(marked_.size()), view_.locale) + " marked, " +
           ByteFormat::string(sum, view_.locale) + " · ";
  }
  if (!hasScan_) return text + "Scanning: " + (progress_.empty() ? "…" : progress_);
  const std::string age = RelativeTime::string(tree_.scan().date, view_.now, view_.locale);
  if (!mayMeasure()) return text + "Scan of " + setup_.importedFrom + ", " + age + " · read-only";
  text += (isPartial_ ? "Part of a scan, " : "Scanned ") + age;
  if (isScanning()) text += ", being brought up to date" + (progress_.empty() ? "…" : ": " + progress_);
  if (baseline_) text += " · growth since " + localTime(baseline_->date);
  if (!setup_.whyReadOnly.empty()) text += " · read-only";
  return text;
}

Screen Browser::screen(const ScreenSize& size) {
  view_.marked.clear();
  for (const auto& [path, _] : marked_) view_.marked.insert(path);
  view_.status = statusText();
  view_.footer = message_;
  if (message_.empty()) {
    view_.footer = BrowseText::keys(page_ == Page::folder, !setup_.whyReadOnly.empty());
    view_.footerStyle = Style::dim;
  }
  scrollToCursor(view_, size);
  return drawn(view_, size);
}

}  // namespace spacemint::ctl
