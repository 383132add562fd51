#pragma once

#include "core/tree/Node.h"

namespace spacemint::support {

/// A file of a scan tree.
inline Node file(std::string name, Bytes size) {
  return {.name = std::move(name), .size = size};
}

/// What a folder holds besides its kept children.
struct Unlisted {
  Bytes unlisted = 0;
  std::int64_t unlistedFiles = 0;
};

/// A folder of a scan tree whose totals are those of its children and of what is not listed.
inline Node folder(std::string name, std::vector<Node> children, Unlisted rest = {}) {
  Node node{
      .name = std::move(name), .size = rest.unlisted, .isDirectory = true, .fileCount = rest.unlistedFiles};
  for (const Node& child : children) {
    node.size += child.size;
    node.fileCount += child.isDirectory ? child.fileCount : 1;
  }
  node.children = std::move(children);
  sortBySize(node.children);
  return node;
}

/// The names of a node's children, in order.
inline std::vector<std::string> names(const Node& node) {
  std::vector<std::string> result;
  for (const Node& child : node.children) result.push_back(child.name);
  return result;
}

}  // namespace spacemint::support
