#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A line of the kernel's mount table.
struct Mount {
  std::uint64_t id = 0;
  std::uint64_t device = 0;
  /// The folder of the file system that is mounted.
  std::string root;
  std::string mountPoint;
  bool isWritable = false;
  std::string fileSystem;
  std::string source;
};

/// Parses the text of /proc/self/mountinfo. Lines with an unknown format are left out.
std::vector<Mount> parseMountTable(std::string_view text);

/// The current mounts; empty if the table cannot be read. Any thread.
std::vector<Mount> currentMounts();

/// Whether the path is the folder or is below it. Both are absolute and have no links.
bool isAtOrBelow(std::string_view path, std::string_view folder);

/// The mount points below a folder, as a tree of names. A scan looks up each name on its way down, so folders
/// without mounts below cost nothing.
struct MountTree {
  bool isMountPoint = false;
  std::map<std::string, std::unique_ptr<MountTree>, std::less<>> below;

  const MountTree* child(std::string_view name) const;
};

/// The mounts strictly below the folder at `root`, an absolute path without links.
MountTree mountsBelow(std::string_view root, const std::vector<Mount>& mounts);

}  // namespace spacemint
