#pragma once

#include "core/host/FolderListing.h"
#include "core/scan/Excludes.h"
#include "core/scan/ScanManner.h"
#include "core/tree/Coverage.h"
#include "core/tree/Node.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace spacemint {

/// Measures folder trees. No other code walks the disk to measure sizes.
///
/// A scan counts the bytes allocated on disk, follows no symbolic links and stays on the root's volume; below
/// `wholeDisk` it enters all volumes of this computer (`hostFolderListing`). A file with several hard links
/// counts its share at each name. Any thread; several scans may run at the same time. Counts saturate at the
/// largest 64-bit number.
namespace DiskScanner {

struct Progress {
  /// Entries counted so far that are not folders, including those of reused subtrees.
  std::int64_t files = 0;
  Bytes bytes = 0;
};

struct Result {
  /// `root.name` is `Arguments::root`, unchanged.
  Node root;
  std::int64_t fileCount = 0;
  Coverage coverage;
  /// The folders that `Arguments::reuse` measured.
  std::unordered_set<std::string> reusedFolders = {};

  bool operator==(const Result&) const = default;
};

/// A scan that has not ended, as far as it got. Valid only during the call of `Arguments::look`.
class Unfinished {
 public:
  Unfinished() = default;
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  /// The folder at `path` with its children in any order, but without what is below these. A folder that the
  /// walk has not reached yet is empty. Absent if the walk has not found this folder, or found it too small
  /// to keep.
  virtual std::optional<Node> folder(std::string_view path) const = 0;
  virtual Progress counted() const = 0;
  /// The folder that the walk is in.
  virtual std::string_view path() const = 0;
  /// Everything measured so far, as if the scan ended here; without the folders that it has not reached.
  virtual Result soFar() const = 0;

 protected:
  ~Unfinished() = default;
};

/// Returns an earlier scan's measurement of the folder at a full path, which the scan copies, or null if the
/// folder must be walked. Several threads call it at once.
using Reuse = std::function<const Node*(const std::string& path)>;

struct Arguments {
  std::string root;
  /// Files and folders smaller than this (in bytes) get no node of their own, except folders with
  /// `manyFiles`; the parent folder includes their bytes.
  Bytes minNodeSize = 0;
  /// Full paths of folders that the scan neither opens nor counts.
  std::unordered_set<std::string> skip;
  /// What the scan neither lists nor counts, but reports as left out. May be null; must outlive the call.
  const Excludes* excludes = nullptr;
  /// Called, perhaps repeatedly, for every subfolder before the scan opens it. May be empty.
  Reuse reuse;
  /// Called before each folder. The manner at the start decides the priority of the calling thread during the
  /// scan; the number of threads follows the manner as it changes.
  MannerNow manner = always(ScanManner::foreground);
  /// Called once per `entriesPerPoll` listed entries; true cancels the scan. May be empty.
  std::function<bool()> shouldCancel;
  /// Called as often as `shouldCancel`, and once at the end. May be empty.
  std::function<void(const Progress&)> progress;
  /// Called before `shouldCancel`, as often, and before a folder if `lookInterval` has passed. May be empty.
  std::function<void(const Unfinished&)> look;
  std::chrono::milliseconds lookInterval{250};
  /// How many entries of the root itself get a node although they are smaller than `minNodeSize`.
  std::size_t smallEntriesOfRoot = 0;
  /// The source of the entries; null means the host's listing. Must outlive the call.
  FolderListing* listing = nullptr;
};

inline constexpr std::int64_t entriesPerPoll = 4'096;

/// Walks the tree below `root`. Absent if the root cannot be opened as a folder or the scan was cancelled.
/// Blocks until the walk ends, and calls all callbacks but `reuse` on the calling thread only.
std::optional<Result> scan(const Arguments& arguments);

}  // namespace DiskScanner

}  // namespace spacemint
