#pragma once

#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// When a scan is due, and how far a scan has come. Pure functions.
namespace ScanTiming {

struct Staleness {
  /// The last scan; null where there is none.
  const Snapshot* snapshot = nullptr;
  /// The root that a scan would have now.
  std::string_view root;
  Date now;
  Seconds olderThan{0};
};

/// True without a scan, for a scan of another folder, for an older scan, and for one dated after `now`: its
/// age is not known.
bool isStale(const Staleness& question);

/// How many bytes a scan of `root` will find: as many as the last scan of `root`, else the used bytes of the
/// volume; 0 when neither is known.
Bytes expectedBytes(const Snapshot* last, std::string_view root, const std::optional<VolumeStatus>& volume);

/// The expected number may be wrong and be passed before the end.
inline constexpr double highestFraction = 0.99;

/// From 0 to `highestFraction`; absent when nothing is expected.
std::optional<double> fraction(Bytes counted, Bytes expected);

/// The time that a scan still takes after it has run for `elapsed`; absent while the estimate would be a
/// guess.
std::optional<Seconds> remaining(std::optional<double> fraction, Seconds elapsed);

}  // namespace ScanTiming

}  // namespace spacemint
