#pragma once

#include "core/host/FileHandle.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>
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
  /// Reads the table again. Returns the mount points at which something was mounted or unmounted, relative to
  /// the root.
  std::vector<std::string> refresh();

 private:
  std::string root_;
  FileHandle table_;
  // The relative paths of the mount points, each with the ids of its mounts.
  std::set<std::pair<std::string, std::uint64_t>> mounts_;
};

}  // namespace spacemint
