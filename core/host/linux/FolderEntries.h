#pragma once

#include "core/host/FileHandle.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <span>
#include <string_view>

namespace spacemint {

/// An entry of a folder as `getdents64` returns it.
struct FolderEntry {
  /// Points into the caller's buffer and is followed by a NUL byte.
  std::string_view name;
  /// DT_… from <dirent.h>; DT_UNKNOWN on file systems that do not store the type.
  unsigned char type = 0;
  std::uint64_t inode = 0;
};

/// Reads the next entries of an open folder with one `getdents64` call, and calls `take` for each of them
/// except "." and "..". False at the folder's end; true otherwise, also when `take` was not called. Fails
/// with an errno: ENOENT for a folder that was removed, EINVAL for a buffer too small for one entry.
///
/// `buffer` is aligned for 8-byte numbers. One thread at a time may read from one handle.
std::expected<bool, int> readFolderEntries(const FileHandle& folder, std::span<std::byte> buffer,
                                           const std::function<void(const FolderEntry&)>& take);

}  // namespace spacemint
