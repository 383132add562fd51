#include "Spacemint/views/ItemRows.h"

#include "Spacemint/views/Icons.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace spacemint {

namespace {

bool looksLike(const ListItem& one, const ListItem& other) {
  const auto look = [](const ListItem& item) {
    return std::tie(item.path, item.size, item.isDirectory, item.title, item.subtitle, item.sizeText,
                    item.symbol, item.fraction, item.change, item.hasShrunk, item.tag, item.depth,
                    item.isUnfolded, item.showsChevron, item.canTrash, item.buttonTitle, item.busyTitle);
  };
  return look(one) == look(other);
}

// Whether the title is the name or the path of the item. Every other title is a sentence.
bool isNamed(const ListItem& item) {
  return !item.path.empty() &&
         (item.title.empty() || item.title.find(Paths::lastComponent(item.path)) != std::string::npos);
}

// Marks a longest rising subsequence. The rows in it stay; all other rows are removed or inserted around
// them. An absent number is in no subsequence.
std::vector<bool> longestRise(const std::vector<std::optional<std::size_t>>& numbers) {
  constexpr auto none = static_cast<std::size_t>(-1);
  std::vector<std::size_t> tails;  // for each length: the index of the lowest last number
  std::vector<std::size_t> before(numbers.size(), none);
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    if (!numbers[at]) continue;
    const auto tail =
        std::ranges::lower_bound(tails, *numbers[at], {}, [&](std::size_t place) { return *numbers[place]; });
    if (tail != tails.begin()) before[at] = *(tail - 1);
    if (tail == tails.end()) {
      tails.push_back(at);
    } else {
      *tail = at;
    }
  }
  std::vector<bool> isInRun(numbers.size());
  for (std::size_t at = tails.empty() ? none : tails.back(); at != none; at = before[at]) isInRun[at] = true;
  return isInRun;
}

bool isBelowOneOf(const std::set<std::string_view>& paths, std::string_view path) {
  for (std::size_t end = path.rfind('/'); end != std::string_view::npos && end > 0;
       end = path.rfind('/', end - 1)) {
    if (paths.contains(path.substr(0, end))) return true;
  }
  return false;
}

}  // namespace

// The new rows, and the index that each had before.
struct ItemRows::Plan {
  std::vector<Entry> entries;
  std::vector<std::optional<std::size_t>> from;
  std::vector<bool> stays;
};

ItemRows::ItemRows(const UiHost& host, QObject* parent) : QAbstractListModel(parent), host_(host) {
  // A view gets nested ItemRows through PartsRole; without this the JS engine would delete them.
  QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
  connect(&host_.model.cleanups(), &Cleanups::runningChanged, this, &ItemRows::announceBusy);
  connect(&host_.model.shown(), &ShownScan::sourceChanged, this, &ItemRows::announceSource);
}

ItemRows::~ItemRows() = default;

int ItemRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> ItemRows::roleNames() const {
  return {{RowIdRole, "rowId"},
          {TitleRole, "title"},
          {SubtitleRole, "subtitle"},
          {SizeTextRole, "sizeText"},
          {SymbolRole, "symbol"},
          {FractionRole, "fraction"},
          {ChangeRole, "change"},
          {TagRole, "tag"},
          {HasShrunkRole, "hasShrunk"},
          {DepthRole, "depth"},
          {UnfoldsRole, "unfolds"},
          {IsUnfoldedRole, "isUnfolded"},
          {HasPathRole, "hasPath"},
          {IsNamedRole, "isNamed"},
          {ShowsChevronRole, "showsChevron"},
          {CanTrashRole, "canTrash"},
          {IsInTrashRole, "isInTrash"},
          {ButtonTitleRole, "buttonTitle"},
          {BusyTitleRole, "busyTitle"},
          {IsBusyRole, "isBusy"},
          {IsMarkedRole, "isMarked"},
          {PartsRole, "parts"}};
}

