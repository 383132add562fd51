#pragma once

#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// When a scan is due, and how far one is. Pure.
namespace ScanTiming {

struct Staleness {
  /// Null while there is no scan.
  const Snapshot* snapshot = nullptr;
  /// What a scan would measure now.
  std::string_view root;
  Date now;
  Seconds olderThan{0};
};

/// True without a scan, for one of another folder, and for one that is older.
bool isStale(const Staleness& question);

/// How many bytes a scan of `root` will find: as many as the last one, else what is used on the volume; 0
/// when that is not known.
Bytes expectedBytes(const Snapshot* last, std::string_view root, const std::optional<VolumeStatus>& volume);

/// What is expected may be wrong and be passed before the end.
inline constexpr double highestFraction = 0.99;

/// From 0 to the highest; absent when nothing is expected.
std::optional<double> fraction(Bytes counted, Bytes expected);

/// What is left of a scan that has run for `elapsed`; absent while that would be a guess.
std::optional<Seconds> remaining(std::optional<double> fraction, Seconds elapsed);

}  // namespace ScanTiming

}  // namespace spacemint
