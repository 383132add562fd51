#pragma once

#include "core/volume/VolumeStatus.h"

#include <optional>

namespace spacemint {

/// The volume whose free space is watched: the one with the home folder. Any thread.
class StartupVolume {
 public:
  StartupVolume() = default;
  StartupVolume(const StartupVolume&) = delete;
  StartupVolume& operator=(const StartupVolume&) = delete;
  virtual ~StartupVolume() = default;

  /// Absent while it cannot be read.
  virtual std::optional<VolumeStatus> status() = 0;

  /// Whether reading it may take long, as over a network; it is then not read on the main thread.
  virtual bool mayHang() = 0;
};

}  // namespace spacemint
