#include "Spacemint/views/ItemRows.h"

#include "Spacemint/views/Icons.h"
#include "core/base/ByteFormat.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace spacemint {

namespace {

QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// On one line, and in the order in which it is written: names of files may hold what would break a line, or
// turn the rest of it around.
QString onOneLine(std::string_view name) {
  QString text = toQString(name);
  for (QChar& c : text) {
    const auto kind = c.category();
    const bool isEmbedding = (c >= u'\u202A' && c <= u'\u202E') || (c >= u'\u2066' && c <= u'\u2069');
    const bool isBreak = kind == QChar::Separator_Line || kind == QChar::Separator_Paragraph;
    if (kind == QChar::Other_Control || isBreak || isEmbedding) c = QChar::ReplacementCharacter;
  }
  return text;
}

// A path begins at the left also where its names do not.
QString leftToRight(QString path) {
  constexpr QChar mark{0x200E};
  return path.isRightToLeft() ? path.prepend(mark) : path;
}

// Places of a longest run of rising numbers: what may stay where it is while all else moves around it. What
// is absent is in no run.
std::vector<bool> longestRise(const std::vector<std::optional<std::size_t>>& numbers) {
  constexpr auto none = static_cast<std::size_t>(-1);
  std::vector<std::size_t> tails;  // place of the lowest last number of a run of each length
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

}  // namespace

// The rows to come, and where each was until now.
struct ItemRows::Plan {
  std::vector<Entry> entries;
  std::vector<std::optional<std::size_t>> from;
  std::vector<bool> stays;
};

ItemRows::ItemRows(const ItemActions& actions, QObject* parent)
    : QAbstractListModel(parent),
      actions_(actions) {
  // Views hold rows of rows, which are no garbage of theirs.
  QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
  connect(&actions.host().model.cleanups(), &Cleanups::runningChanged, this, &ItemRows::tellBusy);
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
          {HasPathRole, "hasPath"},
          {IsDirectoryRole, "isDirectory"},
          {ShowsChevronRole, "showsChevron"},
          {CanTrashRole, "canTrash"},
          {IsInTrashRole, "isInTrash"},
          {ButtonTitleRole, "buttonTitle"},
          {BusyTitleRole, "busyTitle"},
          {IsBusyRole, "isBusy"},
          {PartsRole, "parts"}};
}

QVariant ItemRows::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const Entry& entry = entries_[static_cast<std::size_t>(index.row())];
  const ItemRow& row = entry.row;
  switch (role) {
    case RowIdRole:
      return entry.id;
    case FractionRole:
      return row.fraction.value_or(-1);
    case HasPathRole:
      return !row.path.empty();
    case IsDirectoryRole:
      return row.isDirectory;
    case ShowsChevronRole:
      return row.showsChevron;
    case CanTrashRole:
      return row.canTrash;
    case IsInTrashRole:
      return row.canTrash && actions_.isInTrash(row);
    case IsBusyRole:
      return actions_.isBusy(row);
    case PartsRole:
      return QVariant::fromValue(entry.parts.get());
    default:
      return text(row, role);
  }
}

// Made when it is shown: a list may be long, and little of it is seen.
QVariant ItemRows::text(const ItemRow& row, int role) const {
  switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
      return onOneLine(row.title.empty() ? Paths::lastComponent(row.path) : row.title);
    case SubtitleRole:
      return leftToRight(onOneLine(row.subtitle));
    case SizeTextRole:
      return toQString(row.sizeText.empty() ? ByteFormat::string(row.size, actions_.host().locale)
                                            : row.sizeText);
    case SymbolRole:
      return toQString(row.symbol.empty() ? Icons::symbol(Paths::lastComponent(row.path), row.isDirectory)
                                          : row.symbol);
    case ButtonTitleRole:
      return toQString(row.buttonTitle);
    case BusyTitleRole:
      return toQString(row.busyTitle);
    default:
      return {};
  }
}

void ItemRows::assign(std::vector<ItemRow> rows) {
  const std::size_t countBefore = entries_.size();
  Plan plan = planFor(std::move(rows));
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
}

// What is known by its id comes along, with the rows below it.
ItemRows::Plan ItemRows::planFor(std::vector<ItemRow> rows) {
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < entries_.size(); ++i) places.emplace(entries_[i].row.id, i);
  Plan plan;
  for (ItemRow& row : rows) {
    const auto known = places.find(row.id);
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
    if (!entry.parts && !row.parts.empty()) entry.parts = std::make_unique<ItemRows>(actions_);
    if (entry.parts) entry.parts->assign(std::exchange(row.parts, {}));
    entry.row = std::move(row);
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
      const bool isNew = !entries_[begin].row.looksLike(plan.entries[begin].row);
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

const ItemRow* ItemRows::find(int rowId) const {
  const auto entry = std::ranges::find(entries_, rowId, &Entry::id);
  return entry != entries_.end() ? &entry->row : nullptr;
}

void ItemRows::reveal(int rowId) const {
  if (const ItemRow* row = find(rowId)) actions_.reveal(row->path);
}

void ItemRows::copyPath(int rowId) const {
  if (const ItemRow* row = find(rowId)) actions_.copyPath(row->path);
}

void ItemRows::showInFolders(int rowId) const {
  // The list that the row is in may become another one by it.
  if (const ItemRow* row = find(rowId)) actions_.showInFolders(ItemRow{*row});
}

void ItemRows::remove(int rowId) const {
  if (const ItemRow* row = find(rowId)) actions_.remove(*row);
}

void ItemRows::pressButton(int rowId) const {
  const ItemRow* row = find(rowId);
  if (row == nullptr || !row->onButton || actions_.isBusy(*row)) return;
  const auto action = row->onButton;  // it may change the list
  action();
}

void ItemRows::tellBusy() {
  if (!entries_.empty()) Q_EMIT dataChanged(index(0), index(count() - 1), {IsBusyRole});
}

}  // namespace spacemint
