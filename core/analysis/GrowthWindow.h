#pragma once

#include "core/base/Bytes.h"

#include <array>
#include <chrono>
#include <cstddef>

namespace spacemint {

/// Bytes in the last ten seconds, the last minute and the last ten minutes.
struct GrowthFigures {
  Bytes tenSeconds = 0;
  Bytes minute = 0;
  Bytes tenMinutes = 0;

  GrowthFigures& operator+=(const GrowthFigures& other) {
    tenSeconds = saturatingAdd(tenSeconds, other.tenSeconds);
    minute = saturatingAdd(minute, other.minute);
    tenMinutes = saturatingAdd(tenMinutes, other.tenMinutes);
    return *this;
  }
  GrowthFigures operator-(const GrowthFigures& other) const {
    return {saturatingSubtract(tenSeconds, other.tenSeconds), saturatingSubtract(minute, other.minute),
            saturatingSubtract(tenMinutes, other.tenMinutes)};
  }
  bool operator==(const GrowthFigures&) const = default;
};

/// Adds up bytes over the last ten minutes in 168 bytes of memory. The sums forget in steps: after 2, 10 and
/// 60 seconds. Times must not go backwards.
class GrowthWindow {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void add(Bytes bytes, Time now) {
    tenSeconds_.add(bytes, now);
    minute_.add(bytes, now);
    tenMinutes_.add(bytes, now);
  }
  GrowthFigures figures(Time now) const {
    return {tenSeconds_.sum(now), minute_.sum(now), tenMinutes_.sum(now)};
  }
  /// Adds what another window saw, as if it had been seen here.
  void merge(const GrowthWindow& other) {
    tenSeconds_.merge(other.tenSeconds_);
    minute_.merge(other.minute_);
    tenMinutes_.merge(other.tenMinutes_);
  }

 private:
  // The last `Count` steps of `Step` seconds each.
  template <std::size_t Count, int Step>
  class Ring {
   public:
    void add(Bytes bytes, Time now) {
      moveTo(stepOf(now));
      Bytes& slot = slots_[static_cast<std::size_t>(newest_) % Count];
      slot = saturatingAdd(slot, bytes);
    }
    Bytes sum(Time now) const {
      Ring copy = *this;
      copy.moveTo(stepOf(now));
      Bytes sum = 0;
      for (const Bytes slot : copy.slots_) sum = saturatingAdd(sum, slot);
      return sum;
    }
    void merge(Ring other) {
      moveTo(other.newest_);
      other.moveTo(newest_);
      for (std::size_t i = 0; i < Count; ++i) slots_[i] = saturatingAdd(slots_[i], other.slots_[i]);
    }

   private:
    static std::int64_t stepOf(Time time) {
      return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count() / Step;
    }
    void moveTo(std::int64_t step) {
      if (step - newest_ >= static_cast<std::int64_t>(Count)) {
        slots_.fill(0);
        newest_ = step;
      }
      while (newest_ < step) slots_[static_cast<std::size_t>(++newest_) % Count] = 0;
    }

    std::array<Bytes, Count> slots_{};
    std::int64_t newest_ = 0;
  };

  Ring<5, 2> tenSeconds_;
  Ring<6, 10> minute_;
  Ring<10, 60> tenMinutes_;
};

}  // namespace spacemint
