#include "spacemintctl/browse/Rows.h"

#include "core/base/AsciiText.h"
#include "core/base/NumericOrder.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>

namespace spacemint::ctl {

namespace {

using NodesByName = std::unordered_map<std::string_view, const Node*>;

NodesByName byName(const Node* folder) {
  NodesByName nodes;
  if (folder == nullptr) return nodes;
  nodes.reserve(folder->children.size());
  for (const Node& child : folder->children) nodes.emplace(child.name, &child);
  return nodes;
}

Row rowOf(const Node& node, const std::string& folder) {
  return {.path = Paths::join(folder, node.name),
          .name = node.name,
          .size = node.size,
          .fileCount = node.isDirectory ? node.fileCount : 1,
          .modified = node.modified,
          .isDirectory = node.isDirectory};
}

// An item without a node in the earlier scan is new if it is large enough for one now; of a smaller one the
// size at that time is not known.
void compare(Row& row, const NodesByName& before, Bytes minimum) {
  const auto found = before.find(row.name);
  if (found != before.end()) {
    row.growth = saturatingSubtract(row.size, found->second->size);
  } else if (row.size >= minimum) {
    row.growth = row.size;
    row.isNew = true;
  }
}

std::optional<Date> laterOf(std::optional<Date> a, std::optional<Date> b) {
  return a && b ? std::max(a, b) : a ? a : b;
}

// The newest file below a folder that has a node.
std::optional<Date> newestBelow(const Node& folder) {
  std::optional<Date> found;
  for (const Node& child : folder.children)
    found = laterOf(found, child.isDirectory ? newestBelow(child) : child.modified);
  return found;
}

std::optional<Date> newestIn(const Row& folder, const NodesByName& scanned) {
  const std::optional<Date> own = folder.look ? folder.look->modified : std::nullopt;
  const auto node = scanned.find(folder.name);
  return node == scanned.end() ? own : laterOf(own, newestBelow(*node->second));
}

using FlagsByName = std::map<std::string_view, Flag>;

// The items of the folder that could not be read, or that hold something that could not be read.
FlagsByName unreadIn(const RowSource& source) {
  FlagsByName flags;
  if (source.coverage == nullptr) return flags;
  const std::size_t start = Paths::join(source.path, "").size();
  for (const std::string& path : source.coverage->unread.paths) {
    if (path.size() <= start || !isAtOrBelow(path, source.path)) continue;
    const std::string_view rest = std::string_view{path}.substr(start);
    const std::size_t end = rest.find('/');
    Flag& flag = flags.try_emplace(rest.substr(0, end), Flag::unreadBelow).first->second;
    if (end == std::string_view::npos) flag = Flag::unread;
  }
  return flags;
}

// `isComplete`: nothing in the folder is unknown.
Flag flagOf(const Row& row, const FlagsByName& unread, bool isComplete) {
  if (const auto found = unread.find(row.name); found != unread.end()) return found->second;
  if (row.isDirectory) return isComplete && row.fileCount == 0 ? Flag::emptyFolder : Flag::none;
  if (!row.look) return Flag::none;
  if (row.look->links > 1) return Flag::linked;
  return row.look->type == EntryType::other ? Flag::special : Flag::none;
}

// Rows for what is in the folder and has no node, because it could not be read or was left out.
void addUncounted(std::vector<Row>& rows, const RowSource& source, const FlagsByName& unread) {
  const auto add = [&](std::string name, Row::Kind kind, Flag flag, Bytes size = 0) {
    if (std::ranges::find(rows, name, &Row::name) != rows.end()) return;
    std::string path = Paths::join(source.path, name);
    rows.push_back({.kind = kind,
                    .path = std::move(path),
                    .name = std::move(name),
                    .size = size,
                    .isDirectory = true,
                    .flag = flag});
  };
  for (const auto& [name, flag] : unread) {
    if (flag == Flag::unread) add(std::string{name}, Row::Kind::item, flag);
  }
  if (source.coverage == nullptr) return;
  for (const LeftOut& item : source.coverage->leftOut) {
    if (Paths::parent(item.path) != source.path || item.path == source.path) continue;
    add(Paths::lastComponent(item.path), Row::Kind::leftOut,
        item.kind == LeftOut::Kind::excluded ? Flag::excluded : Flag::elsewhere, item.size.value_or(0));
  }
}

// Equal if neither comes first.
std::weak_ordering compared(const Row& a, const Row& b, RowKey key) {
  switch (key) {
    case RowKey::size:
      return b.size <=> a.size;
    case RowKey::name:
      return numericOrder(a.name, b.name);
    case RowKey::count:
      return b.fileCount <=> a.fileCount;
    case RowKey::age:
      return a.modified.value_or(Date::max()) <=> b.modified.value_or(Date::max());
    case RowKey::growth:
      return b.growth.value_or(0) <=> a.growth.value_or(0);
  }
  return std::weak_ordering::equivalent;
}

}  // namespace

std::vector<Row> rowsOf(const RowSource& source) {
  std::vector<Row> rows;
  rows.reserve(source.folder.children.size() + 1);
  NodesByName before = byName(source.before);
  for (const Node& child : source.folder.children) {
    Row& row = rows.emplace_back(rowOf(child, source.path));
    if (source.beforeMinimum) compare(row, before, *source.beforeMinimum);
  }
  const NodesByName scanned = byName(source.scanned);
  const FlagsByName unread = unreadIn(source);
  for (Row& row : rows) {
    if (const auto found = source.look.find(row.name); found != source.look.end()) row.look = found->second;
    row.flag = flagOf(row, unread, source.isComplete);
    if (row.isDirectory) row.modified = newestIn(row, scanned);
  }
  addUncounted(rows, source, unread);
  const Bytes unlisted = source.folder.unlistedSize();
  if (unlisted > 0) rows.push_back({.kind = Row::Kind::smaller, .size = unlisted});
  if (!source.isComplete) return rows;
  for (const Row& row : rows) before.erase(row.name);
  for (const auto& [name, node] : before) {
    Row& row = rows.emplace_back(rowOf(*node, source.path));
    row.kind = Row::Kind::gone;
    row.growth = -row.size;
    row.size = row.fileCount = 0;
  }
  return rows;
}

void sortRows(std::vector<Row>& rows, const RowOrder& order) {
  const auto rank = [&](const Row& row) {
    if (row.kind == Row::Kind::smaller) return 3;
    if (order.key == RowKey::age && !row.modified && !order.foldersFirst) return 2;
    return order.foldersFirst && !row.isDirectory ? 1 : 0;
  };
  std::ranges::stable_sort(rows, [&](const Row& a, const Row& b) {
    if (rank(a) != rank(b)) return rank(a) < rank(b);
    const auto byKey = order.isReversed ? compared(b, a, order.key) : compared(a, b, order.key);
    return byKey != 0 ? byKey < 0 : numericOrder(a.name, b.name) < 0;
  });
}

}  // namespace spacemint::ctl
