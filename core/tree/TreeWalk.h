#pragma once

#include "core/tree/Node.h"

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace spacemint {

/// Calls `visit(path, node)` for `root` and every node below it, parents before their children, children in
/// stored order. `path` is the node's full path; the reference is valid only during the call. `visit` may
/// return a bool: with false, the nodes below this one are skipped.
template <class Visit>
void walkTree(const Node& root, Visit visit) {
  struct Level {
    const Node* node;
    std::size_t nextChild;
    std::size_t pathLength;
  };
  std::string path = root.name;
  std::vector<Level> levels;
  const auto enter = [&](const Node& node) {
    bool wanted = true;  // NOLINT(misc-const-correctness): not in the other branch
    if constexpr (std::is_void_v<std::invoke_result_t<Visit&, const std::string&, const Node&>>) {
      visit(std::as_const(path), node);
    } else {
      wanted = visit(std::as_const(path), node);
    }
    if (wanted && !node.children.empty()) levels.push_back({&node, 0, path.size()});
  };
  enter(root);
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
    enter(child);
  }
}

}  // namespace spacemint
