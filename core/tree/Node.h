#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A measured folder or file. A value type; a node owns its children.
///
/// A folder's `size` and `fileCount` include everything below the folder, also items too small to be kept in
/// `children`. `children` are sorted by `size`, largest first; equal sizes keep their order.
struct Node {
  /// The largest depth of a tree. The limit bounds the stack that recursive operations (comparing, copying,
  /// freeing) use.
  static constexpr std::size_t maximumDepth = 10'000;

  /// The name as the file system lists it; for the root of a tree, the full path of the scanned folder.
  std::string name;
  /// Bytes allocated on disk.
  Bytes size = 0;
  bool isDirectory = false;
  /// When the content last changed, in whole seconds; files only.
  std::optional<Date> modified;
  std::vector<Node> children;
  /// The number of items below a folder, at any depth, that are not folders; 0 for a file.
  std::int64_t fileCount = 0;
  /// True for a folder with a regular file ".git" directly in it.
  bool isWorktree = false;

  /// The size in bytes of everything too small to be kept in `children`; never negative.
  Bytes unlistedSize() const;

  /// The child whose name has exactly these bytes; otherwise the first child whose name is canonically equal;
  /// otherwise null.
  const Node* child(std::string_view childName) const;

  bool operator==(const Node&) const = default;
};

/// Sorts by size, largest first; equal sizes keep their order.
void sortBySize(std::vector<Node>& nodes);

}  // namespace spacemint
