#pragma once

#include "core/host/VolumeTable.h"
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

/// The expected bytes of a scan of `root`: the bytes of the last scan of `root`, otherwise the used bytes of
/// the volume, or, for the whole disk, of all `volumes`; 0 if none is known.
Bytes expectedBytes(const Snapshot* last, std::string_view root, const std::optional<VolumeStatus>& volume,
                    std::span<const VolumeReading> volumes);

/// The limit of `fraction`: a scan may find more bytes than expected before it ends.
inline constexpr double highestFraction = 0.99;

/// The completed part of a scan, from 0 to `highestFraction`; absent if `expected` is not known.
std::optional<double> fraction(Bytes counted, Bytes expected);

/// The estimated remaining time of a scan that has run for `elapsed`; absent while an estimate would be too
/// unreliable.
std::optional<Seconds> remaining(std::optional<double> fraction, Seconds elapsed);

}  // namespace ScanTiming

}  // namespace spacemint
