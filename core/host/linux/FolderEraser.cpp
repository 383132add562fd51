#include "core/host/linux/FolderEraser.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t bufferSize = 262'144;
constexpr std::size_t shownPathLength = 1'000;

bool isThere(int errorNumber) {
  return errorNumber != ENOENT;
}

}  // namespace

FolderEraser::FolderEraser(std::string path)
    : path_(std::move(path)),
      buffer_(std::make_unique_for_overwrite<std::byte[]>(bufferSize)) {}

FolderEraser::Done FolderEraser::empty(FileHandle folder, const HandleFacts& facts) {
  mounted_ = facts.mounted;
  frames_.clear();
  firstOpen_ = 1;
  frames_.push_back({.identity = facts.identity(), .handle = std::move(folder)});
  while (true) {
    Frame& top = frames_.back();
    Done step{};
    if (!top.folders.empty()) {
      const std::string name = std::move(top.folders.back());
      top.folders.pop_back();
      step = enter(name);
    } else {
      const auto more = readBatch(top);
      if (!more) return std::unexpected(more.error());
      if (*more) continue;
      if (frames_.size() == 1) return {};
      step = leave();
    }
    if (!step) return step;
  }
}

// Removes the files of the next entries and notes the folders; false at the folder's end.
std::expected<bool, Error> FolderEraser::readBatch(Frame& folder) {
  const long length = syscall(SYS_getdents64, folder.handle.get(), buffer_.get(), bufferSize);
  // A folder that somebody else has removed lists nothing.
  if (length < 0 && errno == ENOENT) return false;
  if (length < 0) return failure("", errno);
  files_.clear();
  for (long at = 0; at < length;) {
    const auto* record = reinterpret_cast<const dirent64*>(buffer_.get() + at);
    at += record->d_reclen;
    const std::string_view name = record->d_name;
    if (name == "." || name == "..") continue;
    if (record->d_type == DT_DIR) {
      folder.folders.emplace_back(name);
    } else {
      files_.push_back({record->d_ino, record->d_name});
    }
  }
  // In the order in which they lie on the disk.
  std::ranges::sort(files_, {}, &File::inode);
  for (const File& file : files_) {
    const auto removed = removeFile(folder, file.name);
    if (!removed) return std::unexpected(removed.error());
  }
  return length > 0;
}

FolderEraser::Done FolderEraser::removeFile(Frame& folder, const char* name) {
  if (unlinkat(folder.handle.get(), name, 0) == 0 || !isThere(errno)) return {};
  // A folder whose listing did not say so, or that has taken the file's place.
  if (errno == EISDIR) return tryAgain(folder, name);
  return failure(name, errno);
}

FolderEraser::Done FolderEraser::enter(const std::string& name) {
  Frame& parent = frames_.back();
  FileHandle opened{openat(parent.handle.get(), name.c_str(), openFlags)};
  if (!opened) {
    if (!isThere(errno)) return {};
    if (errno == EACCES) return removeUnreadable(parent, name);
    // No folder any more: a link, which is removed and not followed, or a file.
    if (errno == ENOTDIR || errno == ELOOP) return removeFile(parent, name.c_str());
    return failure(name, errno);
  }
  const auto facts = factsOf(opened);
  if (!facts) return failure(name, facts.error());
  if (facts->mounted != mounted_) return failure(name, EXDEV);
  frames_.push_back({.name = name, .identity = facts->identity(), .handle = std::move(opened)});
  if (frames_.size() - firstOpen_ > handleLimit) closeShallowest();
  return {};
}

// A folder that may not be listed can still be removed where nothing is in it.
FolderEraser::Done FolderEraser::removeUnreadable(const Frame& folder, const std::string& name) {
  if (unlinkat(folder.handle.get(), name.c_str(), AT_REMOVEDIR) == 0 || !isThere(errno)) return {};
  return failure(name, EACCES);
}

// Removes the deepest folder, which is empty now, and goes on in the one above it.
FolderEraser::Done FolderEraser::leave() {
  if (auto reopened = reopenParent(); !reopened) return reopened;
  std::string name = std::move(frames_.back().name);
  frames_.pop_back();
  Frame& parent = frames_.back();
  if (unlinkat(parent.handle.get(), name.c_str(), AT_REMOVEDIR) == 0 || !isThere(errno)) return {};
  if (errno == ENOTEMPTY || errno == EEXIST) return tryAgain(parent, std::move(name));
  if (errno == ENOTDIR) return removeFile(parent, name.c_str());
  return failure(name, errno);
}

FolderEraser::Done FolderEraser::reopenParent() {
  Frame& parent = frames_[frames_.size() - 2];
  if (parent.handle) return {};
  FileHandle opened{openat(frames_.back().handle.get(), "..", openFlags)};
  if (!opened) return failure("", errno);
  const auto facts = factsOf(opened);
  if (!facts) return failure("", facts.error());
  if (facts->mounted != mounted_ || facts->identity() != parent.identity) return failure("", ESTALE);
  parent.handle = std::move(opened);
  firstOpen_ = frames_.size() - 2;
  return {};
}

FolderEraser::Done FolderEraser::tryAgain(Frame& folder, std::string name) {
  if (++folder.retries > retryLimit) return failure(name, ENOTEMPTY);
  folder.folders.push_back(std::move(name));
  return {};
}

// What it has read is dropped too: its listing begins anew when the walk comes back, with what is left.
void FolderEraser::closeShallowest() {
  frames_[firstOpen_].handle.close();
  frames_[firstOpen_].folders = {};
  ++firstOpen_;
}

std::unexpected<Error> FolderEraser::failure(std::string_view name, int errorNumber) const {
  Error error = systemError(pathOf(name), errorNumber);
  if (errorNumber == EXDEV) error.message = pathOf(name) + ": something else is mounted here";
  if (errorNumber == ESTALE) error.message = pathOf(name) + ": was moved while it was being removed";
  return std::unexpected(std::move(error));
}

// The middle of a very long path is left out.
std::string FolderEraser::pathOf(std::string_view name) const {
  std::string path = path_;
  for (const Frame& frame : frames_) {
    if (!frame.name.empty()) path += "/" + frame.name;
  }
  if (!name.empty()) path += "/" + std::string{name};
  if (path.size() > shownPathLength) {
    path.replace(shownPathLength / 2, path.size() - shownPathLength, "/…/");
  }
  return path;
}

}  // namespace spacemint
