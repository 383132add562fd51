#pragma once

#include "core/base/Error.h"
#include "core/host/linux/journal/FanotifySource.h"
#include "core/host/linux/journal/InotifySource.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>

namespace spacemint {

/// The events of the folders below one root. They are moved from the kernel's short queue into memory, so
/// that the kernel's queue does not overflow during a crawl. One thread at a time.
class EventQueue {
 public:
  /// With more events than this in memory, all of them are dropped and the queue has overflowed.
  static constexpr std::size_t eventLimit = 1'000'000;

  /// Fails with EMFILE when the user has as many inotify instances as the kernel allows.
  static std::expected<EventQueue, Error> open();

  /// Becomes readable when events can be fetched.
  int descriptor() const { return ready_.get(); }

  /// Watches the open root. Must be called before any other folder is watched. A mark on the
  /// root's file system replaces the watches if the kernel allows it and all folders are on that file system
  /// (`mayMark`). Fails with an errno.
  std::expected<int, int> begin(const FileHandle& root, bool mayMark);
  /// Where folders are watched. Scan threads keep a copy, because this queue may be replaced meanwhile; their
  /// watches are then without effect.
  const std::shared_ptr<EventSource>& source() const { return source_; }
  bool marksFileSystem() const { return fanotify_ != nullptr; }

  /// Moves the events that the kernel has queued by now into memory.
  void fetch();
  /// Removes and returns the oldest event in memory.
  std::optional<FolderEvent> next();
  /// The number of events in memory.
  std::size_t size() const { return events_.size(); }
  /// True when events in memory were dropped or the kernel failed. Stays true.
  bool hasOverflowed() const { return overflowed_; }
  /// How many events the kernel sent since the last call, including those of folders that are not watched.
  std::size_t takeReceived();

 private:
  EventQueue(FileHandle ready, std::shared_ptr<InotifySource> inotify);
  bool poll(const EventSource& source);
  void fetchFrom(EventSource& source);

  FileHandle ready_;
  // Watches every folder; with a mark, only the root itself.
  std::shared_ptr<InotifySource> inotify_;
  // Null when the system does not allow a mark.
  std::shared_ptr<FanotifySource> fanotify_;
  std::shared_ptr<EventSource> source_;
  bool begun_ = false;
  std::deque<FolderEvent> events_;
  std::size_t received_ = 0;
  bool overflowed_ = false;
};

}  // namespace spacemint
