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

/// Device and inode number. Together they identify an item on the disk, whatever its name.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  auto operator<=>(const FileIdentity&) const = default;
};

/// The identity of the item at `path`. Does not follow a symbolic link at the end of the path.
std::expected<FileIdentity, Error> fileIdentity(const std::string& path);

/// The first mount point at or below `folder` in the kernel's table; absent if there is none or the folder
/// cannot be opened.
std::optional<std::string> mountedIn(const std::string& folder);

/// An item to remove, and conditions that must hold at the time of the removal.
struct RemovalTarget {
  /// Absolute and without "..".
  std::string path;
  /// Symbolic links in the path of this folder are followed (a home folder may be reached through a link),
  /// links below it are not. If `path` is not below this folder, no links are followed.
  std::string linksAllowedUpTo = {};
  /// The item that the user confirmed; absent to remove whatever item is at the path.
  std::optional<FileIdentity> identity = {};
};

/// Where and why a removal stopped. `error.code` is the errno; `error.message` is a phrase that follows the
/// path in a sentence: "belongs to root".
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

/// Counts removed items, and stops the removal if the watch function returns false. One thread at a time.
class RemovalProgress {
 public:
  /// Called before each entry, and repeatedly while a tool runs; false stops the removal.
  using Watch = std::function<bool(const Removed& soFar)>;

  explicit RemovalProgress(Watch watch = {}) : watch_(std::move(watch)) {}

  const Removed& removed() const { return removed_; }
  /// Calls the watch function.
  bool mayGoOn() const { return !watch_ || watch_(removed_); }

  /// Counts an item that was just removed. `links` is the number of its hard links before the removal.
  void add(const FileIdentity& item, Bytes allocated, std::uint32_t links);

 private:
  Watch watch_;
  Removed removed_;
  /// The number of hard links that a file had before its first name was removed.
  std::map<FileIdentity, std::uint32_t> links_;
};

// Functions that remove files and folders permanently. They block; any thread.
//
// They change no modes, follow no symbolic links (except `linksAllowedUpTo`) and enter no other volume or
// mount. The first entry that cannot be removed ends the removal; entries removed before stay removed. An
// entry that another program removes at the same time is no failure. Errors are those of system calls, among
// them:
//
// - EXDEV: the item is a mount point or contains one. If that is known before the removal starts, nothing is
//   removed.
// - ESTALE: the item at the path is not `identity`, or a folder was moved away during the removal.
// - ELOOP: the item is a symbolic link, or its path contains one.
// - EINVAL: the path is not absolute, contains "..", or is "/".
// - ECANCELED: the watch function of `progress` returned false.

/// Removes a file, or a folder with its contents.
std::expected<void, RemovalFailure> removeItem(const RemovalTarget& target, RemovalProgress& progress);

/// The domain of the error if an `EntryCheck` refused an entry.
inline constexpr std::string_view keptByCheck = "check";

/// Returns why an entry must stay, as a phrase that follows the path in a sentence, or nothing if the entry
/// may be removed.
using EntryCheck = std::function<std::optional<std::string>(const std::string& path)>;

/// Removes the entries of a folder in listing order; the folder itself stays. Removes symbolic links, not
/// their targets. Stops at the first entry that `check` refuses. Keeps working on the folder that it opened,
/// even if another folder appears at the path meanwhile.
std::expected<void, RemovalFailure> emptyFolder(const RemovalTarget& target, const EntryCheck& check,
                                                RemovalProgress& progress);

}  // namespace spacemint
