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

/// Facts about the file or folder of an open handle, independent of its path.
struct HandleFacts {
  Mounted mounted;
  std::uint64_t inode = 0;
  mode_t mode = 0;
  /// The number of hard links.
  std::uint32_t links = 0;
  /// Allocated bytes on the disk.
  Bytes allocated = 0;

  FileIdentity identity() const { return {mounted.device, inode}; }
};

/// The facts of an open file or folder. Fails with an errno. Any thread.
std::expected<HandleFacts, int> factsOf(const FileHandle& handle);

/// The facts of the entry `name` of an open folder. Does not follow a symbolic link. Fails with an errno.
std::expected<HandleFacts, int> factsOf(const FileHandle& folder, const char* name);

/// The facts of the file behind a link of an open folder below /proc, such as "fd/3". Does not ask a file
/// server. Fails with an errno.
std::expected<HandleFacts, int> factsBehind(const FileHandle& folder, const char* link);

/// The absolute path of an open folder without symbolic links, spelled as in the kernel's mount table; empty
/// if the kernel does not report it.
std::string realPathOf(const FileHandle& folder);

}  // namespace spacemint
