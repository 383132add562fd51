#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string>

namespace spacemint {

/// The space that a file system uses for itself: it counts as used and lies in no file, folder or link.
///
/// The space of each file system of the ext family is 0: it lies outside of the capacity. Of Btrfs: metadata
/// and system data in all their copies, and the global reserve. Of XFS: what the allocation groups set aside,
/// the inodes, and an estimate of the log and the trees, which XFS does not report (0.7 % of the capacity,
/// 1.9 % with a reverse map). Absent for other file systems, and if the kernel does not answer.
///
/// `path` is a readable folder of the file system. Needs no more rights than that. Any thread.
std::optional<Bytes> fileSystemOwnBytes(const std::string& path);

}  // namespace spacemint
