#include "core/host/linux/FolderEraser.h"

#include "core/base/Translation.h"
#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/RemovalReason.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

constexpr int eraserFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t entryBufferSize = std::size_t{2} << 20U;
constexpr std::size_t shownPathLength = 1'000;

bool isThere(int errorNumber) {
  return errorNumber != ENOENT;
}

}  // namespace

FolderEraser::FolderEraser(std::string path, RemovalProgress& progress)
    : path_(std::move(path)),
      progress_(progress),
      buffer_(std::make_unique_for_overwrite<std::byte[]>(entryBufferSize)) {}

FolderEraser::Done FolderEraser::empty(FileHandle folder, const HandleFacts& facts) {
  mounted_ = facts.mounted;
  frames_.clear();
  firstOpen_ = 1;
  frames_.push_back({.identity = facts.identity(), .handle = std::move(folder)});
  while (true) {
    if (!progress_.mayGoOn()) return failure("", ECANCELED);
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

// Removes the files among the next entries and stores the folders' names in `folder`; false at the end of the
// folder.
std::expected<bool, RemovalFailure> FolderEraser::readBatch(Frame& folder) {
  files_.clear();
  const auto more =
      readFolderEntries(folder.handle, {buffer_.get(), entryBufferSize}, [&](const FolderEntry& entry) {
        if (entry.type == DT_DIR) {
          folder.folders.emplace_back(entry.name);
        } else {
          files_.push_back({entry.inode, entry.name.data()});
        }
      });
  // Another program has removed the folder.
  if (!more && more.error() == ENOENT) return false;
  if (!more) return failure("", more.error());
  // Remove in the order of inode numbers, which is roughly the order on the disk.
  std::ranges::sort(files_, {}, &File::inode);
  for (const File& file : files_) {
    if (!progress_.mayGoOn()) return failure("", ECANCELED);
    const auto removed = removeFile(folder, file.name);
    if (!removed) return std::unexpected(removed.error());
  }
  return *more;
}

FolderEraser::Done FolderEraser::removeFile(Frame& folder, const char* name) {
  const auto facts = factsOf(folder.handle, name);
  if (!facts) return isThere(facts.error()) ? Done{failure(name, facts.error())} : Done{};
  if (S_ISDIR(facts->mode)) {
    // The file system did not report the entry's type in the listing.
    folder.folders.emplace_back(name);
    return {};
  }
  if (unlinkat(folder.handle.get(), name, 0) == 0) {
    progress_.add(facts->identity(), facts->allocated, facts->links);
    return {};
  }
  if (!isThere(errno)) return {};
  // The file was replaced by a folder.
  if (errno == EISDIR) return tryAgain(folder, name);
  return failure(name, errno);
}

FolderEraser::Done FolderEraser::enter(const std::string& name) {
  Frame& parent = frames_.back();
  FileHandle opened{openat(parent.handle.get(), name.c_str(), eraserFlags)};
  if (!opened) {
    if (!isThere(errno)) return {};
    // A folder without read permission can still be removed if it is empty.
    if (errno == EACCES)
      return unlinkat(parent.handle.get(), name.c_str(), AT_REMOVEDIR) == 0 || !isThere(errno)
                 ? Done{}
                 : Done{failure(name, EACCES)};
    // The folder was replaced by a file or a symbolic link: remove that item.
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

// Removes the deepest folder, which is empty now, and continues in its parent.
FolderEraser::Done FolderEraser::leave() {
  if (auto reopened = reopenParent(); !reopened) return reopened;
  std::string name = std::move(frames_.back().name);
  const FileIdentity identity = frames_.back().identity;
  frames_.pop_back();
  Frame& parent = frames_.back();
  if (unlinkat(parent.handle.get(), name.c_str(), AT_REMOVEDIR) == 0) {
    progress_.add(identity, 0, 1);
    return {};
  }
  if (!isThere(errno)) return {};
  if (errno == ENOTEMPTY || errno == EEXIST) return tryAgain(parent, std::move(name));
  if (errno == ENOTDIR) return removeFile(parent, name.c_str());
  return failure(name, errno);
}

FolderEraser::Done FolderEraser::reopenParent() {
  Frame& parent = frames_[frames_.size() - 2];
  if (parent.handle) return {};
  FileHandle opened{openat(frames_.back().handle.get(), "..", eraserFlags)};
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

// Also drops the names stored in the frame: reopening the folder starts its listing again.
void FolderEraser::closeShallowest() {
  frames_[firstOpen_].handle.close();
  frames_[firstOpen_].folders = {};
  ++firstOpen_;
}

std::unexpected<RemovalFailure> FolderEraser::failure(const std::string& name, int errorNumber) const {
  auto failed = removalFailure(pathOf(name), errorNumber, frames_.back().handle, name);
  if (errorNumber == ESTALE)
    failed.error().error.message = i18n("{item} was moved while it was being removed");
  return failed;
}

// The path for a message, without the middle part if it is very long.
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
