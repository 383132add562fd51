#include "core/host/linux/FolderOpening.h"

#include <fcntl.h>

#include <cerrno>

namespace spacemint {

namespace {

constexpr int listingFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// Without O_NOATIME, listing a folder sets its access time, so a scan would write to the disk for every
// folder. Only the owner of a folder may use this flag.
FileHandle openWithoutTouching(int parent, const char* name, int flags) {
  FileHandle opened{openat(parent, name, flags | O_NOATIME)};
  return opened || errno != EPERM ? std::move(opened) : FileHandle{openat(parent, name, flags)};
}

}  // namespace

FileHandle openFolder(int parent, const char* name) {
  return openWithoutTouching(parent, name, listingFlags);
}

FileHandle openFolderItself(int parent, const char* name) {
  return openWithoutTouching(parent, name, listingFlags | O_NOFOLLOW);
}

void rewindFolder(const FileHandle& folder) {
  lseek(folder.get(), 0, SEEK_SET);
}

std::string pathThroughHandle(const FileHandle& folder) {
  return "/proc/self/fd/" + std::to_string(folder.get());
}

}  // namespace spacemint
