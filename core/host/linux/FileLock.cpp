#include "core/host/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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
  // Open for writing, because a network file system gives an exclusive lock to a writer only.
  FileLock lock{open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (lock.descriptor_ < 0) return std::unexpected(systemError(path, errno));
  while (flock(lock.descriptor_, operation) != 0) {
    if (errno != EINTR) return std::unexpected(systemError(path, errno));
  }
  return lock;
}

FileLock::FileLock(FileLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

FileLock::~FileLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace spacemint
