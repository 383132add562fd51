#pragma once

#include "core/base/Error.h"
#include "core/host/linux/FileHandle.h"

#include <cstdint>
#include <deque>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// What the kernel tells of a watched folder.
struct FolderEvent {
  int watch = 0;
  /// IN_… bits.
  std::uint32_t what = 0;
  /// The entry that it is about; empty for the folder itself. Valid until the next event is asked for.
  std::string_view name;
};

/// Watches on folders and what they reported (`inotify`), fetched from the kernel's short queue into memory
/// so that it does not overflow while somebody is busy. One thread.
class InotifyQueue {
 public:
  /// Bytes of events in memory, beyond which they count as lost.
  static constexpr std::size_t backlogLimit = std::size_t{64} << 20U;

  /// Fails with EMFILE when the user has as many instances as the kernel grants (`inotify_init1`). Events of
  /// the kinds in `deafTo` (IN_… bits) are not asked for.
  static std::expected<InotifyQueue, Error> open(std::uint32_t deafTo = 0);

  int descriptor() const { return watcher_.handle_->get(); }

  /// Adds watches from other threads, also while the queue is replaced; those then go nowhere.
  class Watcher {
   public:
    Watcher() = default;
    std::expected<int, int> watch(const FileHandle& folder) const;

   private:
    friend InotifyQueue;
    std::shared_ptr<const FileHandle> handle_;
    std::uint32_t mask_ = 0;
    std::string handles_;
  };
  const Watcher& watcher() const { return watcher_; }

  /// Watches an open folder, also when it is no longer at its path. The same folder always gives the same
  /// watch. Fails with an errno, ENOSPC at the limit (`inotify_add_watch`).
  std::expected<int, int> watch(const FileHandle& folder) { return watcher_.watch(folder); }
  void unwatch(int watch);

  /// Moves what the kernel has queued by now into memory.
  void fetch();
  /// The next event in memory.
  std::optional<FolderEvent> next();
  /// Whether events in memory were given up, or the descriptor failed.
  bool isBroken() const { return broken_; }
  /// Bytes fetched, and bytes given out by `next`, since the beginning.
  std::uint64_t fetched() const { return fetched_; }
  std::uint64_t taken() const { return taken_; }

 private:
  InotifyQueue(FileHandle handle, std::uint32_t mask);

  Watcher watcher_;
  std::deque<std::vector<char>> backlog_;
  std::vector<char> spare_;
  std::size_t at_ = 0;  // how much of the first of them was given out
  std::uint64_t fetched_ = 0;
  std::uint64_t taken_ = 0;
  bool broken_ = false;
};

/// How many watches a recorder may have: an eighth of what the kernel grants a user is left to others.
std::size_t defaultWatchLimit();

/// The line that raises a limit of this kernel until the next boot, as an administrator would type it.
std::string watchLimitAdvice();
std::string instanceLimitAdvice();

}  // namespace spacemint
