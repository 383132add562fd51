#include "Spacemint/model/WarningState.h"

#include <algorithm>
#include <limits>

namespace spacemint {

WarningState::Next WarningState::after(const std::optional<Warning>& last, const Reading& reading) {
  const std::int64_t threshold = usableThreshold(reading.thresholdGB);
  const SpaceLevel level = spaceLevel(reading.free, threshold);
  if (level == SpaceLevel::ok) {
    const bool isRearmed = reading.free > threshold * gigabyte + rearmMargin;
    return {.last = isRearmed ? std::nullopt : last};
  }
  const bool isWorse = last && level > last->level;
  if (last && !isWorse && reading.now - last->date < minimumGap) return {.last = last};
  return {.last = Warning{.date = reading.now, .level = level}, .warns = true};
}

std::int64_t WarningState::usableThreshold(std::int64_t thresholdGB) {
  constexpr std::int64_t limit = (std::numeric_limits<Bytes>::max() - rearmMargin) / gigabyte;
  return std::clamp(thresholdGB, std::int64_t{0}, limit);
}

}  // namespace spacemint
