#include "core/host/linux/FolderEntries.h"

#include <dirent.h>
#include <sys/syscall.h>

#include <cerrno>

namespace spacemint {

std::expected<bool, int> readFolderEntries(const FileHandle& folder, std::span<std::byte> buffer,
                                           const std::function<void(const FolderEntry&)>& take) {
  const long length = syscall(SYS_getdents64, folder.get(), buffer.data(), buffer.size());
  if (length < 0) return std::unexpected(errno);
  for (long at = 0; at < length;) {
    const auto* record = reinterpret_cast<const dirent64*>(buffer.data() + at);
    at += record->d_reclen;
    const std::string_view name = record->d_name;
    if (name != "." && name != "..") take({.name = name, .type = record->d_type, .inode = record->d_ino});
  }
  return length > 0;
}

}  // namespace spacemint