QVariant ItemRows::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const Entry& entry = entries_[static_cast<std::size_t>(index.row())];
  const ListItem& item = entry.item;
  switch (role) {
    case RowIdRole:
      return entry.id;
    case FractionRole:
      return item.fraction.value_or(-1);
    case HasShrunkRole:
      return item.hasShrunk;
    case DepthRole:
      return item.depth;
    case UnfoldsRole:
      return item.isUnfolded.has_value();
    case IsUnfoldedRole:
      return item.isUnfolded.value_or(false);
    case HasPathRole:
      return !item.path.empty();
    case IsNamedRole:
      return isNamed(item);
    case ShowsChevronRole:
      return item.showsChevron;
    case CanTrashRole:
      return canTrash(item);
    case IsInTrashRole:
      return item.canTrash && isInTrash(item);
    case IsBusyRole:
      return isBusy(item);
    case IsMarkedRole:
      return marked_.contains(entry.id);
    case PartsRole:
      return QVariant::fromValue(entry.parts.get());
    default:
      return text(item, role);
  }
}

// Made on demand: a list may be long, and a view shows little of it.
QVariant ItemRows::text(const ListItem& item, int role) const {
  using namespace ShownText;
  switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
      return onOneLine(item.title.empty() ? plain(Paths::lastComponent(item.path)) : sentence(item.title));
    case SubtitleRole:
      return onOneLine(sentence(item.subtitle));
    case SizeTextRole:
      return plain(item.sizeText ? *item.sizeText : ByteFormat::string(item.size, host_.locale));
    case SymbolRole:
      return plain(item.symbol.empty() ? Icons::symbol(Paths::lastComponent(item.path), item.isDirectory)
                                       : item.symbol);
    case ChangeRole:
      return plain(item.change);
    case TagRole:
      return plain(item.tag);
    case ButtonTitleRole:
      return plain(item.buttonTitle);
    case BusyTitleRole:
      return plain(item.busyTitle);
    default:
      return {};
  }
}

// The guard is asked for what `remove` would do: what it refuses is not offered.
bool ItemRows::canTrash(const ListItem& item) const {
  return item.canTrash && host_.mayRemove(item.path, !isInTrash(item));
}

void ItemRows::assign(std::vector<ListItem> items, const ListStatus& status) {
  const std::size_t countBefore = entries_.size();
  Plan plan = planFor(std::move(items));
  const auto staying = static_cast<std::size_t>(std::ranges::count(plan.stays, true));
  if (staying * 2 < std::max(countBefore, plan.entries.size())) {
    beginResetModel();
    entries_ = std::move(plan.entries);
    endResetModel();
  } else {
    removeOthers(plan);
    insertOthers(plan);
  }
  if (entries_.size() != countBefore) Q_EMIT countChanged();
  // The marks of rows that are gone.
  if (!marked_.empty()) setMarked(marked_);
  setStatus(status);
}

void ItemRows::setStatus(const ListStatus& status) {
  const bool hasChevrons = std::ranges::any_of(entries_, [](const Entry& entry) {
    return entry.item.showsChevron || entry.item.isUnfolded || (entry.parts && entry.parts->count() > 0);
  });
  const auto before = std::tuple{hasChevrons_, text_, isWaiting_, isShown_};
  hasChevrons_ = hasChevrons;
  text_ = ShownText::sentence(status.text);
  isWaiting_ = status.isWaiting;
  isShown_ = status.isShown;
  if (before != std::tie(hasChevrons_, text_, isWaiting_, isShown_)) Q_EMIT statusChanged();
}

// An item that is in the list already keeps its row id and the rows of its parts.
ItemRows::Plan ItemRows::planFor(std::vector<ListItem> items) {
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < entries_.size(); ++i) places.emplace(entries_[i].item.id, i);
  Plan plan;
  for (ListItem& item : items) {
    const auto known = places.find(item.id);
    Entry entry;
    if (known != places.end()) {
      plan.from.emplace_back(known->second);
      entry.id = entries_[known->second].id;
      entry.parts = std::move(entries_[known->second].parts);
      places.erase(known);
    } else {
      plan.from.emplace_back();
      entry.id = ++lastId_;
    }
    if (!entry.parts && !item.parts.empty()) entry.parts = std::make_unique<ItemRows>(host_);
    if (entry.parts) entry.parts->assign(std::exchange(item.parts, {}));
    entry.item = std::move(item);
    plan.entries.push_back(std::move(entry));
  }
  plan.stays = longestRise(plan.from);
  return plan;
}

