#pragma once

#include "core/base/Date.h"
#include "core/volume/SpaceLevel.h"

#include <optional>

namespace spacemint {

/// When the user was last warned, and of which level.
struct Warning {
  Date date;
  SpaceLevel level = SpaceLevel::ok;

  bool operator==(const Warning&) const = default;
};

/// Decides which readings of the free space are worth a warning. Pure.
namespace WarningState {

/// After a warning, free space must exceed the threshold by this much before the next fall below the
/// threshold warns at once.
inline constexpr Bytes rearmMargin = 2 * gigabyte;
/// A warning of the same or a lower level is repeated after this time.
inline constexpr std::chrono::hours minimumGap{12};

struct Reading {
  Bytes free = 0;
  /// Any number; used as `warningThreshold` does.
  std::int64_t thresholdGB = 0;
  Date now;
};

struct Next {
  std::optional<Warning> last = {};
  /// Warn now, at the level of `last`.
  bool warns = false;

  bool operator==(const Next&) const = default;
};

/// What follows from a reading of the volume. A last warning that is dated after `Reading::now` (the clock
/// was set back) counts as given at an unknown time: it does not hold back the next one.
Next after(const std::optional<Warning>& last, const Reading& reading);

}  // namespace WarningState

}  // namespace spacemint
