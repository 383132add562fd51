#include "core/tree/Node.h"

#include "core/base/Unicode.h"

#include <algorithm>

namespace spacemint {

Bytes Node::unlistedSize() const {
  Bytes rest = size;
  for (const Node& child : children) {
    // A tree read from a file may contain any numbers. An overflow gives 0: the result is only displayed.
    if (__builtin_sub_overflow(rest, child.size, &rest)) return 0;
  }
  return std::max<Bytes>(rest, 0);
}

const Node* Node::child(std::string_view childName) const {
  const auto exact = std::ranges::find(children, childName, &Node::name);
  if (exact != children.end()) return &*exact;
  const auto equal = std::ranges::find_if(
      children, [&](const Node& node) { return canonicallyEqual(node.name, childName); });
  return equal != children.end() ? &*equal : nullptr;
}

void sortBySize(std::vector<Node>& nodes) {
  const auto largerFirst = [](const Node& a, const Node& b) { return a.size > b.size; };
  if (!std::ranges::is_sorted(nodes, largerFirst)) std::ranges::stable_sort(nodes, largerFirst);
}

}  // namespace spacemint
