#include "core/tree/Snapshot.h"

#include "core/base/AsciiText.h"
#include "core/base/Unicode.h"
#include "core/host/FolderSum.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <functional>
#include <ranges>

namespace spacemint {

namespace {

bool beginsWith(std::string_view path, std::string_view prefix) {
  return canonicalPrefixLength(path, prefix).has_value();
}

// The place of an edit: all folders from the root down to the parent, and the node at the path, or null.
struct EditPlace {
  std::string name;
  std::vector<Node*> chain;
  Node* node = nullptr;

  void erase() const {
    auto& siblings = chain.back()->children;
    siblings.erase(siblings.begin() + (node - siblings.data()));
  }
};

Node* mutableChild(Node& parent, std::string_view name) {
  return const_cast<Node*>(parent.child(name));
}

// Absent for the root, and if an ancestor folder is not in the tree.
std::optional<EditPlace> placeOf(Snapshot& snapshot, std::string_view path) {
  auto names = snapshot.components(path);
  if (!names || names->empty()) return std::nullopt;
  EditPlace place{.name = std::move(names->back()), .chain = {&snapshot.root}};
  names->pop_back();
  for (const std::string& name : *names) {
    Node* next = mutableChild(*place.chain.back(), name);
    if (next == nullptr) return std::nullopt;
    place.chain.push_back(next);
  }
  place.node = mutableChild(*place.chain.back(), place.name);
  return place;
}

struct Change {
  Bytes size = 0;
  std::int64_t files = 0;
};

// In a stored scan a folder may be smaller than its contents, so the difference could be below 0.
std::int64_t changed(std::int64_t count, std::int64_t change) {
  return std::max<std::int64_t>(0, saturatingAdd(count, change));
}

// Works from the innermost folder up: sorting a folder's children invalidates only pointers to those
// children.
void apply(Change change, const std::vector<Node*>& chain, Snapshot& snapshot, std::string_view path) {
  const auto add = [&](auto& counted) {
    counted.size = changed(counted.size, change.size);
    counted.fileCount = changed(counted.fileCount, change.files);
  };
  for (Node* node : chain | std::views::reverse) {
    add(*node);
    sortBySize(node->children);
  }
  if (auto* place = const_cast<CoveredPlace*>(snapshot.coverage.placeOf(path))) add(*place);
  snapshot.fileCount = changed(snapshot.fileCount, change.files);
}

// What the user excluded at or below `path` is gone with it. Returns whether there was something.
bool forgetExcluded(Coverage& coverage, std::string_view path) {
  return std::erase_if(coverage.leftOut, [&](const LeftOut& item) {
           return item.kind == LeftOut::Kind::excluded && isAtOrBelow(item.path, path);
         }) > 0;
}

}  // namespace

std::string Snapshot::resolve(std::string_view path) const {
  const bool needsVolume = !beginsWith(path, rootPath()) && beginsWith(rootPath(), Paths::dataVolume) &&
                           !beginsWith(path, Paths::dataVolume);
  return needsVolume ? std::string{Paths::dataVolume} + std::string{path} : std::string{path};
}

std::optional<std::vector<std::string>> Snapshot::components(std::string_view path) const {
  const std::string resolved = resolve(path);
  if (canonicallyEqual(Paths::withoutTrailingSlash(resolved), Paths::withoutTrailingSlash(rootPath()))) {
    return std::vector<std::string>{};
  }
  const auto length = canonicalPrefixLength(resolved, Paths::join(rootPath(), ""));
  if (!length) return std::nullopt;
  const auto names = pieces(std::string_view{resolved}.substr(*length), '/');
  return std::vector<std::string>(names.begin(), names.end());
}

const Node* Snapshot::nodeAt(std::string_view path) const {
  const auto names = components(path);
  if (!names) return nullptr;
  const Node* node = &root;
  for (const std::string& name : *names) {
    node = node->child(name);
    if (node == nullptr) return nullptr;
  }
  return node;
}

std::unordered_map<std::string, Bytes> Snapshot::flattened() const {
  std::size_t nodes = 0;
  walkTree(root, [&](const std::string&, const Node&) { ++nodes; });
  std::unordered_map<std::string, Bytes> sizes;
  sizes.reserve(nodes);  // rehashing would take longer than the rest of this function
  walkTree(root, [&](const std::string& path, const Node& node) { sizes.emplace(path, node.size); });
  return sizes;
}

std::vector<FileItem> Snapshot::largestFiles(std::size_t limit) const {
  if (limit == 0) return {};
  std::vector<Bytes> sizes;
  walkTree(root, [&](const std::string&, const Node& node) {
    if (!node.isDirectory) sizes.push_back(node.size);
  });
  limit = std::min(limit, sizes.size());
  if (limit == 0) return {};
  // Build paths only for files that can be among the `limit` largest.
  const auto last = sizes.begin() + static_cast<std::ptrdiff_t>(limit) - 1;
  std::ranges::nth_element(sizes, last, std::greater{});
  std::vector<FileItem> files;
  walkTree(root, [&](const std::string& path, const Node& node) {
    if (!node.isDirectory && node.size >= *last) files.push_back({path, node.size, node.modified});
  });
  std::ranges::stable_sort(files, std::greater{}, &FileItem::size);
  files.resize(limit);
  return files;
}

bool Snapshot::canSeedIncrementalScan(const SeedRequirements& requirements) const {
  return canonicallyEqual(root.name, requirements.root) && minNodeSize == requirements.minNodeSize &&
         coverage.excludes == requirements.excludes && eventID.has_value() && root.fileCount >= 1 &&
         format == currentFormat && fullScanDate.has_value() && *fullScanDate <= requirements.now &&
         timeBetween(*fullScanDate, requirements.now) < requirements.fullScanInterval;
}

bool Snapshot::replace(std::string_view path, Node node) {
  const auto place = placeOf(*this, path);
  if (!place || place->node == nullptr) return false;
  Node& old = *place->node;
  const Change change{.size = saturatingSubtract(node.size, old.size),
                      .files = saturatingSubtract(node.fileCount, old.fileCount)};
  if (!isStored(node.size, node.fileCount, minNodeSize)) {
    place->erase();
  } else {
    node.name = std::move(old.name);  // keep the spelling on the disk; `path` may use an equivalent one
    old = std::move(node);
  }
  apply(change, place->chain, *this, path);
  return true;
}

bool Snapshot::upsert(std::string_view path, Node node) {
  auto place = placeOf(*this, path);
  if (!place) return false;
  if (place->node != nullptr) return replace(path, std::move(node));
  if (!isStored(node.size, node.fileCount, minNodeSize)) return false;
  const Change change{.size = node.size, .files = node.fileCount};
  node.name = std::move(place->name);
  place->chain.back()->children.push_back(std::move(node));
  apply(change, place->chain, *this, path);
  return true;
}

bool Snapshot::remove(std::string_view path) {
  const auto place = placeOf(*this, path);
  if (!place) return false;
  const bool hasForgotten = forgetExcluded(coverage, resolve(path));
  if (place->node == nullptr) return hasForgotten;
  const Change change{.size = saturatingSubtract(0, place->node->size),
                      .files = place->node->isDirectory ? saturatingSubtract(0, place->node->fileCount) : -1};
  place->erase();
  apply(change, place->chain, *this, path);
  return true;
}

bool Snapshot::addUnlisted(std::string_view path, Bytes bytes, std::int64_t files) {
  const auto names = components(path);
  if (!names) return false;
  std::vector<Node*> chain{&root};
  for (const std::string& name : *names) {
    Node* next = mutableChild(*chain.back(), name);
    if (next == nullptr) return false;
    chain.push_back(next);
  }
  apply({.size = bytes, .files = files}, chain, *this, path);
  return true;
}

bool Snapshot::leaveOut(std::string_view path, std::string pattern) {
  const Node* node = nodeAt(path);
  if (node == nullptr || node == &root) return false;
  LeftOut item{.path = resolve(path), .kind = LeftOut::Kind::excluded};
  item.size = saturatingAdd(node->size, coverage.excludedBelow(item.path).size);
  remove(path);
  const auto after = std::ranges::upper_bound(coverage.leftOut, item);
  coverage.leftOut.insert(after, std::move(item));
  coverage.excludes.push_back(std::move(pattern));
  return true;
}

}  // namespace spacemint
