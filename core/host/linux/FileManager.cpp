#include "core/host/FileManager.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace spacemint {

namespace {

bool standsAt(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::expected<void, Error> moveItem(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  int failure = errno;
  // Network file systems do not support RENAME_NOREPLACE. On those, a file or an empty folder that another
  // process creates between the test and the renaming is replaced; a folder with contents never is.
  if ((failure == EINVAL || failure == ENOSYS) && !standsAt(to)) {
    if (rename(from.c_str(), to.c_str()) == 0) return {};
    failure = errno;
  }
  return std::unexpected(systemError(failure == EEXIST ? to : from, failure));
}

}  // namespace

FileManager FileManager::host() {
  return {.exists = standsAt, .move = moveItem};
}

}  // namespace spacemint
