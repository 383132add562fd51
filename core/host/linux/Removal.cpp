#include "core/host/Removal.h"

#include "core/base/Translation.h"
#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/FolderEraser.h"
#include "core/host/linux/ItemPlace.h"
#include "core/host/linux/MountTable.h"
#include "core/host/linux/RemovalReason.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

namespace spacemint {

namespace {

using Done = std::expected<void, RemovalFailure>;

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

std::unexpected<RemovalFailure> crossesMount(const std::string& path, const std::string& mountPoint) {
  auto failure = removalFailure(path, EXDEV);
  failure.error().error.message =
      i18n("{item} has something else mounted in it, at {mount}", {{"mount", mountPoint}});
  return failure;
}

Done removeFile(const FileHandle& parent, const std::string& name, const std::string& path,
                const HandleFacts& facts, RemovalProgress& progress) {
  if (unlinkat(parent.get(), name.c_str(), 0) == 0) {
    progress.add(facts.identity(), facts.allocated, facts.links);
    return {};
  }
  if (errno == ENOENT) return {};
  return removalFailure(path, errno == EISDIR ? ESTALE : errno, parent, name);
}

// Empties the held folder and removes it from its parent, unless another item is at its path now.
Done removeFolder(const FileHandle& parent, const std::string& name, const std::string& path,
                  const HeldItem& item, RemovalProgress& progress) {
  FolderEraser eraser(path, progress);
  for (int round = 0; round < FolderEraser::retryLimit; ++round) {
    FileHandle folder{openat(item.handle.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    const int notOpened = folder ? 0 : errno;
    if (notOpened == ENOENT) return {};
    if (folder) {
      if (auto emptied = eraser.empty(std::move(folder), item.facts); !emptied) return emptied;
    } else if (notOpened != EACCES) {
      return removalFailure(path, notOpened);
    }
    const auto now = factsOf(parent, name.c_str());
    if (!now && now.error() == ENOENT) return {};
    if (!now || now->identity() != item.facts.identity()) return removalFailure(path, ESTALE);
    // An empty folder can be removed even without permission to list it.
    if (unlinkat(parent.get(), name.c_str(), AT_REMOVEDIR) == 0) {
      progress.add(item.facts.identity(), 0, 1);
      return {};
    }
    if (errno == ENOENT) return {};
    if (errno != ENOTEMPTY && errno != EEXIST) return removalFailure(path, errno, parent, name);
    if (notOpened != 0) return removalFailure(path, notOpened, parent, name);
  }
  return removalFailure(path, ENOTEMPTY);
}

// Removes an entry with its contents; does not follow a symbolic link.
Done removeEntry(const FileHandle& folder, const std::string& name, const std::string& path, bool hasMounts,
                 RemovalProgress& progress) {
  const auto facts = factsOf(folder, name.c_str());
  if (!facts) return facts.error() == ENOENT ? Done{} : removalFailure(path, facts.error(), folder, name);
  if (!S_ISDIR(facts->mode)) return removeFile(folder, name, path, *facts, progress);
  const auto item = holdEntry(folder, name, path);
  if (!item) return item.error().error.code == ENOENT ? Done{} : std::unexpected(item.error());
  if (item->facts.identity() != facts->identity()) return removalFailure(path, ESTALE);
  if (const auto mount = hasMounts ? mountIn(item->handle) : std::nullopt) return crossesMount(path, *mount);
  return removeFolder(folder, name, path, *item, progress);
}

// The next names of a folder in listing order, without "." and ".."; empty at the end of the folder.
std::expected<std::vector<std::string>, int> nextNames(const FileHandle& folder) {
  alignas(8) std::array<std::byte, 32'768>
      buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the call
  std::vector<std::string> names;
  // A call may return only "." and "..": that is not the end.
  while (names.empty()) {
    const auto more =
        readFolderEntries(folder, buffer, [&](const FolderEntry& entry) { names.emplace_back(entry.name); });
    if (!more && more.error() != ENOENT) return std::unexpected(more.error());
    // The end of the folder, or another program removed the folder.
    if (!more || !*more) break;
  }
  return names;
}

std::expected<HeldTarget, RemovalFailure> holdUnlinked(const RemovalTarget& target) {
  auto held = holdTarget(target);
  if (held && S_ISLNK(held->item.facts.mode)) return removalFailure(target.path, ELOOP);
  return held;
}

}  // namespace

void RemovalProgress::add(const FileIdentity& item, Bytes allocated, std::uint32_t links) {
  if (links > 1) {
    links = links_.try_emplace(item, links).first->second;
  } else if (const auto known = links_.find(item); known != links_.end()) {
    links = known->second;
  }
  ++removed_.items;
  removed_.bytes += allocated / std::max(links, 1U);
}

std::expected<void, RemovalFailure> removeItem(const RemovalTarget& target, RemovalProgress& progress) {
  const auto held = holdUnlinked(target);
  if (!held) return std::unexpected(held.error());
  if (!S_ISDIR(held->item.facts.mode)) {
    return removeFile(held->parent, held->name, target.path, held->item.facts, progress);
  }
  if (const auto mount = mountIn(held->item.handle)) return crossesMount(target.path, *mount);
  return removeFolder(held->parent, held->name, target.path, held->item, progress);
}

std::expected<void, RemovalFailure> emptyFolder(const RemovalTarget& target, const EntryCheck& check,
                                                RemovalProgress& progress) {
  const auto held = holdUnlinked(target);
  if (!held) return std::unexpected(held.error());
  const FileHandle folder{openat(held->item.handle.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!folder) return removalFailure(target.path, errno, held->parent, held->name);
  const bool hasMounts = mountIn(folder).has_value();
  while (true) {
    const auto names = nextNames(folder);
    if (!names) return removalFailure(target.path, names.error());
    if (names->empty()) return {};
    for (const std::string& name : *names) {
      const std::string path = target.path + (target.path.ends_with('/') ? "" : "/") + name;
      if (!progress.mayGoOn()) return removalFailure(path, ECANCELED);
      if (const auto reason = check ? check(path) : std::nullopt) {
        return std::unexpected(
            RemovalFailure{{.domain = std::string{keptByCheck}, .message = *reason}, path});
      }
      if (auto removed = removeEntry(folder, name, path, hasMounts, progress); !removed) return removed;
    }
  }
}

std::expected<FileIdentity, Error> fileIdentity(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::unexpected(systemError(path, errno));
  return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<std::string> mountedIn(const std::string& folder) {
  const FileHandle handle{open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  return handle ? mountIn(handle) : std::nullopt;
}

}  // namespace spacemint
