#include "core/analysis/GrowthTree.h"

#include "core/tree/Paths.h"

#include <algorithm>
#include <functional>

namespace spacemint {

namespace {

double shareOf(Bytes part, Bytes whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

const ChangeTree* largestChild(const ChangeTree& folder) {
  const auto largest = std::ranges::max_element(folder.children, {}, &ChangeTree::delta);
  return largest != folder.children.end() ? &*largest : nullptr;
}

GrowthTree rowOf(const ChangeTree& change, std::string path, bool mayJoin);

void addChildren(const ChangeTree& folder, GrowthTree& row) {
  for (const ChangeTree& child : folder.children) {
    if (child.delta <= 0) continue;
    const bool isListed = child.delta >= GrowthTree::listedFrom ||
                          shareOf(child.delta, folder.delta) >= GrowthTree::listedShare;
    if (isListed) {
      row.children.push_back(rowOf(child, Paths::join(row.path, child.name), true));
    } else {
      ++row.smaller;
      row.smallerDelta = saturatingAdd(row.smallerDelta, child.delta);
    }
  }
  std::ranges::stable_sort(row.children, std::greater{}, &GrowthTree::delta);
}

GrowthTree rowOf(const ChangeTree& change, std::string path, bool mayJoin) {
  GrowthTree row{.path = std::move(path), .names = {change.name}, .delta = change.delta};
  const ChangeTree* last = &change;
  while (mayJoin) {
    const ChangeTree* child = largestChild(*last);
    if (child == nullptr || shareOf(child->delta, change.delta) < GrowthTree::joiningShare) break;
    last = child;
    row.names.push_back(child->name);
    row.path = Paths::join(row.path, child->name);
  }
  row.size = last->size;
  row.isDirectory = last->isDirectory;
  row.isNew = last->isNew;
  if (last->delta > 0) addChildren(*last, row);
  return row;
}

}  // namespace

GrowthTree growthTree(const ChangeTree& root) {
  GrowthTree tree = rowOf(root, root.name, false);
  // Where more went than came, there is no share of the whole; what came is listed all the same.
  if (root.delta <= 0) addChildren(root, tree);
  return tree;
}

}  // namespace spacemint
