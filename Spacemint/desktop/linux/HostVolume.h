#pragma once

#include "Spacemint/desktop/StartupVolume.h"

namespace spacemint {

/// The volume of this machine with the home folder.
class HostVolume final : public StartupVolume {
 public:
  std::optional<VolumeStatus> status() override;
  bool mayHang() override;
};

}  // namespace spacemint
