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

/// `low` below the threshold, `critical` below half of the threshold.
constexpr SpaceLevel spaceLevel(Bytes free, std::int64_t thresholdGB) {
  const Bytes threshold = warningThreshold(thresholdGB);
  if (free < threshold / 2) return SpaceLevel::critical;
  return free < threshold ? SpaceLevel::low : SpaceLevel::ok;
}

}  // namespace spacemint
