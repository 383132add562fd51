#include "Spacemint/views/Folders.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/NotInFiles.h"
#include "Spacemint/views/ShownFolder.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "core/wording/PictureText.h"

#include <algorithm>
#include <utility>

namespace spacemint {

namespace {

std::vector<ListItem> itemsOf(const ShownFolder& folder, const UiHost& host) {
  std::vector<ListItem> items;
  items.reserve(folder.node->children.size() + 1);
  for (const Node& child : folder.node->children) {
    std::string path = Paths::join(folder.path, child.name);
    const ChangeTree* change = folder.change != nullptr ? folder.change->child(child.name) : nullptr;
    const Bytes delta = change != nullptr ? change->delta : 0;
    items.push_back({.id = path,
                     .path = std::move(path),
                     .size = child.size,
                     .isDirectory = child.isDirectory,
                     .sizeText = rowSize(*folder.snapshot, child, host.locale),
                     .fraction = ShownText::share(child.size, folder.node->size),
                     .change = PictureText::change(delta, host.locale),
                     .hasShrunk = delta < 0,
                     .showsChevron = child.isDirectory,
                     .canTrash = true});
  }
  if (const Bytes rest = folder.node->unlistedSize(); rest > 0) {
    items.push_back(
        {.id = "",
         .size = rest,
         .title = FolderText::smallItems(!items.empty(), folder.snapshot->minNodeSize, host.locale),
         .symbol = "doc",
         .fraction = ShownText::share(rest, folder.node->size)});
  }
  return items;
}

// Shows numbers of files in place of sizes, and sorts by them.
void showCounts(std::vector<ListItem>& items, const ShownFolder& folder, const std::string& locale) {
  const auto& children = folder.node->children;
  std::vector<std::int64_t> counts;
  for (const Node& child : children) counts.push_back(filesIn(child));
  if (items.size() > children.size()) counts.push_back(unlistedFiles(*folder.node));
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i].sizeText = countText(counts[i], locale);
    items[i].fraction = ShownText::share(counts[i], folder.node->fileCount);
  }
  // The row for small items stays the last one.
  const auto end = items.begin() + std::ssize(children);
  std::stable_sort(items.begin(), end,
                   [](const ListItem& a, const ListItem& b) { return a.fraction > b.fraction; });
}

// The index of the child that is `below` or leads to it; 0 if there is none.
int rowTowards(const std::string& below, const ShownFolder& folder) {
  const auto rest = pathBelow(below, folder.path);
  if (!rest) return 0;
  const auto& children = folder.node->children;
  const auto row = std::ranges::find(children, rest->substr(0, rest->find('/')), &Node::name);
  return row != children.end() ? static_cast<int>(row - children.begin()) : 0;
}

}  // namespace

Folders::Folders(const UiHost& host) : host_(host), content_(host) {
  connect(&host_.model, &AppModel::folderPathChanged, this, &Folders::update);
  connect(&host_.model.shown(), &ShownScan::snapshotChanged, this, &Folders::update);
  connect(&host_.model.shown(), &ShownScan::findingsChanged, this, &Folders::update);
  connect(&host_.model.account(), &CurrentAccount::changed, this, &Folders::update);
  update();
}

void Folders::update() {
  const ShownFolder folder = shownFolder(host_.model);
  const SharedSnapshot& snapshot = folder.snapshot;
  if (!snapshot) return content_.assign({});
  const auto titleOf = [&](const std::string& path) {
    return ShownText::plain(FolderText::title(path, snapshot->rootPath(), host_.homeInScan()));
  };
  auto items = itemsOf(folder, host_);
  if (order_ == ItemOrder::byCount) showCounts(items, folder, host_.locale);
  addLeftOut(items, host_, folder);
  addNotInFiles(items, host_, folder, isAccountUnfolded_, [this] {
    isAccountUnfolded_ = !isAccountUnfolded_;
    update();
  });
  std::string text = items.empty() ? i18n("Nothing is in here.") : "";
  content_.assign(std::move(items), {.text = std::move(text)});
  const std::string before = std::exchange(path_, folder.path);
  parent_ = folder.parent;
  title_ = titleOf(folder.path);
  sizeText_ = ShownText::plain(
      FindingText::folderSize(folder.node->size, isLowerBound(*snapshot, folder.path), host_.locale));
  parentTitle_ = parent_ ? titleOf(*parent_) : QString{};
  Q_EMIT changed();
  if (before != path_) Q_EMIT opened(rowTowards(before, folder));
}

QStringList Folders::orders() {
  return {ShownText::plain(i18nc("order of a list", "Size")),
          ShownText::plain(i18nc("order of a list", "Files"))};
}

void Folders::setOrder(int order) {
  order_ = order == 0 ? ItemOrder::bySize : ItemOrder::byCount;
  update();
}

int Folders::rowOf(int child) const {
  const Node* node = shownFolder(host_.model).node;
  if (node == nullptr || child < 0 || child >= std::ssize(node->children)) return -1;
  return content_.indexOf(Paths::join(path_, node->children[static_cast<std::size_t>(child)].name));
}

int Folders::unfoldNotInFiles() {
  isAccountUnfolded_ = true;
  update();
  return content_.indexOf(std::string{notInFilesId});
}

void Folders::goBack() {
  if (parent_) host_.model.setFolderPath(parent_);
}

void Folders::reveal() const {
  if (!path_.empty()) host_.desktop.opener.reveal(Paths::logical(path_));
}

}  // namespace spacemint
