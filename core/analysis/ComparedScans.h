#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace spacemint {

/// The children of a folder, by name. Make it only for folders that changed, which is much cheaper than one
/// map of a whole tree. Any thread; the folder outlives it.
class ChildrenByName {
 public:
  /// Without a folder there are no children.
  explicit ChildrenByName(const Node* folder);

  /// The child whose name has exactly these bytes; otherwise a child whose name is canonically equal;
  /// otherwise null.
  const Node* find(const std::string& name) const;

 private:
  std::unordered_map<std::string_view, const Node*> byName_;
  std::unordered_map<std::string, const Node*> byCanonicalName_;
};

/// The bytes that only the second of two scans could see, by the path of their folder and of all folders
/// above it: volumes that were not mounted at the first scan, and folders that it could not read. Any thread.
class Revealed {
 public:
  Revealed(const Snapshot& blind, const Snapshot& seeing);

  bool empty() const { return bytes_.empty(); }
  Bytes at(const std::string& path) const;
  /// Whether the first scan could not see anything in this folder.
  bool isRoot(const std::string& path) const { return roots_.contains(path); }
  /// The folders that could not be read, with the bytes in them.
  const std::vector<std::pair<std::string, Bytes>>& folders() const { return folders_; }

  /// The mount of another scan that shows the same folder at the same path; null if there is none. The
  /// numbers of volumes change when the computer starts.
  static const CoveredPlace* placeLike(const Snapshot& scan, const CoveredPlace& covered);

 private:
  void add(const std::string& path, Bytes size);

  std::string root_;
  std::unordered_map<std::string, Bytes> bytes_;
  std::unordered_set<std::string> roots_;
  std::vector<std::pair<std::string, Bytes>> folders_;
};

}  // namespace spacemint
