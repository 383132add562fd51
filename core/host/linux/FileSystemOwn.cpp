#include "core/host/FileSystemOwn.h"

#include "core/host/FileHandle.h"
#include "core/host/linux/FolderOpening.h"

#include <fcntl.h>
#include <linux/btrfs.h>
#include <linux/btrfs_tree.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace spacemint {

namespace {

// How many times Btrfs writes each byte of a group of blocks.
Bytes copiesOf(std::uint64_t flags) {
  if ((flags & BTRFS_BLOCK_GROUP_RAID1C4) != 0) return 4;
  if ((flags & BTRFS_BLOCK_GROUP_RAID1C3) != 0) return 3;
  constexpr std::uint64_t twice = BTRFS_BLOCK_GROUP_DUP | BTRFS_BLOCK_GROUP_RAID1 | BTRFS_BLOCK_GROUP_RAID10;
  return (flags & twice) != 0 ? 2 : 1;
}

std::vector<btrfs_ioctl_space_info> btrfsSpaces(const FileHandle& folder) {
  btrfs_ioctl_space_args count{};
  if (ioctl(folder.get(), BTRFS_IOC_SPACE_INFO, &count) < 0) return {};
  std::vector<std::uint64_t> room(
      (sizeof(btrfs_ioctl_space_args) + count.total_spaces * sizeof(btrfs_ioctl_space_info)) /
      sizeof(std::uint64_t));
  auto& answer = reinterpret_cast<btrfs_ioctl_space_args&>(room.front());
  answer.space_slots = count.total_spaces;
  if (ioctl(folder.get(), BTRFS_IOC_SPACE_INFO, &answer) < 0) return {};
  return {answer.spaces, answer.spaces + std::min(answer.total_spaces, count.total_spaces)};
}

// The used bytes of statvfs count each group in all its copies, divided by the copies of the data, and the
// whole global reserve.
std::optional<Bytes> ownOfBtrfs(const FileHandle& folder) {
  const auto spaces = btrfsSpaces(folder);
  if (spaces.empty()) return std::nullopt;
  Bytes copied = 0;
  Bytes reserve = 0;
  Bytes dataCopies = 1;
  for (const btrfs_ioctl_space_info& space : spaces) {
    if ((space.flags & BTRFS_SPACE_INFO_GLOBAL_RSV) != 0) {
      reserve += static_cast<Bytes>(space.total_bytes);
    } else if ((space.flags & BTRFS_BLOCK_GROUP_DATA) != 0) {
      // Small file systems mix data and metadata in one group, and do not say how much is which.
      dataCopies = copiesOf(space.flags);
    } else {
      copied += static_cast<Bytes>(space.used_bytes) * copiesOf(space.flags);
    }
  }
  return copied / dataCopies + reserve;
}

// The kernel's interface to XFS, of which only these members are used.
struct XfsGeometry {
  std::uint32_t blockSize, realtimeExtent, groupBlocks, groups, logBlocks, sectorSize, inodeSize,
      inodePercent;
  std::uint64_t dataBlocks, realtime[3], uuid[2];
  std::uint32_t stripe[2], version, flags;
  std::uint64_t others[20];
};
struct XfsCounts {
  std::uint64_t freeBlocks, freeRealtime, freeInodes, inodes;
};
struct XfsGroup {
  std::uint32_t number, blocks, freeBlocks, others[5];
  std::uint64_t reserved[12];
};
static_assert(sizeof(XfsGeometry) == 256 && sizeof(XfsCounts) == 32 && sizeof(XfsGroup) == 128);
constexpr unsigned long xfsGeometry = _IOR('X', 126, XfsGeometry);
constexpr unsigned long xfsCounts = _IOR('X', 113, XfsCounts);
constexpr unsigned long xfsGroup = _IOWR('X', 61, XfsGroup);
constexpr std::uint32_t hasReverseMap = 1U << 19U;

std::optional<Bytes> xfsFreeInGroups(const FileHandle& folder, const XfsGeometry& geometry) {
  Bytes blocks = 0;
  for (std::uint32_t number = 0; number < geometry.groups; ++number) {
    XfsGroup group{.number = number};
    if (ioctl(folder.get(), xfsGroup, &group) != 0) return std::nullopt;
    blocks += group.freeBlocks;
  }
  return blocks * geometry.blockSize;
}

std::optional<Bytes> ownOfXfs(const FileHandle& folder) {
  XfsGeometry geometry{};
  XfsCounts counts{};
  struct statvfs status {};
  if (ioctl(folder.get(), xfsGeometry, &geometry) != 0 || ioctl(folder.get(), xfsCounts, &counts) != 0 ||
      fstatvfs(folder.get(), &status) != 0) {
    return std::nullopt;
  }
  const auto freeInGroups = xfsFreeInGroups(folder, geometry);
  if (!freeInGroups) return std::nullopt;
  const auto blockSize = static_cast<Bytes>(status.f_frsize);
  const Bytes setAside = *freeInGroups - static_cast<Bytes>(status.f_bfree) * blockSize;
  const Bytes inodes = static_cast<Bytes>(counts.inodes) * geometry.inodeSize;
  const double share = (geometry.flags & hasReverseMap) != 0 ? 0.019 : 0.007;
  const double trees = share * static_cast<double>(status.f_blocks) * static_cast<double>(blockSize);
  return setAside + inodes + std::llround(trees);
}

}  // namespace

std::optional<Bytes> fileSystemOwnBytes(const std::string& path) {
  const FileHandle folder = openFolder(AT_FDCWD, path.c_str());
  struct statfs status {};
  if (!folder || fstatfs(folder.get(), &status) != 0) return std::nullopt;
  switch (status.f_type) {
    case EXT4_SUPER_MAGIC:
      return 0;
    case BTRFS_SUPER_MAGIC:
      return ownOfBtrfs(folder);
    case XFS_SUPER_MAGIC:
      return ownOfXfs(folder);
    default:
      return std::nullopt;
  }
}

}  // namespace spacemint
