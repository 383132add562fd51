#pragma once

#include "core/host/FolderListing.h"

#include <cstddef>
#include <span>
#include <vector>

namespace spacemint {

/// A copy of a batch that does not refer to the listing buffer any more. Small copies keep their memory for
/// the next batch. One thread at a time.
class KeptEntries {
 public:
  KeptEntries() = default;
  // A copy would refer to the names of the original.
  KeptEntries(KeptEntries&&) = default;
  KeptEntries& operator=(KeptEntries&&) = default;

  /// What `entries` returns afterwards, in the same order.
  void assign(std::span<const Entry> entries) {
    entries_.assign(entries.begin(), entries.end());
    std::size_t length = 0;
    for (const Entry& entry : entries_) length += entry.name.size() + 1;
    names_.resize(length);
    char* at = names_.data();
    for (Entry& entry : entries_) {
      entry.name.copy(at, entry.name.size());
      at[entry.name.size()] = '\0';
      entry.name = {at, entry.name.size()};
      at += entry.name.size() + 1;
    }
  }

  void clear() {
    if (bytes() > mostKeptBytes) return static_cast<void>(*this = {});
    entries_.clear();
    names_.clear();
  }

  bool empty() const { return entries_.empty(); }
  std::span<const Entry> entries() const { return entries_; }
  /// The memory that the entries and their names take.
  std::size_t bytes() const { return entries_.size() * sizeof(Entry) + names_.size(); }

 private:
  static constexpr std::size_t mostKeptBytes = 8'192;

  std::vector<Entry> entries_;
  std::vector<char> names_;
};

}  // namespace spacemint
