#include "core/host/FileSizes.h"

#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/FolderOpening.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <limits>

namespace spacemint {

namespace {

constexpr unsigned wantedFacts = STATX_TYPE | STATX_INO | STATX_BLOCKS | STATX_NLINK | STATX_BTIME;

void addFile(const struct statx& status, std::string_view name, FolderContents& contents) {
  FolderContents::File file{
      .inode = status.stx_ino,
      .name = std::string{name},
      .size = static_cast<Bytes>(status.stx_blocks) * 512 / std::max<Bytes>(status.stx_nlink, 1)};
  if ((status.stx_mask & STATX_BTIME) != 0) {
    file.born = dateFromUnixSeconds(status.stx_btime.tv_sec) +
                std::chrono::microseconds{status.stx_btime.tv_nsec / 1'000};
  }
  contents.files.push_back(std::move(file));
}

}  // namespace

std::optional<FolderContents> contentsOf(const std::string& path) {
  const FileHandle folder = openFolderItself(AT_FDCWD, path.c_str());
  struct stat own {};
  if (!folder || fstat(folder.get(), &own) != 0) return std::nullopt;
  FolderContents contents;
  const auto take = [&](const FolderEntry& entry) {
    struct statx status {};
    if (statx(folder.get(), entry.name.data(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, wantedFacts, &status) !=
        0)
      return;
    const bool isHere = makedev(status.stx_dev_major, status.stx_dev_minor) == own.st_dev;
    if (!S_ISDIR(status.stx_mode)) {
      addFile(status, entry.name, contents);
    } else if (isHere) {
      contents.folders.emplace_back(entry.name);
    }
  };
  alignas(8) std::array<std::byte, 32'768> buffer;
  for (;;) {
    const auto more = readFolderEntries(folder, buffer, take);
    if (!more) return std::nullopt;
    if (!*more) return contents;
  }
}

std::optional<Bytes> freeBytesAt(const std::string& path) {
  struct statvfs status {};
  if (statvfs(path.c_str(), &status) != 0) return std::nullopt;
  Bytes free = 0;
  return __builtin_mul_overflow(status.f_bavail, status.f_frsize, &free) ? std::numeric_limits<Bytes>::max()
                                                                         : free;
}

}  // namespace spacemint
