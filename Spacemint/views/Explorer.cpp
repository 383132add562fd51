#include "Spacemint/views/Explorer.h"

#include "Spacemint/views/DateText.h"
#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/NotInFiles.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"
#include "core/wording/PictureText.h"

#include <algorithm>
#include <functional>

namespace spacemint {

namespace {

constexpr std::size_t shortestQuery = 2;
constexpr std::size_t hitsShown = 200;

std::vector<const Node*> inOrder(const Node& folder, ItemOrder order) {
  std::vector<const Node*> items;
  for (const Node& child : folder.children) items.push_back(&child);
  if (order == ItemOrder::byCount)
    std::ranges::stable_sort(items, std::greater{}, [](const Node* item) { return filesIn(*item); });
  return items;
}

}  // namespace

Explorer::Explorer(const UiHost& host) : host_(host), rows_(host) {
  AppModel& model = host_.model;
  connect(&model, &AppModel::folderPathChanged, this, &Explorer::update);
  connect(&model, &AppModel::fileSearchChanged, this, [this] {
    search();
    updateRows();
    Q_EMIT changed();
  });
  connect(&model.shown(), &ShownScan::snapshotChanged, this, &Explorer::update);
  connect(&model.shown(), &ShownScan::findingsChanged, this, &Explorer::update);
  connect(&model.account(), &CurrentAccount::changed, this, [this] {
    updateRows();
    Q_EMIT changed();
  });
  update();
}

void Explorer::update() {
  const SharedSnapshot before = folder_.snapshot;
  folder_ = shownFolder(host_.model);
  pointed_.clear();
  pointedTile_.reset();
  if (before != folder_.snapshot) search();
  if (!selected_.empty() && folder_.node != nullptr && !pathBelow(selected_, folder_.path)) selected_.clear();
  updateRows();
  updateAbout();
  Q_EMIT changed();
  Q_EMIT pointedChanged();
}

// Texts

QString Explorer::titleOf(const std::string& path) const {
  if (!folder_.snapshot) return {};
  return ShownText::onOneLine(
      ShownText::plain(FolderText::title(path, folder_.snapshot->rootPath(), host_.homeInScan())));
}

QStringList Explorer::crumbs() const {
  QStringList crumbs;
  if (folder_.node == nullptr) return crumbs;
  for (ShownFolder at = folder_;; at = folderAt(host_.model, at.parent)) {
    crumbs.prepend(titleOf(at.path));
    if (!at.parent) return crumbs;
  }
}

QString Explorer::sizeText() const {
  if (folder_.node == nullptr) return {};
  return ShownText::plain(FindingText::folderSize(
      folder_.node->size, isLowerBound(*folder_.snapshot, folder_.path), host_.locale));
}

QString Explorer::mapName() const {
  return ShownText::sentence(PictureText::mapOf(title().toStdString()));
}

QString Explorer::summary() const {
  return folder_.node != nullptr
             ? ShownText::onOneLine(ShownText::sentence(PictureText::summary(*folder_.node, host_.locale)))
             : QString{};
}

QStringList Explorer::colourings() const {
  return {ShownText::plain(PictureText::growth()), ShownText::plain(PictureText::age())};
}

void Explorer::setColouring(Colouring colouring) {
  if (colouring == colouring_) return;
  colouring_ = colouring;
  updateRows();
  Q_EMIT changed();
}

void Explorer::setOrder(int order) {
  order_ = order == 0 ? ItemOrder::bySize : ItemOrder::byCount;
  updateRows();
  Q_EMIT changed();
}

void Explorer::setListWidth(qreal width) {
  if (std::exchange(listWidth_, width) != width) Q_EMIT listWidthChanged();
}

QString Explorer::legend() const {
  if (!host_.model.shown().isOfHere()) return {};
  const auto& baseline = host_.model.history().baselineEntry();
  if (!canCompare() || !baseline) return ShownText::plain(PictureText::nothingCame());
  return ShownText::sentence(
      PictureText::cameSince(DateText::moment(baseline->date, host_.locale).toStdString()));
}

QString Explorer::shrankLegend() const {
  return canCompare() ? ShownText::plain(PictureText::shrank()) : QString{};
}

QStringList Explorer::ages() const {
  QStringList ages;
  for (const std::string& age : PictureText::ages()) ages << ShownText::plain(age);
  return ages;
}

QString Explorer::nameOf(const Tile& tile) const {
  if (tile.node == nullptr || tile.kind == Tile::Kind::files)
    return ShownText::plain(PictureText::partName(tile));
  if (tile.node == folder_.node) return title();
  return ShownText::onOneLine(ShownText::plain(tile.node->name));
}

QString Explorer::spoken(const Tile& tile) const {
  return nameOf(tile) + QStringLiteral(", ") +
         ShownText::sentence(PictureText::spoken(tile, folder_.node->size, host_.locale));
}

// The open folder

void Explorer::open(const std::string& path) {
  const ShownFolder target = folderAt(host_.model, path);
  if (target.node == nullptr || target.path != path) return;
  host_.model.setFolderPath(path);
}

void Explorer::openCrumb(int index) {
  ShownFolder at = folder_;
  for (int above = static_cast<int>(crumbs().size()) - 1; above > index && at.parent; --above)
    at = folderAt(host_.model, at.parent);
  if (at.node != nullptr) host_.model.setFolderPath(at.path);
}

void Explorer::goUp() {
  if (!folder_.parent) return;
  const std::string before = folder_.path;
  host_.model.setFolderPath(folder_.parent);
  select(before);
}

// The selection

void Explorer::select(const std::string& path) {
  if (selected_ == path) return;
  selected_ = path;
  if (const auto below = pathBelow(path, folder_.path); below && !isSearching_) {
    bool isNew = false;
    for (std::size_t end = below->find('/'); end != std::string_view::npos; end = below->find('/', end + 1))
      isNew |= unfolded_.insert(Paths::join(folder_.path, std::string{below->substr(0, end)})).second;
    if (isNew) updateRows();
  }
  updateAbout();
  Q_EMIT selectionChanged();
}

void Explorer::selectRow(int index) {
  if (const ListItem* item = rows_.itemOf(rows_.rowIdAt(index))) select(item->id);
}

void Explorer::openRow(int index) {
  const ListItem* item = rows_.itemOf(rows_.rowIdAt(index));
  if (item == nullptr) return;
  if (item->path.empty() && item->isUnfolded) return toggle(std::string{item->id});
  if (item->isDirectory && !item->path.empty()) open(std::string{item->path});
}

void Explorer::turnRow(int index, bool isUnfolded) {
  const ListItem* item = rows_.itemOf(rows_.rowIdAt(index));
  if (item == nullptr) return;
  if (item->isUnfolded && *item->isUnfolded != isUnfolded) {
    toggle(std::string{item->id});
  } else if (!isUnfolded && item->depth > 0) {
    // A row without a path is named after the one that it is a part of.
    select(Paths::parent(item->path.empty() ? item->id : item->path));
  } else if (isUnfolded && item->isUnfolded) {
    selectRow(index + 1);
  }
}

// What is under the pointer

void Explorer::point(const std::string& path, const Tile* tile) {
  pointed_ = path;
  pointedTile_ = tile != nullptr ? std::optional{*tile} : std::nullopt;
  updateAbout();
  Q_EMIT pointedChanged();
}

void Explorer::pointRow(ItemRows* rows, int index) {
  const ListItem* item = rows != nullptr ? rows->itemOf(rows->rowIdAt(index)) : nullptr;
  const std::string path = item != nullptr ? item->path : "";
  if (path == pointed_) return;
  const auto tile = tileOfPath(path);
  point(path, tile ? &*tile : nullptr);
}

int Explorer::pointedChild() const {
  const auto below = folder_.node != nullptr ? pathBelow(pointed_, folder_.path) : std::nullopt;
  if (!below) return -1;
  const auto& children = folder_.node->children;
  const auto child = std::ranges::find(children, below->substr(0, below->find('/')), &Node::name);
  return child != children.end() ? static_cast<int>(child - children.begin()) : -1;
}

// A tile without a place, for the texts about the item at the path.
std::optional<Tile> Explorer::tileOfPath(const std::string& path) const {
  if (!folder_.snapshot || path.empty()) return std::nullopt;
  const Node* node = folder_.snapshot->nodeAt(path);
  if (node == nullptr) return std::nullopt;
  const ChangeTree* change = folder_.changes.get();
  if (const auto names = folder_.snapshot->components(path)) {
    for (const std::string& name : *names) change = change != nullptr ? change->child(name) : nullptr;
  }
  const auto below = pathBelow(path, folder_.path);
  const int depth = below && !below->empty() ? 1 + static_cast<int>(std::ranges::count(*below, '/')) : 0;
  return Tile{.box = {}, .node = node, .change = change, .size = node->size, .depth = depth};
}

void Explorer::updateAbout() {
  const auto tile = pointedTile_ ? pointedTile_ : tileOfPath(selected_);
  aboutName_ = tile ? nameOf(*tile) : QString{};
  const bool hasShare =
      tile && folder_.node != nullptr &&
      std::ranges::any_of(folder_.node->children, [&](const Node& child) { return &child == tile->node; });
  const auto detail = [&](const std::string& folder) {
    return tile ? ShownText::onOneLine(ShownText::sentence(
                      PictureText::about(*tile, folder_.node->size, folder, host_.locale)))
                : QString{};
  };
  aboutDetail_ = detail(hasShare ? title().toStdString() : "");
  aboutBriefly_ = detail("");
  Q_EMIT aboutChanged();
}

// The rows

void Explorer::setShowsRows(bool isShown) {
  if (isShown == showsRows_) return;
  showsRows_ = isShown;
  search();
  updateRows();
  Q_EMIT rowsShownChanged();
}

void Explorer::toggle(const std::string& path) {
  if (unfolded_.erase(path) == 0) unfolded_.insert(path);
  updateRows();
}

std::string Explorer::changeColumn(const Node& node, const ChangeTree* change) const {
  if (colouring() == Colouring::Growth)
    return PictureText::change(change != nullptr ? change->delta : 0, host_.locale);
  const auto newest = newestChange(node);
  return newest ? DateText::month(*newest).toStdString() : "";
}

ListItem Explorer::itemOf(const Node& node, const ChangeTree* change, const std::string& path, int depth) {
  ListItem item{.id = path,
                .path = path,
                .size = node.size,
                .isDirectory = node.isDirectory,
                .sizeText = rowSize(*folder_.snapshot, node, host_.locale),
                .change = changeColumn(node, change),
                .hasShrunk = change != nullptr && change->delta < 0,
                .depth = depth,
                .canTrash = true};
  if (depth == 0) item.fraction = ShownText::share(node.size, folder_.node->size);
  return item;
}

void Explorer::addRows(const PicturedFolder& folder, const std::string& path, int depth,
                       std::vector<ListItem>& items) {
  for (const Node* each : inOrder(*folder.node, order_)) {
    const Node& child = *each;
    const std::string childPath = Paths::join(path, child.name);
    const ChangeTree* change = folder.change != nullptr ? folder.change->child(child.name) : nullptr;
    ListItem item = itemOf(child, change, childPath, depth);
    if (order_ == ItemOrder::byCount) {
      item.sizeText = countText(filesIn(child), host_.locale);
      if (depth == 0) item.fraction = ShownText::share(filesIn(child), folder_.node->fileCount);
    }
    const bool isUnfolded = unfolded_.contains(childPath);
    if (!child.children.empty()) {
      item.isUnfolded = isUnfolded;
      item.onUnfold = [this, childPath] { toggle(childPath); };
    }
    items.push_back(std::move(item));
    if (isUnfolded) addRows({&child, change}, childPath, depth + 1, items);
  }
  if (const Bytes rest = folder.node->unlistedSize(); rest > 0) {
    items.push_back({.id = path + "/.",
                     .size = rest,
                     .title = FolderText::smallItems(!folder.node->children.empty(),
                                                     folder_.snapshot->minNodeSize, host_.locale),
                     .symbol = "doc",
                     .depth = depth});
    if (order_ == ItemOrder::byCount)
      items.back().sizeText = countText(unlistedFiles(*folder.node), host_.locale);
  }
}

std::vector<ListItem> Explorer::foundItems() {
  std::vector<ListItem> items;
  if (!hits_) return items;
  for (const auto& [path, node] : hits_->shown) {
    const auto tile = tileOfPath(path);
    ListItem item = itemOf(*node, tile ? tile->change : nullptr, path, 0);
    item.fraction.reset();
    item.subtitle = FolderText::place(path, host_);
    items.push_back(std::move(item));
  }
  return items;
}

void Explorer::updateRows() {
  // The rows of before stay until the search has ended.
  if (isSearching_ && mistake_.empty() && !hits_) return;
  std::vector<ListItem> items;
  std::string text;
  if (showsRows_ && folder_.node != nullptr) {
    if (isSearching_) {
      items = foundItems();
      if (!mistake_.empty()) {
        text = mistake_;
      } else if (items.empty()) {
        text = FindingText::nothingFound(folder_.snapshot->minNodeSize, host_.locale);
      }
    } else {
      addRows(folder_.pictured(), folder_.path, 0, items);
      addLeftOut(items, host_, folder_);
      const std::string id{notInFilesId};
      addNotInFiles(items, host_, folder_, unfolded_.contains(id), [this, id] { toggle(id); });
      if (items.empty()) text = i18n("Nothing is in here.");
    }
  }
  rows_.assign(std::move(items), {.text = std::move(text)});
  Q_EMIT selectionChanged();
}

// The search, with the words of the tab of files

void Explorer::search() {
  ++searches_;
  mistake_.clear();
  const std::string words = QString::fromStdString(host_.model.fileSearch()).trimmed().toStdString();
  const auto query = parseSearch(words);
  isSearching_ = showsRows_ && folder_.snapshot && query != SearchQuery{} && words.size() >= shortestQuery;
  if (!query) mistake_ = query.error().message;
  // The hits of the last words stay until the new ones are there.
  if (!isSearching_ || !query || (hits_ && hits_->scan != folder_.snapshot)) hits_.reset();
  if (!isSearching_ || !query) return;
  const auto look = [scan = folder_.snapshot, query = *query, now = now()] {
    const FileKinds& kinds = FileKinds::ofThisSystem();
    return Hits{.scan = scan,
                .query = query,
                .shown = spacemint::search(*scan, query, kinds, now, hitsShown),
                .folders = foldersWithHits(*scan, query, kinds, now)};
  };
  host_.desktop.tasks.run(Tasks::Priority::userInitiated, this, look, [this, number = searches_](Hits hits) {
    if (number != searches_) return;
    hits_ = std::move(hits);
    updateRows();
    Q_EMIT changed();
  });
}

bool Explorer::isFound(const Node& node) const {
  if (!hits_) return mistake_.empty();
  return hits_->folders.contains(&node) || finds(hits_->query, node, FileKinds::ofThisSystem(), now());
}

}  // namespace spacemint
