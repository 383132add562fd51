#pragma once

#include "core/host/FileHandle.h"
#include "core/host/linux/journal/EventBacklog.h"

#include <cstddef>
#include <expected>
#include <optional>

namespace spacemint {

/// A way in which the kernel tells what happens in folders. One thread but for `watch`.
class EventSource {
 public:
  EventSource() = default;
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;
  virtual ~EventSource() = default;

  /// Becomes ready when there is something to fetch.
  virtual int descriptor() const = 0;
  /// Watches an open folder, also when it is no longer at its path. The same folder always gives the same
  /// watch. Any thread. Fails with an errno, ENOSPC at the limit.
  virtual std::expected<int, int> watch(const FileHandle& folder) = 0;
  virtual void unwatch(int watch) = 0;
  /// Moves what the kernel has queued by now into the backlog. How many bytes it told, also of what is not
  /// watched; absent when the descriptor failed.
  virtual std::optional<std::size_t> fetch(EventBacklog& backlog) = 0;
  /// How many folders are to be watched at most.
  virtual std::size_t watchLimit() const = 0;
  /// Bytes of this process that the watches take.
  virtual std::size_t memory() const = 0;
};

}  // namespace spacemint
