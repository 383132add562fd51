#include "core/host/FileStamp.h"

#include <sys/stat.h>

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

}  // namespace spacemint
