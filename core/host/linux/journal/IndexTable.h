#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace spacemint {

/// An open-addressing hash index of 32-bit record numbers with linear probing. The keys stay in the records;
/// the caller supplies hash and equality. One thread at a time.
class IndexTable {
 public:
  static constexpr std::uint32_t none = ~std::uint32_t{0};

  IndexTable() { clear(); }

  void clear() {
    slots_.assign(16, none);
    used_ = 0;
  }

  /// The record with this hash for which `matches(record)` is true, or `none`.
  template <class Matches>
  std::uint32_t find(std::size_t hash, Matches matches) const {
    for (std::size_t at = hash & mask(); slots_[at] != none; at = next(at)) {
      if (matches(slots_[at])) return slots_[at];
    }
    return none;
  }

  /// Adds a record that is not in the table. `hashOf(record)` returns the hash of any record in the table.
  template <class HashOf>
  void insert(std::uint32_t record, HashOf hashOf) {
    if ((used_ + 1) * 10 > slots_.size() * 7) grow(hashOf);
    place(record, hashOf(record));
    ++used_;
  }

  /// Removes a record. Its key must not have changed since it was inserted.
  template <class HashOf>
  void erase(std::uint32_t record, HashOf hashOf) {
    std::size_t hole = hashOf(record) & mask();
    while (slots_[hole] != record) {
      if (slots_[hole] == none) return;
      hole = next(hole);
    }
    // Later records move into the hole when their search passes it, so that the hole does not end a search
    // early.
    for (std::size_t at = next(hole); slots_[at] != none; at = next(at)) {
      const std::size_t home = hashOf(slots_[at]) & mask();
      if (((at - home) & mask()) < ((at - hole) & mask())) continue;
      slots_[hole] = slots_[at];
      hole = at;
    }
    slots_[hole] = none;
    --used_;
  }

  /// Bytes held.
  std::size_t memory() const { return slots_.capacity() * sizeof(std::uint32_t); }

 private:
  std::size_t mask() const { return slots_.size() - 1; }
  std::size_t next(std::size_t at) const { return (at + 1) & mask(); }

  void place(std::uint32_t record, std::size_t hash) {
    std::size_t at = hash & mask();
    while (slots_[at] != none) at = next(at);
    slots_[at] = record;
  }

  template <class HashOf>
  void grow(HashOf hashOf) {
    std::vector<std::uint32_t> old(slots_.size() * 2, none);
    old.swap(slots_);
    for (const std::uint32_t record : old) {
      if (record != none) place(record, hashOf(record));
    }
  }

  std::vector<std::uint32_t> slots_;  // the size is a power of two
  std::size_t used_ = 0;
};

}  // namespace spacemint
