#pragma once

#include "core/base/Bytes.h"
#include "core/base/Error.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace spacemint {

/// Device and inode: they tell one item of the disk from any other, whatever its name.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  auto operator<=>(const FileIdentity&) const = default;
};

/// The identity of the item at `path`; of a link itself, not of its target.
std::expected<FileIdentity, Error> fileIdentity(const std::string& path);

/// The first mount point at or below `folder`; absent where there is none.
std::optional<std::string> mountedIn(const std::string& folder);

/// One item to remove, and what must still hold when that happens.
struct RemovalTarget {
  /// Absolute and without "..".
  std::string path;
  /// Symbolic links are followed on the way to this folder (a home folder may lie behind one) and nowhere
  /// after it. Where `path` does not lie in it, none is followed at all.
  std::string linksAllowedUpTo = {};
  /// The confirmed item; absent to take the item that stands there.
  std::optional<FileIdentity> identity = {};
};

/// Where and why a removal ended early. `error` has the errno; its message is a phrase to put behind the
/// path: "belongs to root".
struct RemovalFailure {
  Error error;
  std::string path;
};

/// How much was removed.
struct Removed {
  /// Files, folders and links.
  std::int64_t items = 0;
  /// Allocated bytes, counted as a scan counts them: a file with several hard links counts its share at each
  /// name.
  Bytes bytes = 0;
};

/// Counts the removed items, and stops the removal when its watcher says so. One thread.
class RemovalProgress {
 public:
  /// Called before each entry, and now and then while a tool runs; false stops there.
  using Watch = std::function<bool(const Removed& soFar)>;

  explicit RemovalProgress(Watch watch = {}) : watch_(std::move(watch)) {}

  const Removed& removed() const { return removed_; }
  /// Asks the watcher.
  bool mayGoOn() const { return !watch_ || watch_(removed_); }

  /// Counts an item that was just removed. `links` is how many names it had before that.
  void add(const FileIdentity& item, Bytes allocated, std::uint32_t links);

 private:
  Watch watch_;
  Removed removed_;
  /// How many names a file had when its first one was removed.
  std::map<FileIdentity, std::uint32_t> links_;
};

// The removal of files and folders for good. Each function blocks; any thread.
//
// No mode is changed, no symbolic link followed (but see `linksAllowedUpTo`), no other volume or mount
// entered. The first entry that cannot be removed ends the removal; what is gone by then stays gone. An entry
// that vanishes meanwhile counts as removed. Errors are those of system calls, among them:
//
// - EXDEV: the item is a mount point or something is mounted in it. Where that is known beforehand nothing is
//   removed at all.
// - ESTALE: another item than `identity` stands at the path, or a folder was moved away during the removal.
// - ELOOP: the item is a symbolic link, or a link stands on the way to it.
// - EINVAL: not an absolute path, one with "..", or the root.
// - ECANCELED: the watcher of `progress` stopped it.

/// Removes the item with all that is in it.
std::expected<void, RemovalFailure> removeItem(const RemovalTarget& target, RemovalProgress& progress);

/// Domain of the error where an `EntryCheck` kept an entry.
inline constexpr std::string_view keptByCheck = "check";

/// Why one entry must stay, as a phrase to put behind its path; absent where it may go.
using EntryCheck = std::function<std::optional<std::string>(const std::string& path)>;

/// Removes the entries of a folder in listing order; the folder itself stays. Links among them are removed as
/// links. The first entry that `check` keeps ends it. The entries are those of the folder that was
/// opened, also when its path leads elsewhere by then.
std::expected<void, RemovalFailure> emptyFolder(const RemovalTarget& folder, const EntryCheck& check,
                                                RemovalProgress& progress);

}  // namespace spacemint
