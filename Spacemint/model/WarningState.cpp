#include "Spacemint/model/WarningState.h"

namespace spacemint {

namespace {

bool isRecent(Date warned, Date now) {
  return warned <= now && now - warned < WarningState::minimumGap;
}

}  // namespace

WarningState::Next WarningState::after(const std::optional<Warning>& last, const Reading& reading) {
  const SpaceLevel level = spaceLevel(reading.free, reading.thresholdGB);
  if (level == SpaceLevel::ok) {
    const bool isRearmed = reading.free - warningThreshold(reading.thresholdGB) > rearmMargin;
    return {.last = isRearmed ? std::nullopt : last};
  }
  const bool isWorse = last && level > last->level;
  if (last && !isWorse && isRecent(last->date, reading.now)) return {.last = last};
  return {.last = Warning{.date = reading.now, .level = level}, .warns = true};
}

}  // namespace spacemint
