#pragma once

#include "core/host/EventJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

#include <optional>
#include <string>

namespace spacemint {

/// After this time a full scan is due. It corrects what a journal cannot report, such as a file that was
/// changed through another of its names.
inline constexpr std::chrono::days fullScanInterval{3};

/// The `reuse` function of a scan: a folder is answered with its node in `previous` when nothing changed in
/// it or below it. The function holds copies of both arguments and may be called from any thread.
DiskScanner::Reuse reuseUnchanged(Snapshot previous, const FolderChanges& changes);

/// How a scan is made: full, or reusing what did not change. Decided before anything is measured.
struct ScanPlan {
  struct Arguments {
    std::string root;
    Bytes minNodeSize = 0;
    /// The start of the scan.
    Date now;
    /// The newest stored scan.
    std::optional<Snapshot> earlier;
    /// False makes a full scan in any case.
    bool mayReuse = true;
    /// The longest wait for the journal.
    std::chrono::milliseconds timeout = std::chrono::seconds{60};
    /// Polled while the journal is waited for; true ends the wait.
    std::function<bool()> shouldCancel;
  };

  /// The journal's id at the start of the scan, for the snapshot.
  std::optional<std::uint64_t> eventID;
  /// When the last full scan started, for the snapshot.
  Date fullScanDate;
  /// Empty for a full scan.
  DiskScanner::Reuse reuse;
  /// Why it is a full scan, in words that fit after "because"; empty when it reuses.
  std::string whyFull;

  /// Asks the journal and logs the decision. Blocks for about `Arguments::timeout` at most, or until it is cancelled. Any thread.
  static ScanPlan make(EventJournal& journal, Arguments arguments);
};

/// A scan that was carried out, with everything that is stored about it.
struct FinishedScan {
  DiskScanner::Result result;
  const ScanPlan& plan;
  Bytes minNodeSize = 0;
  Date start;
  Date end;
  std::optional<VolumeStatus> volume;

  /// The scan as it is stored.
  Snapshot snapshot() &&;
};

}  // namespace spacemint
