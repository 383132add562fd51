#pragma once

#include "core/base/Error.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// What tells one item of the disk from any other, whatever its name.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  bool operator==(const FileIdentity&) const = default;
};

/// The identity of what stands at `path` itself; of a link, not of what it names.
std::expected<FileIdentity, Error> fileIdentity(const std::string& path);

/// Where something is mounted in a folder or on it; absent where nothing is known to be.
std::optional<std::string> mountedIn(const std::string& folder);

/// One item that somebody decided to remove, and what must still hold when that happens.
struct RemovalTarget {
  /// Absolute and without "..".
  std::string path;
  /// Symbolic links are followed on the way to this folder (a home folder may lie behind one) and nowhere
  /// after it. Where `path` does not lie in it, none is followed at all.
  std::string linksAllowedUpTo = {};
  /// What was confirmed; absent to take what stands there.
  std::optional<FileIdentity> identity = {};
};

/// A folder held open to be emptied. Its entries are reached through its handle, so they are those of this
/// folder also when its path leads elsewhere by now.
class OpenedForRemoval {
 public:
  OpenedForRemoval() = default;
  OpenedForRemoval(const OpenedForRemoval&) = delete;
  OpenedForRemoval& operator=(const OpenedForRemoval&) = delete;
  virtual ~OpenedForRemoval() = default;

  /// The next names in listing order, never "." and ".."; none at the folder's end.
  virtual std::expected<std::vector<std::string>, Error> nextNames() = 0;

  /// Removes one entry with all that is in it; a link as a link. Nothing where it has vanished.
  virtual std::expected<void, Error> remove(const std::string& name) = 0;
};

/// The removal of files and folders for good. Blocks; any thread.
///
/// No mode is changed, no symbolic link followed (but see `linksAllowedUpTo`), no other volume or mount
/// entered. It stops at the first entry that cannot be removed, and what is gone by then stays gone. What
/// vanishes meanwhile counts as removed. Errors are those of system calls, among them:
///
/// - EXDEV: the item is a mount point or something is mounted in it. Where that is known beforehand nothing
///   is removed at all.
/// - ESTALE: another item than `identity` stands at the path, or a folder was moved away in the middle of it.
/// - ELOOP: the item is a symbolic link, or a link stands on the way to it.
/// - EINVAL: not an absolute path, one with "..", or the root.
class Removal {
 public:
  Removal() = default;
  Removal(const Removal&) = delete;
  Removal& operator=(const Removal&) = delete;
  virtual ~Removal() = default;

  /// Removes the item with all that is in it.
  virtual std::expected<void, Error> remove(const RemovalTarget& target) = 0;

  /// Opens a folder to remove its entries; the folder itself stays.
  virtual std::expected<std::unique_ptr<OpenedForRemoval>, Error> open(const RemovalTarget& folder) = 0;
};

/// The removal from this system's own disks.
std::unique_ptr<Removal> hostRemoval();

}  // namespace spacemint
