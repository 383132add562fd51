#include "core/host/linux/journal/FolderMap.h"

#include <functional>

namespace spacemint {

namespace {

// Unused names are removed when they take more bytes than this and more than half of the string.
constexpr std::size_t unusedNameLimit = 1 << 16U;

std::size_t mixed(std::uint64_t bits) {
  bits *= 0x9E3779B97F4A7C15U;
  return bits ^ (bits >> 32U);
}

}  // namespace

std::size_t FolderMap::hashOfName(Id parent, std::string_view name) {
  return mixed(std::hash<std::string_view>{}(name) + std::uint64_t{parent} * 0xC2B2AE3D27D4EB4FU);
}

std::size_t FolderMap::hashOfWatch(int watch) {
  return mixed(static_cast<std::uint32_t>(watch));
}

auto FolderMap::nameHash() const {
  return [this](Id id) { return hashOfName(records_[id].parent, nameOf(records_[id])); };
}

auto FolderMap::watchHash() const {
  return [this](Id id) { return hashOfWatch(records_[id].watch); };
}

FolderMap::Id FolderMap::reset() {
  *this = {};
  records_.push_back({.flags = alive});
  alive_ = 1;
  root_ = 0;
  return root_;
}

FolderMap::Id FolderMap::find(FolderRef ref) const {
  if (ref.id >= records_.size()) return none;
  const Record& record = records_[ref.id];
  return (record.flags & alive) != 0 && record.generation == ref.generation ? ref.id : none;
}

FolderMap::Id FolderMap::child(Id parent, std::string_view name) const {
  return byName_.find(hashOfName(parent, name),
                      [&](Id id) { return records_[id].parent == parent && nameOf(records_[id]) == name; });
}

FolderMap::Id FolderMap::withWatch(int watch) const {
  return byWatch_.find(hashOfWatch(watch), [&](Id id) { return records_[id].watch == watch; });
}

FolderMap::Id FolderMap::add(Id parent, std::string_view name, std::uint16_t flags) {
  Id id = static_cast<Id>(records_.size());
  if (free_.empty()) {
    records_.emplace_back();
  } else {
    id = free_.back();
    free_.pop_back();
  }
  Record& record = records_[id];
  record = {.flags = static_cast<std::uint16_t>(flags | alive), .generation = record.generation};
  setName(record, name);
  link(id, parent);
  byName_.insert(id, nameHash());
  ++alive_;
  return id;
}

void FolderMap::setWatch(Id id, int watch) {
  dropWatch(id);
  Record& record = records_[id];
  record.watch = watch;
  record.flags &= static_cast<std::uint16_t>(~unwatched);
  byWatch_.insert(id, watchHash());
  ++watches_;
}

void FolderMap::dropWatch(Id id) {
  if (records_[id].watch == 0) return;
  byWatch_.erase(id, watchHash());
  records_[id].watch = 0;
  --watches_;
}

void FolderMap::setOwn(Id id, Size own) {
  Record& record = records_[id];
  const Size difference = own - record.own();
  record.ownBytes = own.bytes;
  record.ownFiles = own.files;
  if (difference != Size{}) addToTrees(id, difference);
}

void FolderMap::addToTrees(Id id, Size difference) {
  for (; id != none; id = records_[id].parent) {
    records_[id].treeBytes += difference.bytes;
    records_[id].treeFiles += difference.files;
  }
}

void FolderMap::clearFlag(Flag flag) {
  for (Record& record : records_) record.flags &= static_cast<std::uint16_t>(~flag);
}

void FolderMap::detach(Id id) {
  byName_.erase(id, nameHash());
  addToTrees(records_[id].parent, Size{} - records_[id].tree());
  unlink(id);
  records_[id].parent = none;
  records_[id].flags |= detached;
}

void FolderMap::attach(Id id, Id parent, std::string_view name) {
  Record& record = records_[id];
  record.flags &= static_cast<std::uint16_t>(~detached);
  unusedNames_ += record.nameLength;
  setName(record, name);
  link(id, parent);
  byName_.insert(id, nameHash());
}

std::vector<int> FolderMap::remove(Id top) {
  if (!isDetached(top)) detach(top);
  std::vector<int> watches;
  std::vector<Id> pending{top};
  while (!pending.empty()) {
    const Id id = pending.back();
    pending.pop_back();
    for (Id below = records_[id].firstChild; below != none; below = records_[below].next) {
      pending.push_back(below);
    }
    if (id != top) byName_.erase(id, nameHash());
    if (records_[id].watch != 0) watches.push_back(records_[id].watch);
    dropWatch(id);
    unusedNames_ += records_[id].nameLength;
    records_[id].flags = 0;
    ++records_[id].generation;
    free_.push_back(id);
    --alive_;
  }
  return watches;
}

bool FolderMap::isWithin(Id id, Id above) const {
  while (id != above && id != none) id = records_[id].parent;
  return id == above;
}

std::optional<std::string> FolderMap::relativePath(Id id) const {
  std::vector<Id> chain;
  for (; id != root_; id = records_[id].parent) {
    if (id == none) return std::nullopt;
    chain.push_back(id);
  }
  std::string path;
  while (!chain.empty()) {
    if (!path.empty()) path += '/';
    path += nameOf(chain.back());
    chain.pop_back();
  }
  return path;
}

std::size_t FolderMap::memory() const {
  return records_.size() * sizeof(Record) + free_.capacity() * sizeof(Id) + names_.capacity() +
         byName_.memory() + byWatch_.memory();
}

void FolderMap::setName(Record& record, std::string_view name) {
  const std::string own{name};  // `name` may point into `names_`, which may move
  record.nameLength = 0;
  if (unusedNames_ > unusedNameLimit && unusedNames_ * 2 > names_.size()) compactNames();
  record.nameAt = static_cast<std::uint32_t>(names_.size());
  record.nameLength = static_cast<std::uint16_t>(own.size());
  names_ += own;
}

void FolderMap::compactNames() {
  std::string kept;
  kept.reserve(names_.size() - unusedNames_ + unusedNameLimit);
  for (Record& record : records_) {
    if ((record.flags & alive) == 0) continue;
    const auto at = static_cast<std::uint32_t>(kept.size());
    kept += nameOf(record);
    record.nameAt = at;
  }
  names_ = std::move(kept);
  unusedNames_ = 0;
}

void FolderMap::link(Id id, Id parent) {
  Record& record = records_[id];
  record.parent = parent;
  record.previous = none;
  record.next = records_[parent].firstChild;
  if (record.next != none) records_[record.next].previous = id;
  records_[parent].firstChild = id;
  addToTrees(parent, record.tree());
}

void FolderMap::unlink(Id id) {
  const Record& record = records_[id];
  if (record.previous != none) {
    records_[record.previous].next = record.next;
  } else if (record.parent != none) {
    records_[record.parent].firstChild = record.next;
  }
  if (record.next != none) records_[record.next].previous = record.previous;
}

}  // namespace spacemint
