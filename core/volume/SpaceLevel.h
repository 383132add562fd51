#pragma once

#include "core/base/Bytes.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace spacemint {

/// How low the free space is. A higher value is worse.
enum class SpaceLevel : std::uint8_t { ok, low, critical };

/// The unit of the warning threshold.
inline constexpr Bytes gigabyte = 1'000'000'000;

/// The largest threshold whose bytes fit 64 bits.
inline constexpr std::int64_t largestWarningThresholdGB = std::numeric_limits<Bytes>::max() / gigabyte;

/// The warning threshold in bytes. A settings file may contain any number: numbers below 0 count as 0,
/// numbers above the largest threshold as the largest.
constexpr Bytes warningThreshold(std::int64_t thresholdGB) {
  return std::clamp(thresholdGB, std::int64_t{0}, largestWarningThresholdGB) * gigabyte;
}

/// The limits of something that can run out: bytes of a volume, or files that fit on it. Pure.
struct SpaceLimits {
  std::int64_t lowBelow = 0;
  std::int64_t criticalBelow = 0;
  /// After a warning, this must be exceeded before the next fall below a limit warns at once.
  std::int64_t rearmsAbove = 0;

  constexpr SpaceLevel levelOf(std::int64_t free) const {
    if (free < criticalBelow) return SpaceLevel::critical;
    return free < lowBelow ? SpaceLevel::low : SpaceLevel::ok;
  }

  bool operator==(const SpaceLimits&) const = default;
};

/// The limits of the volume with the home folder, in bytes: the user's threshold, and half of it.
constexpr SpaceLimits homeLimits(std::int64_t thresholdGB) {
  const Bytes threshold = warningThreshold(thresholdGB);
  return {.lowBelow = threshold,
          .criticalBelow = threshold / 2,
          .rearmsAbove = saturatingAdd(threshold, 2 * gigabyte)};
}

/// The limits of another volume, in bytes: the user's threshold, but at most a tenth of `usable`, the bytes
/// that users can fill (used and free), so that a small volume is not always low.
constexpr SpaceLimits volumeLimits(Bytes usable, std::int64_t thresholdGB) {
  const Bytes low = std::clamp(warningThreshold(thresholdGB), Bytes{0}, std::max<Bytes>(0, usable / 10));
  return {.lowBelow = low,
          .criticalBelow = low / 2,
          .rearmsAbove = saturatingAdd(low, std::min(2 * gigabyte, low / 10))};
}

/// The limits of the number of files that still fit on a volume with room for `total` files. Shares, because
/// some file systems adapt the total to the free space.
constexpr SpaceLimits fileLimits(std::int64_t total) {
  return {.lowBelow = total / 20, .criticalBelow = total / 100, .rearmsAbove = total / 20 + total / 200};
}

/// The level of the volume with the home folder: `low` below the threshold, `critical` below half of it.
constexpr SpaceLevel spaceLevel(Bytes free, std::int64_t thresholdGB) {
  return homeLimits(thresholdGB).levelOf(free);
}

}  // namespace spacemint
