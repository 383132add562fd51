#pragma once

#include "core/scan/ChangeLog.h"

#include <optional>
#include <string>

namespace spacemint {

/// A scan takes over what did not change since an earlier scan, but walks everything when the last full scan
/// is older than this. A full scan finds what a journal misses, such as a file that changed through another
/// name.
inline constexpr std::chrono::days fullScanInterval{3};

/// How a scan will be made; decided before anything is measured.
struct ScanPlan {
  struct Arguments {
    std::string root;
    Bytes minNodeSize = 0;
    /// The start of the scan.
    Date now;
    /// The newest stored scan.
    std::optional<Snapshot> earlier;
    /// False to walk everything in any case.
    bool mayReuse = true;
    std::chrono::milliseconds timeout = std::chrono::seconds{60};
  };

  /// For the snapshot: the journal's event id at the start, and the start of the last full scan.
  std::optional<std::uint64_t> eventID;
  Date fullScanDate;
  /// Empty for a full scan.
  DiskScanner::Reuse reuse;
  /// Why it is a full scan, in words to follow "because"; empty for one that reuses.
  std::string whyFull;

  /// Asks the journal, logs the decision, and blocks for about `Arguments::timeout` at most. Any thread.
  static ScanPlan make(const ChangeLog& changes, Arguments arguments);
};

}  // namespace spacemint
