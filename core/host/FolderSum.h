#pragma once

#include "core/base/Bytes.h"
#include "core/host/FolderListing.h"

#include <cstdint>

namespace spacemint {

/// The bytes that an entry adds to its folder: what it occupies on the disk, or its share of that if a file
/// has several hard links. Folders and entries that could not be read add nothing.
constexpr Bytes shareOf(const Entry& entry) {
  if (entry.error != 0 || entry.type == EntryType::folder) return 0;
  return entry.type == EntryType::file && entry.links >= 2 ? entry.allocated / entry.links : entry.allocated;
}

/// From so many files on, a folder is stored in a scan although it is small.
inline constexpr std::int64_t manyFiles = 10'000;

/// Whether a scan with this smallest size stores an item: a file has a count of 0.
constexpr bool isStored(Bytes size, std::int64_t fileCount, Bytes minNodeSize) {
  return size >= minNodeSize || fileCount >= manyFiles;
}

/// What the entries of one folder take, without its subfolders.
struct FolderSum {
  Bytes bytes = 0;
  /// The number of entries that are not folders.
  std::int64_t files = 0;
  /// True if there is a regular file ".git".
  bool isWorktree = false;
  /// True if a file has several hard links, so that its share can change through a name in another folder.
  bool hasLinks = false;

  void add(const Entry& entry) {
    if (entry.error != 0 || entry.type == EntryType::folder) return;
    bytes = saturatingAdd(bytes, shareOf(entry));
    ++files;
    if (entry.type != EntryType::file) return;
    if (entry.name == ".git") isWorktree = true;
    if (entry.links >= 2) hasLinks = true;
  }
};

}  // namespace spacemint
