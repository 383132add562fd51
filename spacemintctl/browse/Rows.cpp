#include "spacemintctl/browse/Rows.h"

#include "core/base/NumericOrder.h"
#include "core/tree/Paths.h"

#include <algorithm>
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
    if (!source.beforeMinimum) continue;
    compare(row, before, *source.beforeMinimum);
    before.erase(child.name);
  }
  const Bytes unlisted = source.folder.unlistedSize();
  if (unlisted > 0) rows.push_back({.kind = Row::Kind::smaller, .size = unlisted});
  if (!source.isComplete) return rows;
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
