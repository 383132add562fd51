#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// One measured folder or file. A value; children belong to their parent.
///
/// A folder's `size` and `fileCount` cover everything below it, also what was too small to be kept in
/// `children`. `children` are sorted by `size`, largest first, ties in their earlier order.
struct Node {
  /// The largest depth of a tree. It bounds the stack that recursion over a tree (comparing, copying,
  /// freeing) needs.
  static constexpr std::size_t maximumDepth = 10'000;

  /// The path component as the file system lists it; for the root of a tree the full path of the scan.
  std::string name;
  /// Bytes allocated on disk.
  Bytes size = 0;
  bool isDirectory = false;
  /// Content modification time in whole seconds; files only.
  std::optional<Date> modified;
  std::vector<Node> children;
  /// Non-folder entries anywhere below a folder; 0 for a file.
  std::int64_t fileCount = 0;
  /// True for a folder that directly contains a regular file named ".git".
  bool isWorktree = false;

  /// The size of everything too small to be kept in `children`; never negative.
  Bytes unlistedSize() const;

  /// The child with this name: the child of exactly these bytes, else the first canonically equal name.
  const Node* child(std::string_view childName) const;

  bool operator==(const Node&) const = default;
};

/// Sorts by size, largest first; equal sizes keep their order.
void sortBySize(std::vector<Node>& nodes);

}  // namespace spacemint
