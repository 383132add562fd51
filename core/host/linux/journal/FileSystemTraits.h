#pragma once

#include "core/host/FileHandle.h"

#include <cstdint>

namespace spacemint {

/// What the recorder has to know about a type of file system.
struct FileSystemTraits {
  /// Every change is made through this kernel and causes events. False for network file systems and for those
  /// that show another file system (overlay, ecryptfs, FUSE), because the other side can change silently.
  bool reportsAllChanges = false;
  /// `name_to_handle_at` gives a folder the same handle for as long as the folder exists.
  bool hasLastingHandles = false;

  bool operator==(const FileSystemTraits&) const = default;
};

/// The traits of the type with this number (`statfs`, <linux/magic.h>). A type that is not known has none.
/// FUSE has one number for two types: only the one on a block device of its own reports all changes.
FileSystemTraits traitsOf(std::uint32_t type, bool isOnBlockDevice);

/// The traits of the file system that an open file or folder is on; none when the system does not say.
FileSystemTraits traitsOf(const FileHandle& file);

}  // namespace spacemint
