#include "core/analysis/Changes.h"

#include "core/base/AsciiText.h"
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

// The bytes that only one of two scans could see, by the path of their folder and of all folders above it.
class Revealed {
 public:
  Revealed(const Snapshot& blind, const Snapshot& seeing) : root_(seeing.rootPath()) {
    for (const CoveredPlace& covered : seeing.coverage.places | std::views::drop(1)) {
      if (placeLike(blind, covered) == nullptr) add(covered.place.mountPoint, covered.size);
    }
    for (const std::string& path : blind.coverage.unread.paths) {
      const bool isUnreadInBoth =
          std::ranges::find(seeing.coverage.unread.paths, path) != seeing.coverage.unread.paths.end();
      const Node* node = isUnreadInBoth || bytes_.contains(path) ? nullptr : seeing.nodeAt(path);
      if (node == nullptr) continue;
      add(path, node->size);
      folders_.emplace_back(path, node->size);
    }
  }

  bool empty() const { return bytes_.empty(); }
  Bytes at(const std::string& path) const {
    const auto found = bytes_.find(path);
    return found != bytes_.end() ? found->second : 0;
  }
  // The folders that could not be read, with the bytes in them.
  const std::vector<std::pair<std::string, Bytes>>& folders() const { return folders_; }

  // The mount of another scan that shows the same folder at the same path; null if there is none. The numbers
  // of volumes change when the computer starts.
  static const CoveredPlace* placeLike(const Snapshot& scan, const CoveredPlace& covered) {
    const auto found = std::ranges::find_if(scan.coverage.places, [&](const CoveredPlace& other) {
      return other.place.mountPoint == covered.place.mountPoint && other.place.root == covered.place.root &&
             other.place.fileSystem == covered.place.fileSystem;
    });
    return found != scan.coverage.places.end() ? &*found : nullptr;
  }

 private:
  void add(const std::string& path, Bytes size) {
    if (!isAtOrBelow(path, root_)) return;
    std::string_view at = path;
    while (at.size() > root_.size()) {
      Bytes& bytes = bytes_[std::string{at}];
      bytes = saturatingAdd(bytes, size);
      at = at.substr(0, at.rfind('/'));
    }
    bytes_[root_] = saturatingAdd(bytes_[root_], size);
  }

  std::string root_;
  std::unordered_map<std::string, Bytes> bytes_;
  std::vector<std::pair<std::string, Bytes>> folders_;
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

std::vector<Pair> childPairs(const Pair& pair, const Revealed& revealed) {
  const EarlierChildren earlier{pair.earlier};
  std::vector<Pair> children;
  children.reserve(pair.node->children.size());
  for (const Node& child : pair.node->children) {
    const Node* before = earlier.find(child.name);
    Bytes delta = grown(child, before);
    if (!revealed.empty()) {
      delta = saturatingSubtract(delta, revealed.at(Paths::join(pair.path, child.name)));
    }
    children.push_back({&child, before, {}, delta});
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
  const Revealed revealed{arguments.from, arguments.to};
  const Bytes delta = saturatingSubtract(grown(now, &before), revealed.at(now.name));
  if (delta < arguments.minimum) return {};

  std::vector<Growth> found;
  std::vector<Pair> pending{{&now, &before, now.name, delta}};
  while (!pending.empty()) {
    const Pair pair = std::move(pending.back());
    pending.pop_back();
    std::vector<Pair> children;
    if (pair.node->isDirectory) children = childPairs(pair, revealed);
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
