#include "core/analysis/ChangeTree.h"

#include "core/analysis/ComparedScans.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <unordered_set>

namespace spacemint {

namespace {

class Comparison {
 public:
  Comparison(const Snapshot& from, const Snapshot& to) : seenNow_(from, to), seenBefore_(to, from) {}

  // At least one of the nodes is given.
  ChangeTree compare(const Node* before, const Node* now, const std::string& path) const {
    const Node& present = now != nullptr ? *now : *before;
    const Bytes size = now != nullptr ? now->size : 0;
    const Bytes grown = saturatingSubtract(size, before != nullptr ? before->size : 0);
    ChangeTree change{
        .name = present.name,
        .size = size,
        .delta = saturatingAdd(grown, saturatingSubtract(seenBefore_.at(path), seenNow_.at(path))),
        .isDirectory = present.isDirectory,
        .isNew = before == nullptr,
        .isGone = now == nullptr};
    // Of a folder that is gone there is nothing more to say; in one that is new everything is.
    const bool isFolder = now != nullptr && now->isDirectory && (before == nullptr || before->isDirectory);
    if (isFolder && !seenNow_.isRoot(path) && !seenBefore_.isRoot(path))
      compareChildren(before, *now, path, change);
    return change;
  }

 private:
  void compareChildren(const Node* before, const Node& now, const std::string& path, ChangeTree& into) const {
    const ChildrenByName others{before};
    std::unordered_set<const Node*> found;
    for (const Node& child : now.children) {
      const Node* other = others.find(child.name);
      found.insert(other);
      add(compare(other, &child, Paths::join(path, child.name)), into);
    }
    if (before != nullptr) {
      for (const Node& child : before->children) {
        if (!found.contains(&child)) add(compare(&child, nullptr, Paths::join(path, child.name)), into);
      }
    }
    std::ranges::sort(into.children, {}, &ChangeTree::name);
  }

  static void add(ChangeTree change, ChangeTree& into) {
    const bool isSmall = change.delta < ChangeTree::minimum && change.delta > -ChangeTree::minimum;
    if (isSmall && change.children.empty()) return;
    into.children.push_back(std::move(change));
  }

  Revealed seenNow_;
  Revealed seenBefore_;
};

}  // namespace

const ChangeTree* ChangeTree::child(std::string_view childName) const {
  const auto found = std::ranges::lower_bound(children, childName, {}, &ChangeTree::name);
  return found != children.end() && found->name == childName && !found->isGone ? &*found : nullptr;
}

ChangeTree changeTree(const Snapshot& from, const Snapshot& to) {
  if (!canonicallyEqual(from.rootPath(), to.rootPath()))
    return {.name = to.rootPath(), .size = to.root.size, .isDirectory = true};
  return Comparison{from, to}.compare(&from.root, &to.root, to.rootPath());
}

}  // namespace spacemint
