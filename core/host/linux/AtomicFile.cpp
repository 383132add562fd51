#include "core/host/AtomicFile.h"

#include "core/host/linux/FileHandle.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/stat.h>

namespace spacemint {

namespace {

constexpr std::string_view temporarySuffix = ".spacemint-tmp";

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Other processes may publish into the same folder, so the name is nobody else's.
std::string temporaryName(const std::string& name) {
  std::random_device random;
  return "." + name.substr(0, NAME_MAX / 2) + "." + std::to_string(getpid()) + "-" + std::to_string(random()) +
         std::string{temporarySuffix};
}

int writeAll(int file, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t count = ::write(file, contents.data(), contents.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    contents.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

int writeDurably(int folder, const std::string& name, std::string_view contents) {
  const FileHandle file{openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (!file) return errno;
  if (const int failure = writeAll(file.get(), contents); failure != 0) return failure;
  return fsync(file.get()) == 0 ? 0 : errno;
}

void removeLeftOvers(int folder) {
  const int copy = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return;
  const std::unique_ptr<DIR, decltype([](DIR* open) { closedir(open); })> listing{fdopendir(copy)};
  if (!listing) return;
  const auto oldest = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - leftOverAge);
  while (const dirent* entry = readdir(listing.get())) {
    struct stat status {};
    if (std::string_view{entry->d_name}.ends_with(temporarySuffix) &&
        fstatat(folder, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
        status.st_mtime < oldest) {
      unlinkat(folder, entry->d_name, 0);
    }
  }
}

}  // namespace

std::expected<void, Error> createPrivateFolders(const std::string& path) {
  if (mkdir(path.c_str(), 0700) == 0) return {};
  if (errno == ENOENT && folderOf(path) != path) {
    if (auto above = createPrivateFolders(folderOf(path)); !above) return above;
    if (mkdir(path.c_str(), 0700) == 0) return {};
  }
  const int failure = errno;
  struct stat status {};
  if (failure == EEXIST && stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return {};
  return std::unexpected(systemError(path, failure == EEXIST ? ENOTDIR : failure));
}

std::expected<void, Error> writeFileAtomically(const std::string& path, std::string_view contents) {
  const std::string folderPath = folderOf(path);
  const std::string name = path.substr(path.rfind('/') + 1);
  const FileHandle folder{open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!folder) return std::unexpected(systemError(folderPath, errno));
  removeLeftOvers(folder.get());

  const std::string temporary = temporaryName(name);
  int failure = writeDurably(folder.get(), temporary, contents);
  if (failure == 0 && renameat(folder.get(), temporary.c_str(), folder.get(), name.c_str()) != 0) failure = errno;
  if (failure != 0) {
    unlinkat(folder.get(), temporary.c_str(), 0);
    return std::unexpected(systemError(path, failure));
  }
  // The new file is in place; where a file system cannot flush a folder, that is all there is to do.
  fsync(folder.get());
  return {};
}

std::expected<std::string, Error> readFile(const std::string& path, std::size_t limit) {
  // Not to block where somebody put a pipe in the file's place.
  const FileHandle file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return std::unexpected(systemError(path, errno));
  if (S_ISDIR(status.st_mode)) return std::unexpected(systemError(path, EISDIR));
  if (!S_ISREG(status.st_mode)) return std::unexpected(systemError(path, EINVAL));
  if (static_cast<std::uintmax_t>(status.st_size) > limit) return std::unexpected(systemError(path, EFBIG));

  std::string contents(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t filled = 0;
  while (filled < contents.size()) {
    const ssize_t count = ::read(file.get(), contents.data() + filled, contents.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::unexpected(systemError(path, errno));
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  contents.resize(filled);
  return contents;
}

}  // namespace spacemint
