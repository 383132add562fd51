#pragma once

#include "core/base/Bytes.h"

#include <optional>
#include <string>

namespace spacemint {

/// Facts about a volume; a member is absent if the system does not report it.
struct VolumeInfo {
  /// `Volume::name`; of a volume that is not local the label, or else the mount point. Absent at "/" where
  /// the mount table cannot be read.
  std::optional<std::string> name;
  std::optional<Bytes> total;
  /// Free bytes including those that the system can free on demand; only some hosts report this.
  std::optional<Bytes> availableForImportantUsage;
  std::optional<Bytes> available;
};

/// Reads the volume that contains `path`; absent if there is nothing at `path` or the volume cannot be read.
/// May block for long on a network volume that does not answer. Any thread.
std::optional<VolumeInfo> readVolumeInfo(const std::string& path);

/// The mount point of the volume that contains `path`; absent if it cannot be determined.
std::optional<std::string> mountPointOf(const std::string& path);

/// True if access to the path may block without a time limit: the path is on a network file system, a
/// user-space file system (FUSE) or an automount point. Looks only at the text of the path and the mount
/// table, so this function itself never blocks.
bool mayHang(const std::string& path);

/// The mount point of the volume with the home folder, which users see as "the disk"; "/" if it cannot be
/// determined.
std::string startupVolume();

/// What decides how a disk is best read.
struct DiskTraits {
  /// The disk has a moving head. False if unknown, and for a virtual disk, of which the kernel cannot know
  /// it.
  bool isRotational = false;
  /// How many requests the disk takes at the same time; absent if unknown.
  std::optional<unsigned> requestsAtOnce = {};
};

/// The traits of the disk that holds `path`. Any thread.
DiskTraits diskTraits(const std::string& path);

}  // namespace spacemint
