#pragma once

#include <chrono>
#include <cstdint>
#include <limits>

namespace spacemint {

/// A wall-clock instant to the microsecond, some 292,000 years around 1970.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// A length of time in seconds with fractions.
using Seconds = std::chrono::duration<double>;

/// The instant a number of whole seconds after 1970-01-01 00:00:00 UTC. A file's time stamp can be any
/// 64-bit number; what lies outside the range of `Date` becomes its first or last whole second.
constexpr Date dateFromUnixSeconds(std::int64_t seconds) {
  constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 1'000'000;
  const std::int64_t clamped = seconds > limit ? limit : seconds < -limit ? -limit : seconds;
  return Date{std::chrono::seconds{clamped}};
}

}  // namespace spacemint
