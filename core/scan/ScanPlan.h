#pragma once

#include "core/scan/ChangeLog.h"

#include <optional>
#include <string>

namespace spacemint {

/// A scan takes over what did not change since an earlier one, unless that is older than this: what a journal
/// cannot tell, such as a file that was changed through another of its names, is then put right.
inline constexpr std::chrono::days fullScanInterval{3};

/// How a scan is to be made. Decided before anything is measured.
struct ScanPlan {
  struct Arguments {
    std::string root;
    Bytes minNodeSize = 0;
    /// The start of the scan.
    Date now;
    /// The newest scan there is.
    std::optional<Snapshot> earlier;
    /// False to walk everything in any case.
    bool mayReuse = true;
    std::chrono::milliseconds timeout = std::chrono::seconds{60};
  };

  /// For the snapshot: what the journal's id was, and when everything was walked last.
  std::optional<std::uint64_t> eventID;
  Date fullScanDate;
  /// Empty for a full scan.
  DiskScanner::Reuse reuse;
  /// Why it is a full scan, in words to follow "because"; empty for one that reuses.
  std::string whyFull;

  /// Asks the journal. Blocks for about `Arguments::timeout` at the most.
  static ScanPlan make(const ChangeLog& log, Arguments arguments);
};

}  // namespace spacemint
