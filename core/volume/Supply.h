#pragma once

#include "core/host/VolumeTable.h"
#include "core/volume/SpaceLevel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace spacemint {

/// What can run out on a volume.
enum class Resource : std::uint8_t { space, files };

/// Something that can run out, and how much of it is left.
struct Supply {
  /// The number of the volume; 0 for the one with the home folder.
  std::uint64_t pool = 0;
  Resource resource = Resource::space;
  /// The name of the volume.
  std::string name;
  /// Bytes, or the number of files that still fit.
  std::int64_t free = 0;
  SpaceLimits limits;

  SpaceLevel level() const { return limits.levelOf(free); }
  bool isHome() const { return pool == 0; }

  bool operator==(const Supply&) const = default;
};

/// The volumes that warnings may be about, besides the home folder's: at least 1 GB, and programs of this
/// computer can fill them.
bool mayWarnAbout(const VolumeReading& reading);

/// The supplies of a volume; of the home folder's volume only the files, because it has the user's threshold
/// itself as its limit (`homeLimits`). Empty unless `mayWarnAbout`. Pure.
std::vector<Supply> suppliesOf(const VolumeReading& reading, std::int64_t thresholdGB);

}  // namespace spacemint
