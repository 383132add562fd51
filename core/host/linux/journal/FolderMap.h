#pragma once

#include "core/host/linux/journal/IndexTable.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The folders below a root as a recorder knows them: 48 bytes each, their names in one piece of memory,
/// found by parent and name or by watch. It knows nothing of the disk.
class FolderMap {
 public:
  using Id = std::uint32_t;
  static constexpr Id none = IndexTable::none;

  /// A folder that may be gone by the time one comes back to it.
  struct Ref {
    Id id = none;
    std::uint32_t generation = 0;

    auto operator<=>(const Ref&) const = default;
  };

  enum Flag : std::uint16_t {
    alive = 1,
    /// Taken out of its place and not yet found elsewhere.
    detached = 2,
    /// Nothing is known of what is below.
    unwatched = 4,
    /// May be another folder than the disk has there by now.
    stale = 8,
    /// Its entries cannot all be read.
    unreadable = 16,
  };

  struct Record {
    Id parent = none;
    Id firstChild = none;
    Id next = none;
    Id previous = none;
    std::uint32_t nameAt = 0;
    std::uint16_t nameLength = 0;
    std::uint16_t flags = 0;
    /// The watch descriptor; 0 for none, which the kernel never gives out.
    int watch = 0;
    std::uint32_t generation = 0;
    /// Event ids of the last change among the folder's own entries, and of its tree as a whole.
    std::uint64_t ownChange = 0;
    std::uint64_t treeChange = 0;
  };

  /// Forgets everything and begins with the root.
  Id reset();

  Id root() const { return root_; }
  Record& operator[](Id id) { return records_[id]; }
  const Record& operator[](Id id) const { return records_[id]; }
  std::string_view nameOf(Id id) const { return nameOf(records_[id]); }
  Ref refTo(Id id) const { return {id, records_[id].generation}; }
  /// The folder meant, or `none` when it is gone.
  Id find(Ref ref) const;
  Id child(Id parent, std::string_view name) const;
  Id withWatch(int watch) const;

  Id add(Id parent, std::string_view name, std::uint16_t flags = 0);
  void setWatch(Id id, int watch);
  void dropWatch(Id id);
  /// Takes a folder with all below it out of its place; `attach` gives it one again.
  void detach(Id id);
  void attach(Id id, Id parent, std::string_view name);
  /// Forgets a folder with all below it, and tells the watches that were on them.
  std::vector<int> remove(Id id);

  bool isDetached(Id id) const { return (records_[id].flags & detached) != 0; }
  /// Whether the folder is `above` or somewhere below it.
  bool isWithin(Id id, Id above) const;
  /// The names from the root down, joined with "/"; absent for a folder without a place.
  std::optional<std::string> relativePath(Id id) const;

  /// Calls `visit(id, record)` for every folder, in no order.
  template <class Visit>
  void forEach(Visit visit) {
    for (Id id = 0; id < records_.size(); ++id) {
      if ((records_[id].flags & alive) != 0) visit(id, records_[id]);
    }
  }

  std::size_t size() const { return alive_; }
  std::size_t watches() const { return watches_; }
  /// Bytes held, unused room included.
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
  void link(Id id, Id parent);
  void unlink(Id id);

  std::deque<Record> records_;  // grows without moving what it has, and without room for twice as much
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
