#pragma once

#include "core/host/FileHandle.h"
#include "core/host/Removal.h"

#include <sys/stat.h>

#include <cstdint>
#include <expected>
#include <string>

namespace spacemint {

/// Identifies a mount. Two mounts may show the same device, so both numbers count.
struct Mounted {
  std::uint64_t device = 0;
  std::uint64_t mountId = 0;

  bool operator==(const Mounted&) const = default;
};

/// The facts of the file or folder that a handle is open on, whatever is at its path now.
struct HandleFacts {
  Mounted mounted;
  std::uint64_t inode = 0;
  mode_t mode = 0;
  /// How many names the item has.
  std::uint32_t links = 0;
  /// Bytes on the disk.
  Bytes allocated = 0;

  FileIdentity identity() const { return {mounted.device, inode}; }
};

/// Any thread. Fails with an errno.
std::expected<HandleFacts, int> factsOf(const FileHandle& handle);

/// The facts of the entry `name` of an open folder. A link is not followed.
std::expected<HandleFacts, int> factsOf(const FileHandle& folder, const char* name);

/// The absolute path of an open folder without links, as the table of mounts spells it; empty when the system
/// does not say.
std::string realPathOf(const FileHandle& folder);

}  // namespace spacemint
