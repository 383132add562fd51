#pragma once

#include <atomic>
#include <cstdint>

namespace spacemint {

/// Gives out the event ids of one session. Every change is stamped with the id that will be given out next,
/// so a change with `stamp > id` was handled after `id` was given out. Any thread.
class EventClock {
 public:
  /// The low bits of an id, which count within a session. They advance once per query, not per event.
  static constexpr unsigned bits = 20;
  static constexpr std::uint64_t count = std::uint64_t{1} << bits;

  explicit EventClock(std::uint64_t first) : next_(first), end_(first + count - 1) {}

  /// The stamp for a change that is handled now.
  std::uint64_t stamp() const { return next_; }
  /// A new id; 0 when the session has no ids left.
  std::uint64_t give() {
    std::uint64_t id = next_;
    while (id < end_ && !next_.compare_exchange_weak(id, id + 1)) {
    }
    return id < end_ ? id : 0;
  }

 private:
  std::atomic<std::uint64_t> next_;
  std::uint64_t end_;
};

}  // namespace spacemint
