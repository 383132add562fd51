#include "core/host/Removal.h"

#include "core/host/linux/FolderEraser.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/ItemPlace.h"
#include "core/host/linux/MountTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

constexpr std::size_t bufferSize = 262'144;

Error crossesMount(const std::string& path, const std::string& mountPoint) {
  Error error = systemError(path, EXDEV);
  error.message = path + ": something else is mounted at " + mountPoint;
  return error;
}

Error changed(const std::string& path) {
  Error error = systemError(path, ESTALE);
  error.message = path + ": is no longer what it was";
  return error;
}

// One entry of an open folder, held so that nobody can put another one in its place unnoticed.
struct Item {
  FileHandle handle;
  HandleFacts facts;
};

std::expected<Item, Error> hold(const FileHandle& parent, const std::string& name, const std::string& path) {
  FileHandle handle{openat(parent.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)};
  if (!handle) return std::unexpected(systemError(path, errno));
  const auto facts = factsOf(handle);
  const auto parentFacts = factsOf(parent);
  if (!facts || !parentFacts) {
    return std::unexpected(systemError(path, facts ? parentFacts.error() : facts.error()));
  }
  if (facts->mounted != parentFacts->mounted) return std::unexpected(crossesMount(path, path));
  return Item{std::move(handle), *facts};
}

// Where something is mounted in a folder or on it, as the table of mounts tells it. Asked before anything is
// removed; what the table does not tell is noticed on the way, on the handle of each folder.
std::optional<std::string> mountIn(const FileHandle& folder) {
  const std::string path = realPathOf(folder);
  if (path.empty()) return std::nullopt;
  const auto mounts = currentMounts();
  const auto found = std::ranges::find_if(mounts, [&](const Mount& mount) {
    return mount.mountPoint == path || mount.mountPoint.starts_with(path + "/");
  });
  if (found == mounts.end()) return std::nullopt;
  return found->mountPoint;
}

bool isGone(int result) {
  return result == 0 || errno == ENOENT;
}

std::expected<void, Error> removeFile(const FileHandle& parent, const std::string& name,
                                      const std::string& path) {
  if (isGone(unlinkat(parent.get(), name.c_str(), 0))) return {};
  return std::unexpected(errno == EISDIR ? changed(path) : systemError(path, errno));
}

// Empties the held folder and removes it from its parent, unless another one stands there by now.
std::expected<void, Error> removeFolder(const FileHandle& parent, const std::string& name,
                                        const std::string& path, const Item& item) {
  FolderEraser eraser(path);
  for (int round = 0; round < FolderEraser::retryLimit; ++round) {
    FileHandle folder{openat(item.handle.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    const int notOpened = folder ? 0 : errno;
    if (notOpened == ENOENT) return {};
    if (folder) {
      if (auto emptied = eraser.empty(std::move(folder), item.facts); !emptied) return emptied;
    } else if (notOpened != EACCES) {
      return std::unexpected(systemError(path, notOpened));
    }
    const auto now = factsOf(parent, name.c_str());
    if (!now && now.error() == ENOENT) return {};
    if (!now || now->identity() != item.facts.identity()) return std::unexpected(changed(path));
    // Also without the right to list it, for nothing may be in it.
    if (isGone(unlinkat(parent.get(), name.c_str(), AT_REMOVEDIR))) return {};
    if (errno != ENOTEMPTY && errno != EEXIST) return std::unexpected(systemError(path, errno));
    if (notOpened != 0) return std::unexpected(systemError(path, notOpened));
  }
  return std::unexpected(systemError(path, ENOTEMPTY));
}

class LinuxOpened final : public OpenedForRemoval {
 public:
  LinuxOpened(FileHandle handle, std::string path, bool hasMounts)
      : handle_(std::move(handle)),
        path_(std::move(path)),
        hasMounts_(hasMounts) {}

  std::expected<std::vector<std::string>, Error> nextNames() override {
    std::vector<std::string> names;
    // A call may return only "." and "..", which is not yet the end.
    while (names.empty()) {
      const long length = syscall(SYS_getdents64, handle_.get(), buffer_.get(), bufferSize);
      if (length == 0 || (length < 0 && errno == ENOENT)) break;  // its end, or removed by somebody else
      if (length < 0) return std::unexpected(systemError(path_, errno));
      for (long at = 0; at < length;) {
        const auto* record = reinterpret_cast<const dirent64*>(buffer_.get() + at);
        at += record->d_reclen;
        const std::string_view name = record->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
      }
    }
    return names;
  }

  std::expected<void, Error> remove(const std::string& name) override {
    if (isGone(unlinkat(handle_.get(), name.c_str(), 0))) return {};
    const std::string path = path_ + "/" + name;
    if (errno != EISDIR) return std::unexpected(systemError(path, errno));
    const auto item = hold(handle_, name, path);
    if (!item) return item.error().isSystem(ENOENT) ? Done{} : std::unexpected(item.error());
    if (!S_ISDIR(item->facts.mode)) return std::unexpected(changed(path));
    const auto mount = hasMounts_ ? mountIn(item->handle) : std::nullopt;
    if (mount) return std::unexpected(crossesMount(path, *mount));
    return removeFolder(handle_, name, path, *item);
  }

 private:
  using Done = std::expected<void, Error>;

  FileHandle handle_;
  std::string path_;
  bool hasMounts_;
  std::unique_ptr<std::byte[]> buffer_ = std::make_unique_for_overwrite<std::byte[]>(bufferSize);
};

// The item of a target as far as it is still the one that was meant.
struct HeldTarget {
  ItemPlace place;
  Item item;
};

std::expected<HeldTarget, Error> holdTarget(const RemovalTarget& target) {
  auto place = placeOf(target);
  if (!place) return std::unexpected(place.error());
  auto item = hold(place->parent, place->name, target.path);
  if (!item) return std::unexpected(item.error());
  if (target.identity && *target.identity != item->facts.identity()) {
    return std::unexpected(changed(target.path));
  }
  if (S_ISLNK(item->facts.mode)) return std::unexpected(systemError(target.path, ELOOP));
  return HeldTarget{std::move(*place), std::move(*item)};
}

class LinuxRemoval final : public Removal {
 public:
  std::expected<void, Error> remove(const RemovalTarget& target) override {
    const auto held = holdTarget(target);
    if (!held) return std::unexpected(held.error());
    const auto& [place, item] = *held;
    if (!S_ISDIR(item.facts.mode)) return removeFile(place.parent, place.name, target.path);
    if (const auto mount = mountIn(item.handle)) return std::unexpected(crossesMount(target.path, *mount));
    return removeFolder(place.parent, place.name, target.path, item);
  }

  std::expected<std::unique_ptr<OpenedForRemoval>, Error> open(const RemovalTarget& folder) override {
    const auto held = holdTarget(folder);
    if (!held) return std::unexpected(held.error());
    FileHandle opened{openat(held->item.handle.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (!opened) return std::unexpected(systemError(folder.path, errno));
    const bool hasMounts = mountIn(opened).has_value();
    return std::make_unique<LinuxOpened>(std::move(opened), folder.path, hasMounts);
  }
};

}  // namespace

std::expected<FileIdentity, Error> fileIdentity(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::unexpected(systemError(path, errno));
  return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<std::string> mountedIn(const std::string& folder) {
  const FileHandle handle{open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  return handle ? mountIn(handle) : std::nullopt;
}

std::unique_ptr<Removal> hostRemoval() {
  return std::make_unique<LinuxRemoval>();
}

}  // namespace spacemint
