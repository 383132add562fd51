#include "core/host/AllocatedSize.h"

#include <sys/stat.h>

#include <algorithm>

namespace spacemint {

std::optional<Bytes> allocatedSize(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::nullopt;
  constexpr Bytes blockSize = 512;
  return status.st_blocks * blockSize / std::max<Bytes>(1, static_cast<Bytes>(status.st_nlink));
}

}  // namespace spacemint
