#include "core/host/linux/journal/FileSystemTraits.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

struct Row {
  std::uint32_t type = 0;
  FileSystemTraits traits;
};

constexpr FileSystemTraits local{.reportsAllChanges = true};
constexpr FileSystemTraits localWithHandles{.reportsAllChanges = true, .hasLastingHandles = true};

// FAT and FUSE give a folder another handle after it was dropped from memory.
constexpr std::array rows{
    Row{EXT4_SUPER_MAGIC, localWithHandles},  // ext2 and ext3 too
    Row{XFS_SUPER_MAGIC, localWithHandles},
    Row{BTRFS_SUPER_MAGIC, localWithHandles},
    Row{F2FS_SUPER_MAGIC, localWithHandles},
    Row{TMPFS_MAGIC, localWithHandles},
    Row{RAMFS_MAGIC, local},
    Row{REISERFS_SUPER_MAGIC, local},
    Row{NILFS_SUPER_MAGIC, local},
    Row{MSDOS_SUPER_MAGIC, local},  // vfat
    Row{EXFAT_SUPER_MAGIC, local},
    Row{0x7366746E, local},  // ntfs3
    Row{0x3153464A, local},  // jfs
    Row{0xCA451A4E, local},  // bcachefs
    Row{0x2FC12FC1, local},  // zfs
};

}  // namespace

FileSystemTraits traitsOf(std::uint32_t type, bool isOnBlockDevice) {
  if (type == FUSE_SUPER_MAGIC) return isOnBlockDevice ? local : FileSystemTraits{};
  const auto* found = std::ranges::find(rows, type, &Row::type);
  return found != rows.end() ? found->traits : FileSystemTraits{};
}

// File systems without a block device have a device number with the major part 0.
FileSystemTraits traitsOf(const FileHandle& file) {
  struct statfs fileSystem {};
  struct stat status {};
  if (fstatfs(file.get(), &fileSystem) != 0 || fstat(file.get(), &status) != 0) return {};
  return traitsOf(static_cast<std::uint32_t>(fileSystem.f_type), major(status.st_dev) != 0);
}

}  // namespace spacemint
