#include "Spacemint/views/Folders.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace spacemint {

namespace {

// A folder of a scan, with its path as the tree spells it. The root of the scan has no parent.
struct Folder {
  std::string path;
  const Node* node = nullptr;
  std::optional<std::string> parent = {};
};

// The folder at `wanted`, or the nearest folder above it that is in the scan; without `wanted` the root.
Folder findFolder(const Snapshot& snapshot, const std::optional<std::string>& wanted) {
  Folder found{.path = snapshot.rootPath(), .node = &snapshot.root};
  const auto names = wanted ? snapshot.components(*wanted) : std::nullopt;
  if (!names) return found;
  for (const std::string& name : *names) {
    const Node* child = found.node->child(name);
    if (child == nullptr || !child->isDirectory) break;
    found.parent = found.path;
    found.path = Paths::join(found.path, child->name);
    found.node = child;
  }
  return found;
}

std::vector<ListItem> itemsOf(const Folder& folder, const UiHost& host) {
  std::vector<ListItem> items;
  items.reserve(folder.node->children.size() + 1);
  for (const Node& child : folder.node->children) {
    std::string path = Paths::join(folder.path, child.name);
    items.push_back({.id = path,
                     .path = std::move(path),
                     .size = child.size,
                     .isDirectory = child.isDirectory,
                     .fraction = ShownText::share(child.size, folder.node->size),
                     .showsChevron = child.isDirectory,
                     .canTrash = true});
  }
  if (const Bytes rest = folder.node->unlistedSize(); rest > 0) {
    items.push_back({.id = "",
                     .size = rest,
                     .title = FolderText::smallItems(!items.empty(), host.locale),
                     .symbol = "doc",
                     .fraction = ShownText::share(rest, folder.node->size)});
  }
  return items;
}

// What the scan left out in the folder, or below it in folders too small to be listed.
std::vector<ListItem> leftOutItems(const Folder& folder, const Snapshot& snapshot, const UiHost& host) {
  std::vector<ListItem> items;
  for (const LeftOut& item : snapshot.coverage.leftOut) {
    if (findFolder(snapshot, item.path).path != folder.path) continue;
    items.push_back(
        {.id = "left out " + item.path,
         .title = Paths::display(item.path, host.home),
         .subtitle = i18n(
             "{item}, not scanned",
             {{"item", FindingText::leftOutTitle(item, host.desktop.clock.now(), ShownText::wordsLocale)}}),
         .sizeText = "",
         .symbol = item.kind == LeftOut::Kind::snapshot ? "square.stack.3d.up" : "externaldrive"});
  }
  return items;
}

// The index of the child that is `below` or leads to it; 0 if there is none.
int rowTowards(const std::string& below, const Folder& folder) {
  if (!below.starts_with(folder.path)) return 0;
  const auto& children = folder.node->children;
  const auto row = std::ranges::find_if(children, [&](const Node& child) {
    const std::string path = Paths::join(folder.path, child.name);
    return below == path || below.starts_with(path + '/');
  });
  return row != children.end() ? static_cast<int>(row - children.begin()) : 0;
}

}  // namespace

Folders::Folders(const UiHost& host) : host_(host), content_(host) {
  connect(&host_.model, &AppModel::folderPathChanged, this, &Folders::update);
  connect(&host_.model.history(), &ScanHistory::snapshotChanged, this, &Folders::update);
  update();
}

void Folders::update() {
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  if (!snapshot) return content_.assign({});
  const Folder folder = findFolder(*snapshot, host_.model.folderPath());
  const auto titleOf = [&](const std::string& path) {
    return ShownText::plain(FolderText::title(path, snapshot->rootPath(), host_.home));
  };
  auto items = itemsOf(folder, host_);
  const Coverage& coverage = snapshot->coverage;
  std::ranges::move(leftOutItems(folder, *snapshot, host_), std::back_inserter(items));
  std::string text = items.empty() ? i18n("Nothing is in here.") : "";
  content_.assign(std::move(items), {.text = std::move(text)});
  const std::string before = std::exchange(path_, folder.path);
  parent_ = folder.parent;
  title_ = titleOf(folder.path);
  const bool isLowerBound = coverage.unread.isAtOrBelow(folder.path) ||
                            (coverage.unread.folders > 0 && folder.path == snapshot->rootPath());
  sizeText_ = ShownText::plain(FindingText::folderSize(folder.node->size, isLowerBound, host_.locale));
  parentTitle_ = parent_ ? titleOf(*parent_) : QString{};
  Q_EMIT changed();
  if (before != path_) Q_EMIT opened(rowTowards(before, folder));
}

void Folders::goBack() {
  if (parent_) host_.model.setFolderPath(parent_);
}

void Folders::reveal() const {
  if (!path_.empty()) host_.desktop.opener.reveal(Paths::logical(path_));
}

}  // namespace spacemint
