#pragma once

#include "core/host/ThreadPriority.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace spacemint {

/// How a scan shares the computer with other programs. The order is that of `scanManners`.
enum class ScanManner : std::uint8_t {
  /// Nobody waits for the scan.
  quiet,
  /// Somebody looks at its progress.
  waiting,
  /// Somebody asked for it and waits for the end.
  foreground
};

struct ScanMannerTraits {
  Deference deference;
  /// Helpers list further folders meanwhile, as many as the disk answers at once; otherwise one thread lists
  /// one folder after the other.
  bool readsAhead = false;
};

inline constexpr std::array<ScanMannerTraits, 3> scanManners{{
    {.deference = {.idleIo = true, .niceness = backgroundNiceness}},
    {.deference = {.idleIo = true, .niceness = backgroundNiceness}, .readsAhead = true},
    {.readsAhead = true},
}};

constexpr const ScanMannerTraits& traitsOf(ScanManner manner) {
  return scanManners[static_cast<std::size_t>(manner)];
}

/// The manner of a scan at the time of the call. The scan asks again before each folder.
using MannerNow = std::function<ScanManner()>;

inline MannerNow always(ScanManner manner) {
  return [manner] { return manner; };
}

}  // namespace spacemint
