#pragma once

#include "core/base/Bytes.h"
#include "core/host/FolderListing.h"

#include <cstdint>
#include <string>
#include <vector>

namespace spacemint {

/// What a scan counted on one mount that it entered, without the mounts below. Sizes are in bytes.
struct CoveredPlace {
  ListedPlace place;
  Bytes size = 0;
  /// Allocated for the folders themselves, that is, for their tables of names, as of the last full scan; not
  /// part of `size`.
  Bytes folderBytes = 0;
  /// Of `size`, as of the last full scan: small files whose content lies in the file system's own data, where
  /// it takes less than their blocks.
  Bytes inlineBytes = 0;
  std::int64_t fileCount = 0;
  /// Of the volume, at the end of the scan; 0 if unknown.
  Bytes volumeTotal = 0;
  Bytes volumeFree = 0;

  bool operator==(const CoveredPlace&) const = default;
};

/// Items that a scan could not read; if there are any, the scan's sizes are lower bounds. Items that vanished
/// during the scan are not included.
struct Unread {
  /// Folders that could not be opened or listed to the end, or whose entries cannot be looked at.
  std::int64_t folders = 0;
  /// Entries whose size and type could not be read for another reason than a missing permission.
  std::int64_t entries = 0;
  /// True if at least one item failed for another reason than a missing permission. The next scan may then
  /// read the item although nothing on the disk changed. Not stored.
  bool hasFailures = false;
  /// The paths of the first `pathLimit` of these items.
  std::vector<std::string> paths;

  static constexpr std::size_t pathLimit = 1'000;

  /// Whether an item at or below `path` is in `paths`, so that the size of `path` is a lower bound.
  bool isAtOrBelow(std::string_view path) const;

  bool operator==(const Unread&) const = default;
};

/// What the user excluded from a scan.
struct ExcludedSum {
  std::int64_t items = 0;
  /// Those whose size was never measured.
  std::int64_t unknown = 0;
  /// The sum of the last known sizes, in bytes.
  Bytes size = 0;
};

/// What a scan covers, and what it had to leave out.
struct Coverage {
  /// The entered mounts, the one that holds the scan's root first; empty in scans of earlier versions.
  std::vector<CoveredPlace> places;
  /// By path.
  std::vector<LeftOut> leftOut;
  Unread unread;
  /// The patterns of what the user excluded (`Excludes::patterns`).
  std::vector<std::string> excludes;

  /// The place that holds `path`, an absolute path; null if unknown.
  const CoveredPlace* placeOf(std::string_view path) const;

  /// What is excluded below a folder, by its path in the tree.
  ExcludedSum excludedBelow(std::string_view folder) const;

  bool operator==(const Coverage&) const = default;
};

}  // namespace spacemint
