#pragma once

#include "core/base/Bytes.h"
#include "core/host/VolumeInfo.h"

#include <optional>
#include <string>

namespace spacemint {

/// Capacity and free space of the volume that holds a path. Stateless; any thread.
struct VolumeStatus {
  std::string name;
  Bytes total = 0;
  Bytes free = 0;

  /// Never negative, also where the system says that more is free than there is.
  Bytes used() const;
  /// From 0 to 1; 0 for a volume without a capacity.
  double usedFraction() const;

  /// The volume of any existing path; absent when it cannot be read or has no capacity.
  static std::optional<VolumeStatus> current(const std::string& path);
  static std::optional<VolumeStatus> from(const VolumeInfo& info);

  bool operator==(const VolumeStatus&) const = default;
};

}  // namespace spacemint
