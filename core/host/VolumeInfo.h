#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string>

namespace spacemint {

/// What the system says of a volume; each figure absent where it says nothing.
struct VolumeInfo {
  std::optional<std::string> name;
  std::optional<Bytes> total;
  /// Free for what matters to the user, with what the system can clear on demand.
  std::optional<Bytes> availableForImportantUsage;
  std::optional<Bytes> available;
};

/// The volume that holds `path`; absent when nothing is there or it cannot be asked. May block on a dead
/// network volume.
std::optional<VolumeInfo> readVolumeInfo(const std::string& path);

/// Where the volume that holds `path` is mounted; absent when that cannot be found out.
std::optional<std::string> mountPointOf(const std::string& path);

/// True when the path, taken by its text alone, lies on a network or user-space file system, or on one that
/// is mounted on first use: asking for anything there may block for as long as it likes. Never blocks itself.
bool mayHang(const std::string& path);

/// The mount point of the volume that holds the home folder: the whole disk as a user sees it.
std::string startupVolume();

/// True when `path` lies on a disk that has to move a head, so that asking for many things at once is slower.
bool isOnRotationalDisk(const std::string& path);

}  // namespace spacemint
