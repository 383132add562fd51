#include "core/host/AtomicFile.h"

#include "core/host/FileHandle.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <span>

namespace spacemint {

namespace {

constexpr std::string_view temporarySuffix = ".spacemint-tmp";

std::string folderOf(const std::string& path) {
  const std::string folder = std::filesystem::path{path}.parent_path();
  return folder.empty() ? "." : folder;
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// A unique name, because other processes may write files into the same folder. The name does not contain the
// target's name, which may already have the maximum length.
std::optional<std::string> temporaryName() {
  std::uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0) return std::nullopt;
  return "." + std::to_string(getpid()) + "-" + std::to_string(number) + std::string{temporarySuffix};
}

// If `path` is a symbolic link, the file to replace is the link's target: users keep settings elsewhere and
// link to them. A broken link itself is replaced by the file.
std::string linkTarget(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  const std::unique_ptr<char, decltype([](char* text) { std::free(text); })> target{
      realpath(path.c_str(), nullptr)};
  return target ? target.get() : path;
}

bool isFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

int flush(int file) {
  while (fsync(file) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

// Flushes the parent folder: otherwise a crash could remove the new folder, and flushed files in it.
int makeFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0700) != 0) return errno;
  const FileHandle above{open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (above) flush(above.get());
  return 0;
}

int writeAll(int file, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t count = ::write(file, contents.data(), contents.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return EIO;
    contents.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

// Fills `buffer`, or a part of it if the file ends earlier.
int readUpTo(int file, std::span<char> buffer, std::size_t& filled) {
  while (filled < buffer.size()) {
    const ssize_t count = ::read(file, buffer.data() + filled, buffer.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  return 0;
}

int writeDurably(int folder, const std::string& name, std::string_view contents) {
  const FileHandle file{
      openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (!file) return errno;
  if (const int failure = writeAll(file.get(), contents); failure != 0) return failure;
  return flush(file.get());
}

void removeLeftOvers(int folder) {
  const int copy = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return;
  const std::unique_ptr<DIR, decltype([](DIR* open) { closedir(open); })> listing{fdopendir(copy)};
  if (!listing) return;
  const auto oldest = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - leftOverAge);
  while (const dirent* entry = readdir(listing.get())) {
    struct stat status {};
    const std::string_view name = entry->d_name;
    if (name.starts_with('.') && name.ends_with(temporarySuffix) &&
        fstatat(folder, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode) &&
        status.st_mtime < oldest) {
      unlinkat(folder, entry->d_name, 0);
    }
  }
}

}  // namespace

std::expected<void, Error> createPrivateFolders(const std::string& path) {
  // Check first, because mkdir() of an existing folder fails with EPERM instead of EEXIST on some file
  // systems.
  if (isFolder(path)) return {};
  int failure = makeFolder(path);
  if (failure == ENOENT && folderOf(path) != path) {
    if (auto above = createPrivateFolders(folderOf(path)); !above) return above;
    failure = makeFolder(path);
  }
  if (failure == 0 || isFolder(path)) return {};  // another process may have created it
  return std::unexpected(systemError(path, failure == EEXIST ? ENOTDIR : failure));
}

std::expected<void, Error> writeFileAtomically(const std::string& path, std::string_view contents) {
  const std::string target = linkTarget(path);
  const std::string name = nameOf(target);
  if (name.empty() || name == "." || name == "..") return std::unexpected(systemError(path, EISDIR));
  const FileHandle folder{open(folderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!folder) return std::unexpected(systemError(folderOf(target), errno));
  removeLeftOvers(folder.get());  // first: they may fill the disk

  const auto temporary = temporaryName();
  if (!temporary) return std::unexpected(systemError(path, errno));
  int failure = writeDurably(folder.get(), *temporary, contents);
  if (failure == EEXIST) return std::unexpected(systemError(path, failure));  // not our file
  if (failure == 0 && renameat(folder.get(), temporary->c_str(), folder.get(), name.c_str()) != 0)
    failure = errno;
  if (failure != 0) {
    unlinkat(folder.get(), temporary->c_str(), 0);
    return std::unexpected(systemError(path, failure));
  }
  // Ignore a failure: the new file is in place, and some file systems cannot flush folders.
  flush(folder.get());
  return {};
}

std::expected<void, Error> overwritePart(const std::string& path, std::size_t offset, std::string_view part) {
  const FileHandle file{open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)};
  ssize_t written = -1;
  if (file) {
    do {
      written = pwrite(file.get(), part.data(), part.size(), static_cast<off_t>(offset));
    } while (written < 0 && errno == EINTR);
  }
  if (written < 0) return std::unexpected(systemError(path, errno));
  if (static_cast<std::size_t>(written) < part.size()) return std::unexpected(systemError(path, EIO));
  return {};
}

std::expected<std::string, Error> readFile(const std::string& path, std::size_t limit) {
  // O_NONBLOCK: do not wait for a writer if the file was replaced by a pipe.
  const FileHandle file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return std::unexpected(systemError(path, errno));
  if (S_ISDIR(status.st_mode)) return std::unexpected(systemError(path, EISDIR));
  if (!S_ISREG(status.st_mode)) return std::unexpected(systemError(path, EINVAL));
  if (static_cast<std::uintmax_t>(status.st_size) > limit) return std::unexpected(systemError(path, EFBIG));

  try {
    std::string contents;
    int failure = 0;
    contents.resize_and_overwrite(static_cast<std::size_t>(status.st_size),
                                  [&](char* data, std::size_t size) {
                                    std::size_t filled = 0;
                                    failure = readUpTo(file.get(), {data, size}, filled);
                                    return filled;
                                  });
    if (failure != 0) return std::unexpected(systemError(path, failure));
    return contents;
  } catch (const std::bad_alloc&) {
    return std::unexpected(systemError(path, ENOMEM));
  }
}

}  // namespace spacemint
