#pragma once

#include <atomic>
#include <cstdint>

namespace spacemint {

/// Gives out the event ids of one session. What happens is stamped with the id that is given out next, so an
/// id tells apart what was handled before it was given from what came after. Any thread.
class EventClock {
 public:
  /// Ids of one session: this many low bits. They are counted by questions, not by events.
  static constexpr unsigned bits = 20;
  static constexpr std::uint64_t count = std::uint64_t{1} << bits;

  explicit EventClock(std::uint64_t first) : next_(first), end_(first + count - 1) {}

  /// The stamp for what happens now.
  std::uint64_t stamp() const { return next_; }
  /// An id that was not given before; 0 when the session has none left.
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
