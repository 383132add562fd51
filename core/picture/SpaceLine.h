#pragma once

#include "core/history/FreeSpaceRecord.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace spacemint {

/// A moment of the line of free space. `x` and `y` are shares of its width and its height; y grows downwards.
struct SpacePoint {
  Date date;
  Bytes free = 0;
  double x = 0;
  double y = 0;
  /// The time before it is not known: more than `SpaceLine::longestGap` passed since the last reading.
  bool isAfterGap = false;

  bool operator==(const SpacePoint&) const = default;
};

/// The free space of a volume over time, from its first reading until now.
struct SpaceLine {
  static constexpr std::chrono::hours longestGap{36};
  static constexpr std::size_t mostScans = 16;

  /// A stored scan, with the free space of the line at that time.
  struct Scan {
    /// In the order of the question.
    std::size_t index = 0;
    SpacePoint point;
  };

  /// By date; the last one is now. Empty if nothing is known.
  std::vector<SpacePoint> points;
  /// In the order of the question.
  std::vector<Scan> scans;
  /// The height of the warning level; absent if the line is far above it.
  std::optional<double> level;
};

struct SpaceLineQuestion {
  /// Oldest first.
  std::span<const FreeSpaceReading> readings;
  FreeSpaceReading now;
  /// The dates of the stored scans, newest first. Only the first `mostScans` that are on the line count.
  std::span<const Date> scans;
  /// In bytes.
  Bytes warningLevel = 0;
};

/// Scales the line from 12 % below its lowest point to 10 % above its highest one, but to at least 5 % of the
/// volume. The warning level joins the scale if the lowest point is below four times the level. Pure.
SpaceLine spaceLine(const SpaceLineQuestion& question);

}  // namespace spacemint