void ItemRows::removeOthers(const Plan& plan) {
  std::vector<bool> stays(entries_.size());
  for (std::size_t i = 0; i < plan.entries.size(); ++i) {
    if (plan.stays[i]) stays[*plan.from[i]] = true;
  }
  for (std::size_t end = entries_.size(); end > 0;) {
    std::size_t begin = end;
    while (begin > 0 && !stays[begin - 1]) --begin;
    if (begin != end) {
      beginRemoveRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
      entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(begin),
                     entries_.begin() + static_cast<std::ptrdiff_t>(end));
      endRemoveRows();
    }
    end = begin > 0 ? begin - 1 : 0;
  }
}

void ItemRows::insertOthers(Plan& plan) {
  for (std::size_t begin = 0; begin < plan.entries.size();) {
    if (plan.stays[begin]) {
      const bool isNew = !looksLike(entries_[begin].item, plan.entries[begin].item);
      entries_[begin] = std::move(plan.entries[begin]);
      if (isNew) Q_EMIT dataChanged(index(static_cast<int>(begin)), index(static_cast<int>(begin)));
      ++begin;
      continue;
    }
    std::size_t end = begin;
    while (end < plan.entries.size() && !plan.stays[end]) ++end;
    const auto at = static_cast<std::ptrdiff_t>(begin);
    beginInsertRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
    entries_.insert(entries_.begin() + at, std::make_move_iterator(plan.entries.begin() + at),
                    std::make_move_iterator(plan.entries.begin() + static_cast<std::ptrdiff_t>(end)));
    endInsertRows();
    begin = end;
  }
}

const ListItem* ItemRows::find(int rowId) const {
  const auto entry = std::ranges::find(entries_, rowId, &Entry::id);
  return entry != entries_.end() ? &entry->item : nullptr;
}

int ItemRows::indexOf(const std::string& itemId) const {
  const auto entry = std::ranges::find(entries_, itemId, [](const Entry& each) { return each.item.id; });
  return entry != entries_.end() ? static_cast<int>(entry - entries_.begin()) : -1;
}

int ItemRows::rowIdAt(int index) const {
  return index >= 0 && index < count() ? entries_[static_cast<std::size_t>(index)].id : -1;
}

void ItemRows::reveal(int rowId) const {
  const ListItem* item = find(rowId);
  if (item != nullptr && isOfHere()) host_.desktop.opener.reveal(Paths::logical(item->path));
}

void ItemRows::copyPath(int rowId) const {
  const ListItem* item = find(rowId);
  if (item == nullptr) return;
  QGuiApplication::clipboard()->setText(QString::fromStdString(Paths::logical(item->path)));
}

void ItemRows::showInFolders(int rowId) const {
  const ListItem* item = find(rowId);
  if (item == nullptr || item->path.empty()) return;
  host_.model.setFolderPath(item->isDirectory ? item->path : Paths::parent(item->path));
  host_.model.setTab(Tab::folders);
}

// What lies in another marked item counts with that one only.
QString ItemRows::markedText() const {
  std::set<std::string_view> paths;
  for (const Entry& entry : entries_) {
    if (marked_.contains(entry.id)) paths.insert(entry.item.path);
  }
  Bytes size = 0;
  for (const Entry& entry : entries_) {
    if (marked_.contains(entry.id) && !isBelowOneOf(paths, entry.item.path))
      size = saturatingAdd(size, entry.item.size);
  }
  return ShownText::sentence(i18np("1 selected · {size}", "{count} selected · {size}", markedCount(),
                                   {{"count", groupedNumber(markedCount(), host_.locale)},
                                    {"size", ByteFormat::string(size, host_.locale)}}));
}

