#include "core/base/DateSeconds.h"

#include <cmath>

namespace spacemint {

namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;

// Beyond this many seconds a double no longer holds the count of microseconds exactly.
constexpr std::int64_t exactSeconds = (std::int64_t{1} << 53) / microsPerSecond - 1;

}  // namespace

double secondsSince(std::chrono::seconds epoch, Date date) {
  // Both parts toward zero: the second before the first Date is not one.
  const std::int64_t micros = date.time_since_epoch().count() % microsPerSecond;
  const std::int64_t seconds = date.time_since_epoch().count() / microsPerSecond - epoch.count();
  if (seconds > -exactSeconds && seconds < exactSeconds) {
    // One correctly rounded division, so that the shortest text of the result has six decimals at most.
    return static_cast<double>(seconds * microsPerSecond + micros) / microsPerSecond;
  }
  return static_cast<double>(seconds) + static_cast<double>(micros) / microsPerSecond;
}

std::optional<Date> dateAfter(std::chrono::seconds epoch, double seconds) {
  constexpr double farthest = 1e13;  // beyond every Date, and safe to convert
  if (!(std::abs(seconds) < farthest)) return std::nullopt;
  const double whole = std::floor(seconds);
  const std::int64_t micros = std::llround((seconds - whole) * microsPerSecond);
  const std::int64_t wholeSeconds = static_cast<std::int64_t>(whole) + epoch.count();
  // The last second before the first Date is built from the one after it, which is in range.
  const bool negative = wholeSeconds < 0;
  std::int64_t count = 0;
  if (__builtin_mul_overflow(wholeSeconds + (negative ? 1 : 0), microsPerSecond, &count) ||
      __builtin_add_overflow(count, micros - (negative ? microsPerSecond : 0), &count)) {
    return std::nullopt;
  }
  return Date{std::chrono::microseconds{count}};
}

}  // namespace spacemint
