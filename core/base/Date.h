#pragma once

#include "core/base/Bytes.h"

#include <chrono>
#include <cstdint>
#include <limits>

namespace spacemint {

/// A wall-clock instant in microseconds, up to about 292,000 years before or after 1970.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// A length of time in seconds with fractions.
using Seconds = std::chrono::duration<double>;

/// The time from `start` to `end`; negative if `end` is earlier. Stored dates may be so far apart that their
/// distance exceeds 64 bits of microseconds; the result is then the largest 64-bit number.
constexpr std::chrono::microseconds timeBetween(Date start, Date end) {
  return std::chrono::microseconds{
      saturatingSubtract(end.time_since_epoch().count(), start.time_since_epoch().count())};
}

/// The instant a number of whole seconds after 1970-01-01 00:00:00 UTC. A file's time stamp can be any 64-bit
/// number; an instant outside the range of `Date` becomes the first or last whole second of that range.
constexpr Date dateFromUnixSeconds(std::int64_t seconds) {
  constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 1'000'000;
  const std::int64_t clamped = seconds > limit ? limit : seconds < -limit ? -limit : seconds;
  return Date{std::chrono::seconds{clamped}};
}

}  // namespace spacemint
