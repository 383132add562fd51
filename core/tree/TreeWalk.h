#pragma once

#include "core/tree/Node.h"

#include <string>
#include <utility>
#include <vector>

namespace spacemint {

/// Calls `visit(path, node)` for `root` and every node below it, parents before their children, children in
/// stored order. `path` is the node's full path and valid during the call only.
template <class Visit>
void walkTree(const Node& root, Visit visit) {
  struct Level {
    const Node* node;
    std::size_t nextChild;
    std::size_t pathLength;
  };
  std::string path = root.name;
  std::vector<Level> levels{{&root, 0, path.size()}};
  visit(std::as_const(path), root);
  while (!levels.empty()) {
    Level& top = levels.back();
    path.resize(top.pathLength);
    if (top.nextChild == top.node->children.size()) {
      levels.pop_back();
      continue;
    }
    const Node& child = top.node->children[top.nextChild++];
    if (!path.ends_with('/')) path += '/';
    path += child.name;
    visit(std::as_const(path), child);
    if (!child.children.empty()) levels.push_back({&child, 0, path.size()});
  }
}

}  // namespace spacemint
