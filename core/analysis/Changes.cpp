#include "core/analysis/Changes.h"

#include "core/analysis/ComparedScans.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <functional>
#include <ranges>

namespace spacemint {

namespace {

constexpr double explainingShare = 0.6;

// A child of a growth that is spread is listed from this share of the folder's growth on.
constexpr double insideShare = 0.05;

// A node of one tree and the node at the same path in the other tree (null if there is none). `delta` is how
// much larger the first one is.
struct Pair {
  const Node* node;
  const Node* other;
  std::string path;
  Bytes delta;
};

Pair pairOf(const Node& node, const Node* other, std::string path = {}) {
  return {&node, other, std::move(path), saturatingSubtract(node.size, other == nullptr ? 0 : other->size)};
}

std::vector<Pair> childPairs(const Pair& pair, const Revealed& revealed) {
  const ChildrenByName others{pair.other};
  std::vector<Pair> children;
  children.reserve(pair.node->children.size());
  for (const Node& child : pair.node->children) {
    Pair& made = children.emplace_back(pairOf(child, others.find(child.name)));
    if (revealed.empty()) continue;
    made.delta = saturatingSubtract(made.delta, revealed.at(Paths::join(pair.path, child.name)));
  }
  return children;
}

// True if one child accounts for at least `explainingShare` of the folder's change.
bool isExplainedByOne(const std::vector<Pair>& children, Bytes delta) {
  Bytes largest = 0;
  if (!children.empty()) largest = std::ranges::max_element(children, {}, &Pair::delta)->delta;
  return static_cast<double>(delta) * explainingShare <= static_cast<double>(largest);
}

// Pushes in reverse, so that the stack yields the children in stored order.
void push(std::vector<Pair>& pending, const Pair& parent, std::vector<Pair>& children,
          const std::function<bool(const Pair&)>& isWanted) {
  for (Pair& child : children | std::views::reverse) {
    if (!isWanted(child)) continue;
    child.path = Paths::join(parent.path, child.node->name);
    pending.push_back(std::move(child));
  }
}

template <class Change>
void keepLargest(std::vector<Change>& changes, std::size_t limit) {
  std::ranges::stable_sort(changes, std::greater{}, &Change::delta);
  changes.resize(std::min(changes.size(), limit));
}

std::vector<Growth> explain(std::vector<Pair> pending, const Revealed& revealed, Bytes minimum, bool unfolds);

std::vector<Growth> insideOf(const Pair& folder, std::vector<Pair>& children, const Revealed& revealed) {
  const Bytes minimum =
      std::max<Bytes>(1, static_cast<Bytes>(static_cast<double>(folder.delta) * insideShare));
  std::vector<Pair> pending;
  push(pending, folder, children, [&](const Pair& child) { return child.delta >= minimum; });
  auto inside = explain(std::move(pending), revealed, minimum, false);
  keepLargest(inside, Changes::insideLimit);
  return inside;
}

// What explains the growth of `pending`, in the order of the tree. `pending` is a stack.
std::vector<Growth> explain(std::vector<Pair> pending, const Revealed& revealed, Bytes minimum,
                            bool unfolds) {
  std::vector<Growth> found;
  while (!pending.empty()) {
    const Pair pair = std::move(pending.back());
    pending.pop_back();
    std::vector<Pair> children;
    if (pair.node->isDirectory) children = childPairs(pair, revealed);
    if (pair.node->isDirectory && isExplainedByOne(children, pair.delta)) {
      push(pending, pair, children, [&](const Pair& child) { return child.delta >= minimum; });
      continue;
    }
    found.push_back({.path = pair.path,
                     .delta = pair.delta,
                     .size = pair.node->size,
                     .isDirectory = pair.node->isDirectory,
                     .isNew = pair.other == nullptr});
    if (unfolds) found.back().inside = insideOf(pair, children, revealed);
  }
  return found;
}

}  // namespace

std::vector<Growth> Changes::growth(const GrowthArguments& arguments) {
  const Node& now = arguments.to.root;
  const Node& before = arguments.from.root;
  if (!canonicallyEqual(now.name, before.name)) return {};
  const Revealed revealed{arguments.from, arguments.to};
  Pair root = pairOf(now, &before, now.name);
  root.delta = saturatingSubtract(root.delta, revealed.at(now.name));
  if (root.delta < arguments.minimum) return {};
  auto found = explain({std::move(root)}, revealed, arguments.minimum, true);
  keepLargest(found, arguments.limit);
  return found;
}

std::vector<Shrinkage> Changes::shrinkage(const GrowthArguments& arguments,
                                          const std::function<bool(const std::string& path)>& exists) {
  const Node& now = arguments.to.root;
  const Node& before = arguments.from.root;
  if (!canonicallyEqual(now.name, before.name)) return {};
  const Revealed revealed{arguments.to, arguments.from};
  std::vector<Shrinkage> found;
  std::vector<Pair> pending{pairOf(before, &now, before.name)};
  pending.front().delta = saturatingSubtract(pending.front().delta, revealed.at(before.name));
  while (!pending.empty()) {
    const Pair pair = std::move(pending.back());
    pending.pop_back();
    const bool areFolders = pair.node->isDirectory && pair.other != nullptr && pair.other->isDirectory;
    std::vector<Pair> children;
    if (areFolders) children = childPairs(pair, revealed);
    const bool shrank = pair.delta >= arguments.minimum;
    if (areFolders && !(shrank && !isExplainedByOne(children, pair.delta))) {
      // A folder that was smaller than the minimum cannot have lost so much.
      push(pending, pair, children, [&](const Pair& child) { return child.node->size >= arguments.minimum; });
    } else if (shrank) {
      found.push_back({.path = pair.path,
                       .delta = pair.delta,
                       .size = pair.other == nullptr ? 0 : pair.other->size,
                       .isDirectory = pair.node->isDirectory,
                       .isGone = pair.other == nullptr});
    }
  }
  keepLargest(found, arguments.limit);
  for (Shrinkage& each : found) each.isGone = each.isGone && !exists(each.path);
  return found;
}

std::optional<Bytes> SpaceChange::elsewhere() const {
  if (!inFolder) return std::nullopt;
  return saturatingSubtract(saturatingSubtract(freeBefore, freeNow), *inFolder);
}

namespace {

// The growth of one volume, mount by mount.
std::optional<Bytes> growthOnVolume(const Snapshot& from, const Snapshot& to, const CoveredPlace& volume) {
  Bytes growth = 0;
  for (const CoveredPlace& now : to.coverage.places) {
    if (now.place.pool != volume.place.pool) continue;
    const CoveredPlace* before = Revealed::placeLike(from, now);
    if (before == nullptr) return std::nullopt;
    growth = saturatingAdd(growth, saturatingSubtract(now.size, before->size));
  }
  const auto correct = [&](const Revealed& revealed, int sign) {
    for (const auto& [path, size] : revealed.folders()) {
      const CoveredPlace* place = to.coverage.placeOf(path);
      if (place != nullptr && place->place.pool == volume.place.pool)
        growth = saturatingAdd(growth, sign * size);
    }
  };
  correct(Revealed{from, to}, -1);
  correct(Revealed{to, from}, 1);
  return growth;
}

}  // namespace

std::optional<SpaceChange> Changes::spaceChange(const Snapshot& from, const Snapshot& to,
                                                const std::string& home) {
  if (!canonicallyEqual(from.rootPath(), to.rootPath())) return std::nullopt;
  SpaceChange change{.freeBefore = from.volumeFree, .freeNow = to.volumeFree, .root = to.rootPath()};
  const CoveredPlace* volume = to.coverage.placeOf(to.rootPath() == wholeDisk ? home : to.rootPath());
  if (volume != nullptr) change.inFolder = growthOnVolume(from, to, *volume);
  return change;
}

}  // namespace spacemint
