#pragma once

#include "core/host/FolderListing.h"
#include "core/tree/Node.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace spacemint {

/// Measures folder trees. The only code that walks the disk for sizes.
///
/// It counts bytes allocated on disk, follows no symbolic link and stays on the root's volume. Scans share
/// nothing and may run at the same time on different threads. A count beyond 64 bits stays the largest
/// number.
namespace DiskScanner {

struct Progress {
  /// Non-folder entries counted so far, reused subtrees included.
  std::int64_t files = 0;
  Bytes bytes = 0;
};

/// What a scan could not read; the sizes are therefore lower bounds. A folder that vanished during the scan
/// does not count.
struct Unread {
  /// Folders that could not be opened or not be listed to their end.
  std::int64_t folders = 0;
  /// Entries whose facts could not be read.
  std::int64_t entries = 0;
  /// True when one of them failed for another reason than a missing permission: the next scan may be able to
  /// read it although nothing changed.
  bool hasFailures = false;
  /// The first `pathLimit` of their paths.
  std::vector<std::string> paths;

  static constexpr std::size_t pathLimit = 100;

  bool operator==(const Unread&) const = default;
};

struct Result {
  /// `root.name` is the root exactly as it was given.
  Node root;
  std::int64_t fileCount = 0;
  Unread unread;

  bool operator==(const Result&) const = default;
};

/// The measurement that an earlier scan has of the folder at a full path; absent where the folder must be
/// walked.
using Reuse = std::function<std::optional<Node>(const std::string& path)>;

struct Arguments {
  std::string root;
  /// Smaller files and folders do not become nodes; their bytes count in their folder.
  Bytes minNodeSize = 0;
  /// Full paths of folders to leave out, neither opened nor counted.
  std::unordered_set<std::string> skip;
  /// Asked for every subfolder before it is opened.
  Reuse reuse;
  /// Lets all other programs use the disk first, and lists with one thread only.
  bool throttleIO = false;
  /// Called once per `entriesPerPoll` listed entries; true abandons the walk.
  std::function<bool()> shouldCancel;
  /// Called at the same pace and once at the end.
  std::function<void(const Progress&)> progress;
  /// The source of the entries; null for the host's listing, read ahead where that is quicker. Must outlive
  /// the call.
  FolderListing* listing = nullptr;
};

inline constexpr std::int64_t entriesPerPoll = 4'096;

/// Walks the tree below `root`. Absent when the root cannot be opened as a folder or the walk was cancelled.
/// Runs and calls back on the calling thread.
std::optional<Result> scan(const Arguments& arguments);

}  // namespace DiskScanner

}  // namespace spacemint
