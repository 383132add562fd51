#pragma once

#include "core/base/Bytes.h"

#include <cstdint>

namespace spacemint {

/// How much the free space should worry the user. A higher value is worse.
enum class SpaceLevel : std::uint8_t { ok, low, critical };

/// The unit of the warning threshold.
inline constexpr Bytes gigabyte = 1'000'000'000;

/// Low below the threshold, critical below half of it.
constexpr SpaceLevel spaceLevel(Bytes free, std::int64_t warningThresholdGB) {
  const Bytes threshold = warningThresholdGB * gigabyte;
  if (free < threshold / 2) return SpaceLevel::critical;
  return free < threshold ? SpaceLevel::low : SpaceLevel::ok;
}

}  // namespace spacemint
