#pragma once

#include "core/tree/FileItem.h"
#include "core/tree/Node.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spacemint {

/// What a stored scan must match before a new scan may reuse parts of it.
struct SeedRequirements {
  std::string_view root;
  Bytes minNodeSize = 0;
  Date now;
  std::chrono::seconds fullScanInterval{0};
};

/// One finished scan: the tree and the facts about it. A value.
///
/// Paths are compared under canonical equivalence, and a path given without the data volume finds its place
/// in a tree whose root lies on it. No operation fails with an error.
struct Snapshot {
  static constexpr std::int64_t currentFormat = 3;

  /// When the scan finished; the key under which it is stored.
  Date date;
  Seconds duration{0};
  /// `root.name` is the path that was scanned.
  Node root;
  std::int64_t fileCount = 0;
  Bytes volumeFree = 0;
  Bytes volumeTotal = 0;
  /// Smaller files and folders are not kept as children.
  Bytes minNodeSize = 0;
  /// The change journal's event id when the scan started.
  std::optional<std::uint64_t> eventID;
  /// Start of the last walk that reused nothing on which this tree rests.
  std::optional<Date> fullScanDate;
  std::optional<std::int64_t> format = currentFormat;

  const std::string& rootPath() const { return root.name; }

  /// The path in the form that the tree stores.
  std::string resolve(std::string_view path) const;

  /// The names that lead from the root to `path`; empty for the root, absent for a path outside the tree.
  std::optional<std::vector<std::string>> components(std::string_view path) const;

  /// The node at `path`, or null when it is outside the tree or was too small to be kept. Valid until the
  /// next edit.
  const Node* nodeAt(std::string_view path) const;

  /// Size of every node by its full path.
  std::unordered_map<std::string, Bytes> flattened() const;

  /// The largest kept files, largest first, equal sizes in tree order.
  std::vector<FileItem> largestFiles(std::size_t limit) const;

  bool canSeedIncrementalScan(const SeedRequirements& requirements) const;

  /// Puts `node` (under the name it has in the tree) in the place of the node at `path`, or drops that node
  /// when the new one is below `minNodeSize`. False and no change where there is no such node; the root
  /// cannot be replaced.
  bool replace(std::string_view path, Node node);

  /// Replaces the node at `path`, or inserts it under an existing folder when it is at least `minNodeSize`.
  bool upsert(std::string_view path, Node node);

  /// Removes the node at `path` with all that it counts for.
  bool remove(std::string_view path);

  bool operator==(const Snapshot&) const = default;
};

}  // namespace spacemint
