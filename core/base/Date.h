#pragma once

#include "core/base/Bytes.h"

#include <chrono>
#include <cstdint>
#include <limits>

namespace spacemint {

/// A wall-clock instant to the microsecond, some 292,000 years around 1970.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// A length of time in seconds with fractions.
using Seconds = std::chrono::duration<double>;

/// From `start` to `end`; negative where `end` comes first. Stored dates may lie so far apart that their
/// distance is no 64-bit number of microseconds; it is then the longest one.
constexpr std::chrono::microseconds timeBetween(Date start, Date end) {
  return std::chrono::microseconds{
      saturatingSubtract(end.time_since_epoch().count(), start.time_since_epoch().count())};
}

/// The instant a number of whole seconds after 1970-01-01 00:00:00 UTC. A file's time stamp can be any
/// 64-bit number; what lies outside the range of `Date` becomes its first or last whole second.
constexpr Date dateFromUnixSeconds(std::int64_t seconds) {
  constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 1'000'000;
  const std::int64_t clamped = seconds > limit ? limit : seconds < -limit ? -limit : seconds;
  return Date{std::chrono::seconds{clamped}};
}

}  // namespace spacemint