void ItemRows::setMarked(std::set<int> rowIds) {
  std::set<int> possible;
  for (const Entry& entry : entries_) {
    if (isOfHere() && entry.item.canTrash && rowIds.contains(entry.id)) possible.insert(entry.id);
  }
  const bool isNew = possible != std::exchange(marked_, possible);
  if (isNew && !entries_.empty()) Q_EMIT dataChanged(index(0), index(count() - 1), {IsMarkedRole});
  Q_EMIT markedChanged();
}

void ItemRows::toggleMark(int rowId) {
  std::set<int> rowIds = marked_;
  if (rowIds.erase(rowId) == 0) rowIds.insert(rowId);
  markedFrom_ = rowId;
  setMarked(std::move(rowIds));
}

void ItemRows::markTo(int rowId) {
  const auto place = [&](int id) { return std::ranges::find(entries_, id, &Entry::id); };
  if (place(markedFrom_) == entries_.end()) markedFrom_ = rowId;
  auto first = place(markedFrom_);
  auto last = place(rowId);
  if (last == entries_.end()) return;
  if (last < first) std::swap(first, last);
  std::set<int> rowIds;
  for (auto at = first; at != last + 1; ++at) rowIds.insert(at->id);
  setMarked(std::move(rowIds));
}

void ItemRows::markAll() {
  std::set<int> rowIds;
  for (const Entry& entry : entries_) rowIds.insert(entry.id);
  setMarked(std::move(rowIds));
}

void ItemRows::unmarkAll(int rowId) {
  markedFrom_ = rowId;
  if (!marked_.empty()) setMarked({});
}

void ItemRows::removeMarked() const {
  SeveralRequest request;
  for (const Entry& entry : entries_) {
    const ListItem& item = entry.item;
    if (!marked_.contains(entry.id) || isBusy(item)) continue;
    if (isInTrash(item)) {
      request.items.emplace_back(
          DeleteRequest{item.path, Paths::lastComponent(item.path), item.size, i18n(deleteNote)});
    } else {
      request.items.emplace_back(TrashRequest{item.path, item.size});
    }
  }
  if (!request.items.empty()) host_.model.cleanups().ask(std::move(request));
}

// A marked row stands for all marked ones.
void ItemRows::remove(int rowId) const {
  if (marked_.contains(rowId) && marked_.size() > 1) return removeMarked();
  const ListItem* item = find(rowId);
  if (item == nullptr || !canTrash(*item)) return;
  if (isInTrash(*item)) {
    host_.model.cleanups().ask(
        DeleteRequest{item->path, Paths::lastComponent(item->path), item->size, i18n(deleteNote)});
  } else {
    host_.model.cleanups().ask(TrashRequest{item->path, item->size});
  }
}

void ItemRows::leaveOut(int rowId) const {
  const ListItem* item = find(rowId);
  if (item == nullptr || item->path.empty() || !isOfHere()) return;
  const std::string path = item->path;  // a copy: the list changes
  host_.model.leaveOut(path);
}

void ItemRows::pressButton(int rowId) const {
  const ListItem* item = find(rowId);
  if (item == nullptr || !item->onButton || isBusy(*item)) return;
  const auto action = item->onButton;  // a copy: the action may replace the list
  action();
}

void ItemRows::toggle(int rowId) const {
  const ListItem* item = find(rowId);
  if (item == nullptr || !item->onUnfold) return;
  const auto action = item->onUnfold;  // a copy: the action replaces the list
  action();
}

void ItemRows::announceBusy() {
  if (!entries_.empty()) Q_EMIT dataChanged(index(0), index(count() - 1), {IsBusyRole});
}

void ItemRows::announceSource() {
  unmarkAll();
  if (!entries_.empty()) Q_EMIT dataChanged(index(0), index(count() - 1), {CanTrashRole});
  Q_EMIT statusChanged();
}

}  // namespace spacemint
