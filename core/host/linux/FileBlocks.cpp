#include "core/host/FileBlocks.h"

#include "core/host/FileHandle.h"
#include "core/host/linux/HandleFacts.h"

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <span>

namespace spacemint {

namespace {

constexpr std::size_t maximumRanges = 100'000;

bool canShareBlocks(const FileHandle& file) {
  struct statfs system {};
  return fstatfs(file.get(), &system) == 0 &&
         (system.f_type == BTRFS_SUPER_MAGIC || system.f_type == XFS_SUPER_MAGIC);
}

// Room for one answer of the kernel: a head and the extents after it.
class ExtentMap {
 public:
  // The next extents from an offset on; absent if the kernel does not answer.
  std::optional<std::span<const fiemap_extent>> ask(const FileHandle& file, std::uint64_t from) {
    auto& map = reinterpret_cast<fiemap&>(memory_.front());
    map = {.fm_start = from, .fm_length = FIEMAP_MAX_OFFSET - from, .fm_extent_count = room};
    if (ioctl(file.get(), FS_IOC_FIEMAP, &map) != 0) return std::nullopt;
    return std::span<const fiemap_extent>{map.fm_extents, std::min(map.fm_mapped_extents, room)};
  }

 private:
  static constexpr std::uint32_t room = 500;
  static constexpr std::size_t size = sizeof(fiemap) + room * sizeof(fiemap_extent);

  std::array<std::uint64_t, size / sizeof(std::uint64_t)> memory_{};
};

void take(const fiemap_extent& extent, FileBlocks& blocks) {
  blocks.mapped = saturatingAdd(blocks.mapped, static_cast<Bytes>(extent.fe_length));
  blocks.isCompressed |= (extent.fe_flags & FIEMAP_EXTENT_ENCODED) != 0;
  const bool isShared = (extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0;
  blocks.isShared |= isShared;
  // The content of these is not yet on the disk, or lies among the file system's own data.
  constexpr std::uint32_t placeless = FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DATA_INLINE;
  if ((extent.fe_flags & placeless) != 0) return;
  blocks.ranges.push_back({extent.fe_physical, extent.fe_physical + extent.fe_length, isShared});
}

}  // namespace

std::optional<FileBlocks> fileBlocks(const std::string& path) {
  const FileHandle file{open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)};
  if (!file || !canShareBlocks(file)) return std::nullopt;
  const auto facts = factsOf(file);
  if (!facts || !S_ISREG(facts->mode)) return std::nullopt;
  FileBlocks blocks{.identity = facts->identity()};
  ExtentMap map;
  for (std::uint64_t at = 0; blocks.ranges.size() <= maximumRanges;) {
    const auto extents = map.ask(file, at);
    if (!extents) return std::nullopt;
    for (const fiemap_extent& extent : *extents) take(extent, blocks);
    if (extents->empty() || (extents->back().fe_flags & FIEMAP_EXTENT_LAST) != 0) return blocks;
    at = extents->back().fe_logical + extents->back().fe_length;
  }
  return std::nullopt;
}

}  // namespace spacemint
