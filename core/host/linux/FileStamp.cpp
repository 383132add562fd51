#include "core/host/FileStamp.h"

#include <sys/stat.h>

#include <cerrno>

namespace spacemint {

FileStamp fileStamp(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {.device = status.st_dev,
          .inode = status.st_ino,
          .size = status.st_size,
          .modifiedSeconds = status.st_mtim.tv_sec,
          .modifiedNanoseconds = status.st_mtim.tv_nsec};
}

bool mayExist(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

}  // namespace spacemint
