#include "core/base/DateSeconds.h"

#include <cmath>

namespace spacemint {

namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;

// Beyond this many seconds a double no longer holds the count of microseconds exactly.
constexpr std::int64_t exactSeconds = (std::int64_t{1} << 53) / microsPerSecond - 1;

}  // namespace

double secondsSince(std::chrono::seconds epoch, Date date) {
  // Division rounds both parts toward zero: rounding down could give a second before the first Date.
  const std::int64_t micros = date.time_since_epoch().count() % microsPerSecond;
  const std::int64_t seconds = date.time_since_epoch().count() / microsPerSecond - epoch.count();
  if (seconds > -exactSeconds && seconds < exactSeconds) {
    // A single, correctly rounded division: the shortest text of its result has at most six decimals.
    return static_cast<double>(seconds * microsPerSecond + micros) / microsPerSecond;
  }
  return static_cast<double>(seconds) + static_cast<double>(micros) / microsPerSecond;
}

std::optional<Date> dateAfter(std::chrono::seconds epoch, double seconds) {
  constexpr double farthest = 1e13;  // larger than every Date, and fits a 64-bit integer
  if (!(std::abs(seconds) < farthest)) return std::nullopt;
  const double whole = std::floor(seconds);
  const std::int64_t micros = std::llround((seconds - whole) * microsPerSecond);
  const std::int64_t wholeSeconds = static_cast<std::int64_t>(whole) + epoch.count();
  // The whole second at or before a negative instant may be out of range although the instant is not:
  // multiply the next whole second instead, then subtract one second.
  const bool negative = wholeSeconds < 0;
  std::int64_t count = 0;
  if (__builtin_mul_overflow(wholeSeconds + (negative ? 1 : 0), microsPerSecond, &count) ||
      __builtin_add_overflow(count, micros - (negative ? microsPerSecond : 0), &count)) {
    return std::nullopt;
  }
  return Date{std::chrono::microseconds{count}};
}

}  // namespace spacemint
