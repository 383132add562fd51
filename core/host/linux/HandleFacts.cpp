#include "core/host/linux/HandleFacts.h"

#include <fcntl.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <climits>

namespace spacemint {

namespace {

std::expected<HandleFacts, int> ask(int folder, const char* name, int flags) {
  struct statx status {};
  constexpr unsigned mask = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BLOCKS | STATX_MNT_ID;
  if (statx(folder, name, flags | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, mask, &status) != 0) {
    return std::unexpected(errno);
  }
  return HandleFacts{.mounted = {makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_mnt_id},
                     .inode = status.stx_ino,
                     .mode = status.stx_mode,
                     .links = status.stx_nlink,
                     .allocated = static_cast<Bytes>(status.stx_blocks) * 512};
}

}  // namespace

std::expected<HandleFacts, int> factsOf(const FileHandle& handle) {
  return ask(handle.get(), "", AT_EMPTY_PATH);
}

std::expected<HandleFacts, int> factsOf(const FileHandle& folder, const char* name) {
  return ask(folder.get(), name, AT_SYMLINK_NOFOLLOW);
}

std::expected<HandleFacts, int> factsBehind(const FileHandle& folder, const char* link) {
  return ask(folder.get(), link, 0);
}

std::string realPathOf(const FileHandle& folder) {
  const std::string link = "/proc/self/fd/" + std::to_string(folder.get());
  std::string path(PATH_MAX, '\0');
  const ssize_t length = readlink(link.c_str(), path.data(), path.size());
  path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return path;
}

}  // namespace spacemint
