#pragma once

#include "core/base/Date.h"
#include "core/host/FileHandle.h"

#include <cstdint>
#include <optional>

namespace spacemint {

/// A Btrfs subvolume: a tree of files of its own within a file system.
struct Subvolume {
  /// It began as a copy of another subvolume, as snapshots do.
  bool isCopy = false;
  bool isReadOnly = false;
  std::optional<Date> created;

  /// The inode number of the top folder of every subvolume. No other folder of a Btrfs file system has it.
  static constexpr std::uint64_t topInode = 256;
};

/// The subvolume of an open folder; absent if the file system has none, or does not answer. Any thread.
std::optional<Subvolume> subvolumeOf(const FileHandle& folder);

}  // namespace spacemint
