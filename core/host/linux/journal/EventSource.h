#pragma once

#include "core/host/FileHandle.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <expected>
#include <optional>
#include <string>

namespace spacemint {

/// One event of the kernel about a watched folder.
struct FolderEvent {
  int watch = 0;
  /// IN_… bits, from fanotify too.
  std::uint32_t mask = 0;
  /// The entry that changed; empty when the event is about the folder itself.
  std::string name = {};
};

/// A kernel interface that reports events of folders. `watch` and `unwatch` may be called from any thread,
/// all else from one thread at a time.
class EventSource {
 public:
  EventSource() = default;
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;
  virtual ~EventSource() = default;

  /// Becomes readable when events are queued.
  virtual int descriptor() const = 0;
  /// Watches an open folder, even when it is no longer at its path. The same folder always gets the same
  /// watch number. Fails with an errno; ENOSPC means that the kernel's limit is reached.
  virtual std::expected<int, int> watch(const FileHandle& folder) = 0;
  virtual void unwatch(int watch) = 0;
  /// Appends the events that the kernel has queued by now. Returns how many events were read, including those
  /// of folders that are not watched; absent when reading failed.
  virtual std::optional<std::size_t> fetch(std::deque<FolderEvent>& events) = 0;
  /// The largest number of folders that should be watched.
  virtual std::size_t watchLimit() const = 0;
  /// Bytes of this process that the watches take.
  virtual std::size_t memory() const = 0;
};

}  // namespace spacemint
