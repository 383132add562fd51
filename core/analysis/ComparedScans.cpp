#include "core/analysis/ComparedScans.h"

#include "core/base/AsciiText.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <ranges>

namespace spacemint {

ChildrenByName::ChildrenByName(const Node* folder) {
  if (folder == nullptr) return;
  byName_.reserve(folder->children.size());
  for (const Node& child : folder->children) {
    byName_.emplace(child.name, &child);
    if (!isAscii(child.name)) byCanonicalName_.emplace(canonicalForm(child.name), &child);
  }
}

const Node* ChildrenByName::find(const std::string& name) const {
  if (const auto found = byName_.find(name); found != byName_.end()) return found->second;
  if (isAscii(name) || byCanonicalName_.empty()) return nullptr;
  const auto found = byCanonicalName_.find(canonicalForm(name));
  return found == byCanonicalName_.end() ? nullptr : found->second;
}

Revealed::Revealed(const Snapshot& blind, const Snapshot& seeing) : root_(seeing.rootPath()) {
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

Bytes Revealed::at(const std::string& path) const {
  const auto found = bytes_.find(path);
  return found != bytes_.end() ? found->second : 0;
}

const CoveredPlace* Revealed::placeLike(const Snapshot& scan, const CoveredPlace& covered) {
  const auto found = std::ranges::find_if(scan.coverage.places, [&](const CoveredPlace& other) {
    return other.place.mountPoint == covered.place.mountPoint && other.place.root == covered.place.root &&
           other.place.fileSystem == covered.place.fileSystem;
  });
  return found != scan.coverage.places.end() ? &*found : nullptr;
}

void Revealed::add(const std::string& path, Bytes size) {
  if (!isAtOrBelow(path, root_)) return;
  roots_.insert(path);
  std::string_view at = path;
  while (at.size() > root_.size()) {
    Bytes& bytes = bytes_[std::string{at}];
    bytes = saturatingAdd(bytes, size);
    at = at.substr(0, at.rfind('/'));
  }
  bytes_[root_] = saturatingAdd(bytes_[root_], size);
}

}  // namespace spacemint
