#pragma once

#include <cstdint>
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

}  // namespace spacemint
