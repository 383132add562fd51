#pragma once

#include "core/tree/Snapshot.h"

#include <functional>
#include <optional>
#include <string>

namespace spacemint {

/// Files that share their blocks with other files or snapshots, or are compressed (Btrfs, XFS): removing them
/// frees less than their size. Asks the disk; needs no more rights than reading the files. Any thread.
namespace SharedFiles {

/// Smaller files are not asked.
inline constexpr Bytes minimum = 20'000'000;

/// The bytes that only this file uses, as far as the file system shows them; absent if the file shares
/// nothing and is not compressed, is smaller than `minimum`, or cannot be asked. Other parts of the file stay
/// until the last file or snapshot with them is gone.
std::optional<Bytes> freesAtMost(const std::string& path);

/// The bytes that the large files of a scan save together: the sum of their contents, less the blocks that
/// hold them. `isOnVolume` picks the files of one volume.
Bytes saved(const Snapshot& scan, const std::function<bool(const std::string& path)>& isOnVolume);

}  // namespace SharedFiles

}  // namespace spacemint
