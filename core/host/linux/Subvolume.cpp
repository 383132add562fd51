#include "core/host/linux/Subvolume.h"

#include <linux/btrfs.h>
#include <linux/btrfs_tree.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <iterator>

namespace spacemint {

std::optional<Subvolume> subvolumeOf(const FileHandle& folder) {
  btrfs_ioctl_get_subvol_info_args info{};
  // The call returns 1 on success for most subvolumes.
  if (ioctl(folder.get(), BTRFS_IOC_GET_SUBVOL_INFO, &info) < 0) return std::nullopt;
  Subvolume subvolume{.isCopy = std::ranges::any_of(info.parent_uuid, [](auto byte) { return byte != 0; }),
                      .isReadOnly = (info.flags & BTRFS_ROOT_SUBVOL_RDONLY) != 0,
                      .created = std::nullopt};
  if (info.otime.sec != 0) {
    subvolume.created = dateFromUnixSeconds(static_cast<std::int64_t>(info.otime.sec));
  }
  return subvolume;
}

}  // namespace spacemint
