#include "core/host/linux/FolderOpening.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <climits>

namespace spacemint {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// Listing a folder would set its access time, and so write to the disk for every folder of a scan. Only the
// owner may ask for that to be left out.
FileHandle openWithoutTouching(int parent, const char* name, int flags) {
  FileHandle opened{openat(parent, name, flags | O_NOATIME)};
  return opened || errno != EPERM ? std::move(opened) : FileHandle{openat(parent, name, flags)};
}

}  // namespace

std::expected<Mounted, int> mountedOn(const FileHandle& folder) {
  struct statx status {};
  if (statx(folder.get(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_TYPE | STATX_MNT_ID, &status) != 0) {
    return std::unexpected(errno);
  }
  return Mounted{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_mnt_id};
}

FileHandle openFolder(int parent, const char* name) {
  return openWithoutTouching(parent, name, openFlags);
}

FileHandle openFolderItself(int parent, const char* name) {
  return openWithoutTouching(parent, name, openFlags | O_NOFOLLOW);
}

std::string pathThroughHandle(const FileHandle& folder) {
  return "/proc/self/fd/" + std::to_string(folder.get());
}

std::string realPathOf(const FileHandle& folder) {
  std::string path(PATH_MAX, '\0');
  const ssize_t length = readlink(pathThroughHandle(folder).c_str(), path.data(), path.size());
  path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return path;
}

}  // namespace spacemint
