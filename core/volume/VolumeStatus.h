#pragma once

#include "core/base/Bytes.h"
#include "core/host/VolumeInfo.h"

#include <optional>
#include <string>

namespace spacemint {

/// The capacity and free space of a volume, in bytes. Any thread.
struct VolumeStatus {
  std::string name;
  Bytes total = 0;
  Bytes free = 0;

  /// The used bytes; 0 if the system reports more free than total space.
  Bytes used() const;
  /// The used part of the capacity, from 0 to 1; 0 for a volume without a capacity.
  double usedFraction() const;

  /// Reads the volume that contains `path`; absent if the volume cannot be read or reports no capacity.
  /// Blocks; a network file system that does not answer may block for long.
  static std::optional<VolumeStatus> current(const std::string& path);
  static std::optional<VolumeStatus> from(const VolumeInfo& info);

  bool operator==(const VolumeStatus&) const = default;
};

}  // namespace spacemint
