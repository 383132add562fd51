#pragma once

#include "core/host/FileHandle.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The mount points below a folder, and when they change. Watches on folders do not report mounts. One
/// thread.
class MountPoints {
 public:
  MountPoints() = default;
  /// `root` is an absolute path without links.
  explicit MountPoints(std::string root);

  /// Becomes ready (POLLPRI) when anything is mounted or unmounted; -1 when the system does not report it.
  int descriptor() const { return table_.get(); }
  /// True once after every change. Never blocks.
  bool haveChanged() const;
  /// Reads the table again. Returns the mount points that appeared or disappeared, relative to the root.
  std::vector<std::string> refresh();
  /// Whether nothing is mounted below the root.
  bool empty() const { return paths_.empty(); }
  bool contains(std::string_view relativePath) const { return paths_.contains(relativePath); }

 private:
  std::string root_;
  FileHandle table_;
  std::set<std::string, std::less<>> paths_;
};

}  // namespace spacemint
