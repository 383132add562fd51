#pragma once

#include "core/base/Bytes.h"
#include "core/base/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// What a folder holds, for measuring the same folder repeatedly.
struct FolderContents {
  struct File {
    /// Stays the same when the file is renamed.
    std::uint64_t inode = 0;
    std::string name;
    /// Allocated bytes, divided by the number of hard links.
    Bytes size = 0;
    /// When the file was created; absent if the file system does not store that.
    std::optional<Date> born;
  };

  /// All entries that are not folders.
  std::vector<File> files;
  /// The names of the subfolders on the same device.
  std::vector<std::string> folders;
};

/// Lists the folder at `path`, which is not followed if it is a symbolic link itself. Absent if the folder
/// cannot be listed to its end. Blocks for the disk; any thread.
std::optional<FolderContents> contentsOf(const std::string& path);

/// The free bytes of the volume that holds `path`, by one system call; absent if it cannot be read. May block
/// for long on a network volume that does not answer. Any thread.
std::optional<Bytes> freeBytesAt(const std::string& path);

}  // namespace spacemint
