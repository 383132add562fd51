#include "core/host/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

namespace spacemint {

std::expected<FileLock, Error> FileLock::take(const std::string& path) {
  return takeAs(path, LOCK_EX);
}

std::expected<FileLock, Error> FileLock::takeAtOnce(const std::string& path) {
  return takeAs(path, LOCK_EX | LOCK_NB);
}

std::expected<FileLock, Error> FileLock::takeAs(const std::string& path, int operation) {
  // Open for writing: network file systems grant exclusive locks only on handles open for writing.
  FileHandle file{open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (!file) return std::unexpected(systemError(path, errno));
  while (flock(file.get(), operation) != 0) {
    if (errno != EINTR) return std::unexpected(systemError(path, errno));
  }
  return FileLock{std::move(file)};
}

}  // namespace spacemint
