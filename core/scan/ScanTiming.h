#pragma once

#include "core/host/VolumeTable.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace spacemint {

/// When a scan is due, and how far a running scan is. Pure functions; any thread.
namespace ScanTiming {

struct Staleness {
  /// The last scan; null if there is none.
  const Snapshot* snapshot = nullptr;
  /// The root of the next scan.
  std::string_view root;
  Date now;
  Seconds olderThan{0};
};

/// True if there is no last scan, if it was stopped, if it has another root, if it is older than the
/// interval, or if it is dated after `now` (its age is then not known).
bool isStale(const Staleness& question);

/// What a scan will find; 0 where that is unknown.
struct Expected {
  Bytes bytes = 0;
  std::int64_t files = 0;
};

/// What a scan of `root` will find: as much as the last scan of `root`, otherwise the used bytes of the
/// volume, or, for the whole disk, of all `volumes`.
Expected expected(const Snapshot* last, std::string_view root, const std::optional<VolumeStatus>& volume,
                  std::span<const VolumeReading> volumes);

/// The limit of `fraction`: a scan may find more than expected before it ends.
inline constexpr double highestFraction = 0.99;

/// The part of what is expected, from 0 to `highestFraction`; absent if `expected` is not known.
std::optional<double> fraction(std::int64_t counted, std::int64_t expected);

/// The estimated remaining time of a scan that has run for `elapsed`, by its files if their number is known,
/// because a scan takes about the same time for each: a large file takes no longer than a small one. Absent
/// while an estimate would be too unreliable.
std::optional<Seconds> remaining(const DiskScanner::Progress& counted, const Expected& expected,
                                 Seconds elapsed);

}  // namespace ScanTiming

}  // namespace spacemint
