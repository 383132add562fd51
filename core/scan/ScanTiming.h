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
  /// The newest scan; null when there is none.
  const Snapshot* snapshot = nullptr;
  /// The folder that a scan would measure now.
  std::string_view root;
  Date now;
  Seconds olderThan{0};
};

/// True when there is no scan, when it is of another folder, and when it is older than `olderThan`.
bool isStale(const Staleness& question);

/// The number of bytes that a scan of `root` will probably find: as many as the last scan, else the used
/// bytes of the volume; 0 when neither is known.
Bytes expectedBytes(const Snapshot* last, std::string_view root, const std::optional<VolumeStatus>& volume);

/// The expected number may be wrong, so progress stops here until the scan ends.
inline constexpr double highestFraction = 0.99;

/// From 0 to `highestFraction`; absent when `expected` is 0.
std::optional<double> fraction(Bytes counted, Bytes expected);

/// The remaining time of a scan that has run for `elapsed`; absent while it would be a guess.
std::optional<Seconds> remaining(std::optional<double> fraction, Seconds elapsed);

}  // namespace ScanTiming

}  // namespace spacemint
