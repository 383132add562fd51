#include "bench/FloorWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace spacemint::bench {

namespace {

constexpr std::size_t bufferSize = 262'144;
constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct Level {
  int handle;
  std::string subfolders;  // names, each followed by a NUL byte
};

void list(Level& level, std::byte* buffer, FloorSums& sums) {
  long length = 0;
  while ((length = syscall(SYS_getdents64, level.handle, buffer, bufferSize)) > 0) {
    for (long at = 0; at < length;) {
      const auto* record = reinterpret_cast<const dirent64*>(buffer + at);
      at += record->d_reclen;
      const char* name = record->d_name;
      if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) continue;
      if (record->d_type == DT_DIR) {
        level.subfolders.append(name, std::strlen(name) + 1);
        continue;
      }
      struct statx status {};
      if (statx(level.handle, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                STATX_TYPE | STATX_NLINK | STATX_MTIME | STATX_BLOCKS, &status) == 0) {
        sums.files += 1;
        sums.blocks += status.stx_blocks;
      }
    }
  }
}

}  // namespace

FloorSums floorWalk(const std::string& root) {
  const auto buffer = std::make_unique_for_overwrite<std::byte[]>(bufferSize);
  FloorSums sums;
  std::vector<Level> levels{{open(root.c_str(), openFlags), {}}};
  if (levels.back().handle < 0) return sums;
  list(levels.back(), buffer.get(), sums);
  while (!levels.empty()) {
    Level& top = levels.back();
    if (top.subfolders.empty()) {
      close(top.handle);
      levels.pop_back();
      continue;
    }
    top.subfolders.pop_back();
    const std::size_t start = top.subfolders.rfind('\0') + 1;
    const int opened = openat(top.handle, top.subfolders.c_str() + start, openFlags);
    top.subfolders.resize(start);
    if (opened < 0) continue;
    levels.push_back({opened, {}});
    list(levels.back(), buffer.get(), sums);
  }
  return sums;
}

}  // namespace spacemint::bench
