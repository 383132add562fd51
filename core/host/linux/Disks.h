#pragma once

#include "core/host/linux/MountTable.h"

#include <cstdint>
#include <optional>
#include <string>

namespace spacemint {

/// The device number of the disk below a mount. A file system such as Btrfs has its own device number; the
/// disk is the mount's source.
std::uint64_t diskOf(const Mount& mount);

/// The label of the file system on a disk; absent if it has none.
std::optional<std::string> labelOf(std::uint64_t disk);

/// True if the disk is known to rotate.
bool isRotational(std::uint64_t disk);

/// How many requests the disk takes at the same time, as the kernel says; absent if it does not say.
std::optional<unsigned> requestsAtOnce(std::uint64_t disk);

/// True if people plug the disk in and out, as the kernel says.
bool isRemovableDisk(std::uint64_t disk);

}  // namespace spacemint
