#pragma once

#include "core/base/Bytes.h"
#include "core/host/Removal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// One visible mount of a volume.
struct VolumePlace {
  std::uint64_t mountId = 0;
  std::string mountPoint;
  /// The folder of the file system that is mounted here: "/" for all of it, the path of a subvolume, or of
  /// the folder of a bind mount.
  std::string root;
  /// The folder at the mount point; absent if it was not looked at because that may block.
  std::optional<FileIdentity> top;
  /// A read-only copy of a subvolume is mounted here.
  bool isSnapshot = false;

  bool operator==(const VolumePlace&) const = default;
};

/// A file system with its own pool of free space. All its mounts and subvolumes together are one volume.
struct Volume {
  /// The device number in the mount table, which all mounts of the file system share. On Btrfs, `stat`
  /// reports other numbers, one for each subvolume.
  std::uint64_t pool = 0;
  /// "System" for the volume at "/", "Home" for another one with the home folder; otherwise the label, or the
  /// last name of the mount point.
  std::string name;
  /// The type, such as "ext4".
  std::string fileSystem;
  /// The device or what else is mounted.
  std::string source;
  /// In the order in which they were mounted; never empty.
  std::vector<VolumePlace> places;
  bool holdsHome = false;
  /// At least one mount is writable.
  bool isWritable = false;
  /// On a disk that people plug in and out, or mounted where such disks are mounted.
  bool isRemovable = false;
  /// Reading it may block without a time limit, because another process or computer answers.
  bool mayHang = false;

  /// The mount point that stands for the volume: the shortest one.
  const std::string& mountPoint() const;
  /// Programs of this computer can fill the volume, and its owner should know of it.
  bool canFillUp() const { return isWritable && !isRemovable; }

  bool operator==(const Volume&) const = default;
};

/// The space of a volume as `df` has it: `total` = `used` + `heldBack` + `free`.
struct Space {
  struct Files {
    std::int64_t total = 0;
    std::int64_t free = 0;

    bool operator==(const Files&) const = default;
  };

  Bytes total = 0;
  Bytes used = 0;
  /// For programs without special rights.
  Bytes free = 0;
  /// Free, but kept for the system (ext4) or for the file system's own records (Btrfs).
  Bytes heldBack = 0;
  /// How many files (inodes) fit; absent if the file system has no limit of its own.
  std::optional<Files> files = {};

  bool operator==(const Space&) const = default;
};

/// A volume and its space; absent if it could not be read or did not answer in time.
struct VolumeReading {
  Volume volume;
  std::optional<Space> space = {};
};

/// The volumes of this computer that hold files: those on local disks, the one at "/" and the one with the
/// home folder. The home folder's is the first. Empty if the mount table cannot be read. Never blocks. Any
/// thread.
std::vector<Volume> localVolumes();

/// The space of the volume that contains `path`; absent if it cannot be read. May block for long on a volume
/// that `mayHang`. Any thread.
std::optional<Space> readSpace(const std::string& path);

/// `localVolumes` with their space. Blocks for at most about a second: a volume that does not answer within
/// that time has no space, and is not asked again before it has answered. Any thread.
std::vector<VolumeReading> readVolumes();

}  // namespace spacemint
