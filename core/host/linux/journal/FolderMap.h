#pragma once

#include "core/host/linux/LinuxFolderListing.h"
#include "core/host/linux/journal/IndexTable.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The tree of folders below a root as a recorder knows it, with the sizes of all folders: 72 bytes for each
/// folder, and all names in one string. Finds a folder by parent and name, or by watch. It does not access
/// the disk. One thread at a time.
class FolderMap {
 public:
  using Id = std::uint32_t;
  static constexpr Id none = IndexTable::none;

  enum Flag : std::uint16_t {
    alive = 1,
    /// Moved out of its parent, and not found at another place yet.
    detached = 2,
    /// Not watched; what is below is not known.
    unwatched = 4,
    /// Not verified against the disk; counts as changed.
    stale = 8,
    /// Its entries cannot be read, or only some of them.
    unreadable = 16,
    /// The folder's own size is known, and no event has been handled since it was listed.
    measured = 32,
    /// What the last listing found (`FolderSum`).
    worktree = 64,
    linked = 128,
    /// Listed soon after a change, so that the file system may still change the sizes.
    settling = 256,
  };
  static constexpr unsigned unknown = unwatched | stale | unreadable;

  /// Bytes and files. Sums and differences wrap around, so that a folder that leaves takes away exactly what
  /// it brought.
  struct Size {
    std::uint64_t bytes = 0;
    std::uint32_t files = 0;

    Size operator+(Size other) const { return {bytes + other.bytes, files + other.files}; }
    Size operator-(Size other) const { return {bytes - other.bytes, files - other.files}; }
    bool operator==(const Size&) const = default;
  };

  struct Record {
    Id parent = none;
    Id firstChild = none;
    Id next = none;
    Id previous = none;
    std::uint32_t nameAt = 0;
    std::uint16_t nameLength = 0;
    std::uint16_t flags = 0;
    /// The watch number; 0 when there is none, because the kernel never uses 0.
    int watch = 0;
    std::uint32_t generation = 0;
    /// Stamps (`EventClock`) of the last change of the folder's own entries, and of its tree as a whole.
    std::uint64_t ownChange = 0;
    std::uint64_t treeChange = 0;
    // Two `Size`s, without the padding.
    std::uint64_t ownBytes = 0;
    std::uint64_t treeBytes = 0;
    std::uint32_t ownFiles = 0;
    std::uint32_t treeFiles = 0;

    /// Of the entries of the folder itself; what the last listing found.
    Size own() const { return {ownBytes, ownFiles}; }
    /// Of everything at and below the folder: always the sum of `own` and of the subfolders' trees.
    Size tree() const { return {treeBytes, treeFiles}; }

    void set(Flag flag, bool isSet) {
      flags = static_cast<std::uint16_t>(isSet ? flags | flag : flags & ~flag);
    }
  };

  /// Forgets all folders and begins with a root.
  Id reset();

  Id root() const { return root_; }
  Record& operator[](Id id) { return records_[id]; }
  const Record& operator[](Id id) const { return records_[id]; }
  std::string_view nameOf(Id id) const { return nameOf(records_[id]); }
  FolderRef refTo(Id id) const { return {id, records_[id].generation}; }
  /// The folder, or `none` when it was removed.
  Id find(FolderRef ref) const;
  /// The folder with this name, or `none`.
  Id child(Id parent, std::string_view name) const;
  /// The folder with this watch, or `none`.
  Id withWatch(int watch) const;

  Id add(Id parent, std::string_view name, std::uint16_t flags = 0);
  void setWatch(Id id, int watch);
  void dropWatch(Id id);
  /// Sets the folder's own size and adds the difference to its tree and to all trees above.
  void setOwn(Id id, Size own);
  /// Removes a folder with everything below it from its parent. `attach` puts it into another one.
  void detach(Id id);
  void attach(Id id, Id parent, std::string_view name);
  /// Forgets a folder with everything below it. Returns the watches that were on these folders.
  std::vector<int> remove(Id top);

  bool isDetached(Id id) const { return (records_[id].flags & detached) != 0; }
  /// Whether the folder is `above` or somewhere below it.
  bool isWithin(Id id, Id above) const;
  /// The names from the root down, joined with "/"; absent for a folder in a detached tree.
  std::optional<std::string> relativePath(Id id) const;

  /// Calls `visit(id, record)` for every folder, in no particular order.
  template <class Visit>
  void forEach(Visit visit) const {
    for (Id id = 0; id < records_.size(); ++id) {
      if ((records_[id].flags & alive) != 0) visit(id, records_[id]);
    }
  }
  void clearFlag(Flag flag);

  std::size_t size() const { return alive_; }
  std::size_t watches() const { return watches_; }
  /// Bytes held, including unused space.
  std::size_t memory() const;

 private:
  std::string_view nameOf(const Record& record) const {
    return {names_.data() + record.nameAt, record.nameLength};
  }
  static std::size_t hashOfName(Id parent, std::string_view name);
  static std::size_t hashOfWatch(int watch);
  auto nameHash() const;
  auto watchHash() const;
  void setName(Record& record, std::string_view name);
  void compactNames();
  void addToTrees(Id id, Size difference);
  void link(Id id, Id parent);
  void unlink(Id id);

  std::deque<Record> records_;  // a vector would reserve up to twice the memory
  std::vector<Id> free_;
  std::string names_;
  std::size_t unusedNames_ = 0;
  IndexTable byName_;
  IndexTable byWatch_;
  Id root_ = none;
  std::size_t alive_ = 0;
  std::size_t watches_ = 0;
};

}  // namespace spacemint
