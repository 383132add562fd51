#pragma once

#include "core/base/Date.h"
#include "core/volume/SpaceLevel.h"

#include <optional>

namespace spacemint {

/// When the user was last warned, and how badly.
struct Warning {
  Date date;
  SpaceLevel level = SpaceLevel::ok;

  bool operator==(const Warning&) const = default;
};

/// Decides which readings of the free space are worth a warning. Pure.
namespace WarningState {

/// Free space must rise so far above the threshold before the next fall below it is news again.
inline constexpr Bytes rearmMargin = 2 * gigabyte;
/// A warning that is no worse than the last is not repeated for so long.
inline constexpr std::chrono::hours minimumGap{12};

struct Reading {
  Bytes free = 0;
  std::int64_t thresholdGB = 0;
  Date now;
};

struct Next {
  std::optional<Warning> last = {};
  /// Warn now, at the level of `last`.
  bool warns = false;

  bool operator==(const Next&) const = default;
};

Next after(const std::optional<Warning>& last, const Reading& reading);

/// A threshold from a file that was edited by hand, as one whose bytes can be counted.
std::int64_t usableThreshold(std::int64_t thresholdGB);

}  // namespace WarningState

}  // namespace spacemint
