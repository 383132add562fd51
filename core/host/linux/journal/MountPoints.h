#pragma once

#include "core/host/FileHandle.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// What is mounted below a folder, and when that changes: no watch on a folder tells of it. One thread.
class MountPoints {
 public:
  MountPoints() = default;
  /// `root` is an absolute path without links.
  explicit MountPoints(std::string root);

  /// Becomes ready (POLLPRI) when something is mounted or unmounted anywhere; -1 where that is not told.
  int descriptor() const { return table_.get(); }
  /// True once after every change. Never blocks.
  bool haveChanged() const;
  /// Reads the table again; the paths, relative to the root, at which something came or went.
  std::vector<std::string> refresh();
  bool empty() const { return paths_.empty(); }
  bool contains(std::string_view relativePath) const { return paths_.contains(relativePath); }

 private:
  std::string root_;
  FileHandle table_;
  std::set<std::string, std::less<>> paths_;
};

}  // namespace spacemint
