#pragma once

#include "core/host/VolumeTable.h"
#include "core/host/linux/MountTable.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// What is found at a mount point.
struct MountTop {
  /// Differs from the line's id if a later mount covers this one.
  std::uint64_t mountId = 0;
  FileIdentity identity;
  bool isFolder = false;
};

/// What `volumesOf` needs to know besides the mount table.
struct MountSurroundings {
  /// The file system types that keep their data on this computer's disks (`localTypes`).
  std::set<std::string, std::less<>> localTypes;
  /// The home folder, an absolute path.
  std::string home;
  /// Looks at a mount point. Only called for lines where that cannot block.
  std::function<std::optional<MountTop>(const Mount&)> topOf;
};

/// The volumes in a mount table, the one with the home folder first. Without `isRemovable`; `name` is empty
/// where a label is needed. Pure.
std::vector<Volume> volumesOf(const std::vector<Mount>& mounts, const MountSurroundings& surroundings);

/// The types that need a disk in the text of /proc/filesystems, without those of read-only images.
std::set<std::string, std::less<>> localTypes(std::string_view fileSystems);

/// True for file systems that depend on another computer or on a process.
bool isRemote(std::string_view fileSystem);

/// The mount that holds `path`, an absolute path without links, by the text of the table. Null if none does.
const Mount* holderOf(std::string_view path, const std::vector<Mount>& mounts);

}  // namespace spacemint
