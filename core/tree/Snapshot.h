#pragma once

#include "core/tree/Coverage.h"
#include "core/tree/FileItem.h"
#include "core/tree/Node.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spacemint {

/// The conditions under which a new scan may reuse parts of a stored scan.
struct SeedRequirements {
  std::string_view root;
  Bytes minNodeSize = 0;
  Date now;
  std::chrono::seconds fullScanInterval{0};
  std::vector<std::string> excludes = {};
};

/// A finished scan: the tree of folders and files, and when and how it was made. A value type; sizes are in
/// bytes.
///
/// Paths are compared under Unicode canonical equivalence. A path given without `Paths::dataVolume` is also
/// found in a tree whose root is on that volume.
struct Snapshot {
  static constexpr std::int64_t currentFormat = 3;

  /// When the scan finished. The history stores the scan under this date.
  Date date;
  Seconds duration{0};
  /// `root.name` is the path of the scanned folder.
  Node root;
  std::int64_t fileCount = 0;
  Bytes volumeFree = 0;
  Bytes volumeTotal = 0;
  /// Files and folders smaller than this are not kept as children, except folders with `manyFiles`.
  Bytes minNodeSize = 0;
  /// The change journal's event id at the start of the scan.
  std::optional<std::uint64_t> eventID;
  /// When the last full scan, on which this tree is based, started.
  std::optional<Date> fullScanDate;
  std::optional<std::int64_t> format = currentFormat;
  Coverage coverage = {};
  /// Present if the scan was stopped before its end: the part of the expected bytes that it measured, from 0
  /// to 1; 0 if unknown. Such a scan is not stored, and no other is compared with it.
  std::optional<double> measuredPart = {};

  const std::string& rootPath() const { return root.name; }

  /// The path as the tree stores it: with `Paths::dataVolume` in front where needed.
  std::string resolve(std::string_view path) const;

  /// The names on the way from the root to `path`; empty for the root, absent if `path` is not below the
  /// root.
  std::optional<std::vector<std::string>> components(std::string_view path) const;

  /// The node at `path`; null if the path is outside the tree or the item was too small to be kept. The
  /// pointer is valid until the next edit.
  const Node* nodeAt(std::string_view path) const;

  /// The size of every node, by the node's full path.
  std::unordered_map<std::string, Bytes> flattened() const;

  /// The `limit` largest files in the tree, largest first; equal sizes in tree order.
  std::vector<FileItem> largestFiles(std::size_t limit) const;

  bool canSeedIncrementalScan(const SeedRequirements& requirements) const;

  /// Replaces the node at `path` with `node`, but keeps the old node's name. Removes the old node instead if
  /// the new one is too small to be kept. Updates all ancestors. Returns false and changes nothing if
  /// `path` is the root or has no node.
  bool replace(std::string_view path, Node node);

  /// Like `replace` if there is a node at `path`. Otherwise inserts `node` if its parent is in the tree and
  /// `node` is large enough to be kept; returns false if not.
  bool upsert(std::string_view path, Node node);

  /// Removes the node at `path` and subtracts its size and file count from all ancestors. Returns false and
  /// changes nothing if `path` is the root or has no node.
  bool remove(std::string_view path);

  /// Adds bytes and files, either may be negative, to the folder at `path` and to all its ancestors: for
  /// items in it that are too small to have a node. Returns false and changes nothing if `path` has no node.
  bool addUnlisted(std::string_view path, Bytes bytes, std::int64_t files);

  /// Makes the scan one that leaves out the item at `path`, because of a new last pattern. Returns false and
  /// changes nothing if `path` is the root or has no node.
  bool leaveOut(std::string_view path, std::string pattern);

  bool operator==(const Snapshot&) const = default;
};

}  // namespace spacemint
