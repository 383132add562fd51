#pragma once

#include "core/host/FileHandle.h"
#include "core/host/Removal.h"

#include <sys/stat.h>

#include <cstdint>
#include <expected>
#include <string>

namespace spacemint {

/// The mount that something is on. Two mounts may show the same device, so both numbers count.
struct Mounted {
  std::uint64_t device = 0;
  std::uint64_t mountId = 0;

  bool operator==(const Mounted&) const = default;
};

/// The facts of an open handle, whatever stands at its path by now.
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

/// Fails with an errno.
std::expected<HandleFacts, int> factsOf(const FileHandle& handle);

/// The same of the entry `name` of an open folder; a link's own.
std::expected<HandleFacts, int> factsOf(const FileHandle& folder, const char* name);

/// The absolute path of an open folder without links, as the table of mounts spells it; empty where it cannot
/// be told.
std::string realPathOf(const FileHandle& folder);

}  // namespace spacemint
