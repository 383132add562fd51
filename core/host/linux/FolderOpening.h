#pragma once

#include "core/host/linux/FileHandle.h"

#include <cstdint>
#include <expected>
#include <string>

namespace spacemint {

/// The mount that an open folder is on, told by its handle alone.
struct Mounted {
  std::uint64_t device = 0;
  std::uint64_t mountId = 0;

  bool operator==(const Mounted&) const = default;
};

/// Fails with an errno (`statx`).
std::expected<Mounted, int> mountedOn(const FileHandle& folder);

/// Opens a folder for listing, where it may without setting its access time; `parent` may be AT_FDCWD. On
/// failure the handle is empty and errno says why (`openat`).
FileHandle openFolder(int parent, const char* name);
/// The same for a name that must not be a symbolic link.
FileHandle openFolderItself(int parent, const char* name);

/// The way to an open handle through /proc, which leads to that very folder whatever its path is by now.
std::string pathThroughHandle(const FileHandle& folder);

/// The absolute path of an open folder without links, as the table of mounts spells it; empty where it cannot
/// be told.
std::string realPathOf(const FileHandle& folder);

}  // namespace spacemint
