#include "core/scan/FoundSoFar.h"

#include "core/base/AsciiText.h"

#include <algorithm>

namespace spacemint {

namespace {

// The name of the folder in the root that the scan is in; empty in the root itself.
std::string_view growingName(std::string_view path, std::string_view root) {
  path.remove_prefix(std::min(root.size(), path.size()));
  const auto names = pieces(path, '/');
  return names.empty() ? std::string_view{} : names.front();
}

}  // namespace

FoundSoFar FoundSoFar::in(const DiskScanner::Unfinished& scan, std::string_view root) {
  auto node = scan.folder(root);
  if (!node) return {};
  FoundSoFar found{.bytes = node->size};
  const std::string_view growing = growingName(scan.path(), root);
  std::erase_if(node->children, [](const Node& child) { return child.size == 0; });
  sortBySize(node->children);
  if (node->children.size() > mostItems) node->children.resize(mostItems);
  for (Node& child : node->children) {
    const bool isGrowing = child.isDirectory && child.name == growing;
    found.items.push_back({std::move(child.name), child.size, child.isDirectory, isGrowing});
  }
  return found;
}

}  // namespace spacemint
