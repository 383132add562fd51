#pragma once

#include "core/base/Error.h"
#include "core/host/linux/journal/FanotifySource.h"
#include "core/host/linux/journal/InotifySource.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace spacemint {

/// Watches on the folders below a root and what they reported, fetched from the kernel's short queue into
/// memory so that it does not overflow while somebody is busy. One thread.
class EventQueue {
 public:
  /// Bytes of events in memory, beyond which they count as lost.
  static constexpr std::size_t backlogLimit = std::size_t{64} << 20U;

  struct Options {
    /// A mark on the file system takes the place of watches where the system grants it.
    bool marksFileSystem = true;
    /// Kinds of events (IN_… bits) that are not asked for.
    std::uint32_t deafTo = 0;
  };

  /// Fails with EMFILE when the user has as many watchers as the kernel grants.
  static std::expected<EventQueue, Error> open(Options options);

  /// Stays the same for as long as the queue is not replaced.
  int descriptor() const { return ready_.get(); }

  /// Watches the open root, before anything below it. Fails with an errno.
  std::expected<int, int> begin(const FileHandle& root);
  /// Adds watches from other threads, also while the queue is replaced; those then go nowhere.
  std::shared_ptr<EventSource> watcher() const;
  std::expected<int, int> watch(const FileHandle& folder) { return watcher()->watch(folder); }
  void unwatch(int watch) { watcher()->unwatch(watch); }
  std::size_t watchLimit() const { return watcher()->watchLimit(); }
  bool marksFileSystem() const { return fanotify_ != nullptr; }

  /// Moves what the kernel has queued by now into memory.
  void fetch();
  /// The next event in memory.
  std::optional<FolderEvent> next() { return backlog_.next(); }
  /// Whether events in memory were given up, or a descriptor failed.
  bool isBroken() const { return broken_; }
  /// Bytes fetched, and bytes given out by `next`, since the beginning.
  std::uint64_t fetched() const { return backlog_.added(); }
  std::uint64_t taken() const { return backlog_.taken(); }
  /// Bytes that the kernel told since the last call, also of folders that are not watched.
  std::uint64_t takeHeard();

  /// Bytes of this process that the watches take.
  std::size_t memory() const { return watcher()->memory(); }

 private:
  EventQueue(Options options, FileHandle ready, std::shared_ptr<InotifySource> inotify);
  bool listenTo(const EventSource& source);
  void fetchFrom(EventSource& source);

  Options options_;
  FileHandle ready_;
  // Watches all folders, or the root itself alone where there is the other one.
  std::shared_ptr<InotifySource> inotify_;
  std::shared_ptr<FanotifySource> fanotify_;
  bool begun_ = false;
  EventBacklog backlog_;
  std::uint64_t heard_ = 0;
  bool broken_ = false;
};

}  // namespace spacemint
