#include "Spacemint/desktop/linux/HostVolume.h"

#include "core/host/UserFolders.h"

namespace spacemint {

std::optional<VolumeStatus> HostVolume::status() {
  return VolumeStatus::current(startupVolume());
}

// Of the home folder and not of its mount point, because finding that out means asking the volume itself.
bool HostVolume::mayHang() {
  return spacemint::mayHang(UserFolders::home());
}

}  // namespace spacemint
