#include "spacemintctl/browse/BrowseTree.h"

#include "core/base/AsciiText.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace spacemint::ctl {

namespace {

struct Counts {
  Bytes size = 0;
  std::int64_t files = 0;
};

Counts countsOf(const Node& node) {
  return {.size = node.size, .files = node.isDirectory ? node.fileCount : 1};
}

Counts difference(const Counts& from, const Counts& to) {
  return {.size = saturatingSubtract(to.size, from.size), .files = saturatingSubtract(to.files, from.files)};
}

void add(Node& node, const Counts& change) {
  node.size = std::max<Bytes>(0, saturatingAdd(node.size, change.size));
  if (node.isDirectory)
    node.fileCount = std::max<std::int64_t>(0, saturatingAdd(node.fileCount, change.files));
}

bool isBelow(std::string_view path, std::string_view folder) {
  return path != folder && isAtOrBelow(path, folder);
}

// Changes the listing of a folder above `path`. `isGone`: the item itself leaves the listing of its folder.
void change(Node& listing, const std::string& folder, const std::string& path, const Counts& by,
            bool isGone) {
  add(listing, by);
  std::string_view rest{path};
  rest.remove_prefix(Paths::join(folder, "").size());
  const std::string_view name = rest.substr(0, rest.find('/'));
  const auto child = std::ranges::find(listing.children, name, &Node::name);
  if (child == listing.children.end()) return;
  if (isGone && name == rest) {
    listing.children.erase(child);
  } else {
    add(*child, by);
  }
}

}  // namespace

void BrowseTree::setScan(Snapshot scan) {
  scan_ = std::make_shared<Snapshot>(std::move(scan));
  isShared_ = false;
  listings_.clear();
}

std::shared_ptr<const Snapshot> BrowseTree::share() {
  isShared_ = true;
  return scan_;
}

Snapshot& BrowseTree::changeable() {
  if (std::exchange(isShared_, false)) scan_ = std::make_shared<Snapshot>(*scan_);
  return *scan_;
}

BrowseTree::Folder BrowseTree::folder(const std::string& path) const {
  const auto listing = listings_.find(path);
  if (listing != listings_.end()) return {.node = &listing->second, .isComplete = true};
  return {.node = scan_->nodeAt(path)};
}

void BrowseTree::keepListing(const std::string& path, Node listing) {
  constexpr std::size_t mostRows = 50'000;
  std::size_t rows = listing.children.size();
  for (const auto& [_, other] : listings_) rows += other.children.size();
  if (rows > mostRows) listings_.clear();
  for (Node& child : listing.children) child.children.clear();
  listings_.insert_or_assign(path, std::move(listing));
}

const Node* BrowseTree::itemAt(const std::string& path) const {
  if (const Node* node = scan_->nodeAt(path)) return node;
  const auto listing = listings_.find(Paths::parent(path));
  if (listing == listings_.end()) return nullptr;
  const auto& children = listing->second.children;
  const auto child = std::ranges::find(children, Paths::lastComponent(path), &Node::name);
  return child == children.end() ? nullptr : &*child;
}

void BrowseTree::put(const Measured& item) {
  const Node* known = itemAt(item.path);
  const bool isGone = !item.exists;
  if (known == nullptr || (item.exists && !item.tree)) {
    putInto(changeable(), item);
    return;
  }
  const Counts by = difference(countsOf(*known), isGone ? Counts{} : countsOf(*item.tree));
  if (scan_->nodeAt(item.path) != nullptr) {
    putInto(changeable(), item);
  } else {
    std::string above = Paths::parent(item.path);
    while (!changeable().addUnlisted(above, by.size, by.files) && above != "/") above = Paths::parent(above);
  }
  for (auto& [folder, listing] : listings_) {
    if (isBelow(item.path, folder)) change(listing, folder, item.path, by, isGone);
  }
  forgetBelow(item.path);
}

void BrowseTree::putFolder(const std::string& path, Node tree) {
  put({.path = path, .exists = true, .tree = std::move(tree)});
}

void BrowseTree::forgetBelow(const std::string& path) {
  std::erase_if(listings_, [&](const auto& each) { return isAtOrBelow(each.first, path); });
}

}  // namespace spacemint::ctl
