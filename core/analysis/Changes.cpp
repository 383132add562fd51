#include "core/analysis/Changes.h"

#include "core/base/Unicode.h"

#include <algorithm>
#include <functional>
#include <ranges>
#include <unordered_map>

namespace spacemint {

namespace {

constexpr double explainingShare = 0.6;

// The children of a folder in the earlier scan, by name. The map is built only for folders that grew, which
// is much cheaper than one map of the whole earlier tree.
class EarlierChildren {
 public:
  explicit EarlierChildren(const Node* folder) {
    if (folder == nullptr) return;
    byName_.reserve(folder->children.size());
    for (const Node& child : folder->children) {
      byName_.emplace(child.name, &child);
      if (!isAscii(child.name)) byCanonicalName_.emplace(canonicalForm(child.name), &child);
    }
  }

  // The child whose name has exactly these bytes; otherwise a child whose name is canonically equal.
  const Node* find(const std::string& name) const {
    if (const auto found = byName_.find(name); found != byName_.end()) return found->second;
    if (isAscii(name) || byCanonicalName_.empty()) return nullptr;
    const auto found = byCanonicalName_.find(canonicalForm(name));
    return found == byCanonicalName_.end() ? nullptr : found->second;
  }

 private:
  std::unordered_map<std::string_view, const Node*> byName_;
  std::unordered_map<std::string, const Node*> byCanonicalName_;
};

// A node of the newer tree and the node at the same path in the earlier tree (null if there is none).
struct Pair {
  const Node* node;
  const Node* earlier;
  std::string path;
  Bytes delta;
};

Bytes grown(const Node& node, const Node* earlier) {
  return saturatingSubtract(node.size, earlier == nullptr ? 0 : earlier->size);
}

std::vector<Pair> childPairs(const Pair& pair) {
  const EarlierChildren earlier{pair.earlier};
  std::vector<Pair> children;
  children.reserve(pair.node->children.size());
  for (const Node& child : pair.node->children) {
    const Node* before = earlier.find(child.name);
    children.push_back({&child, before, {}, grown(child, before)});
  }
  return children;
}

// True if one child accounts for at least `explainingShare` of the folder's growth.
bool isExplainedByOne(const std::vector<Pair>& children, Bytes delta) {
  Bytes largest = 0;
  if (!children.empty()) largest = std::ranges::max_element(children, {}, &Pair::delta)->delta;
  return static_cast<double>(delta) * explainingShare <= static_cast<double>(largest);
}

}  // namespace

std::vector<Growth> Changes::growth(const GrowthArguments& arguments) {
  const Node& now = arguments.to.root;
  const Node& before = arguments.from.root;
  if (!canonicallyEqual(now.name, before.name)) return {};
  const Bytes delta = grown(now, &before);
  if (delta < arguments.minimum) return {};

  std::vector<Growth> found;
  std::vector<Pair> pending{{&now, &before, now.name, delta}};
  while (!pending.empty()) {
    const Pair pair = std::move(pending.back());
    pending.pop_back();
    std::vector<Pair> children;
    if (pair.node->isDirectory) children = childPairs(pair);
    if (!pair.node->isDirectory || !isExplainedByOne(children, pair.delta)) {
      found.push_back(
          {pair.path, pair.delta, pair.node->size, pair.node->isDirectory, pair.earlier == nullptr});
      continue;
    }
    // Push in reverse, so that the stack yields the children in stored order.
    for (Pair& child : children | std::views::reverse) {
      if (child.delta < arguments.minimum) continue;
      child.path = Paths::join(pair.path, child.node->name);
      pending.push_back(std::move(child));
    }
  }
  std::ranges::stable_sort(found, std::greater{}, &Growth::delta);
  found.resize(std::min(found.size(), arguments.limit));
  return found;
}

}  // namespace spacemint
