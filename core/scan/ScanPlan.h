#pragma once

#include "core/host/EventJournal.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ScanUpdate.h"
#include "core/tree/Snapshot.h"
#include "core/volume/VolumeStatus.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace spacemint {

/// The time between full scans. A full scan finds changes that a journal cannot report, such as a change of a
/// file through another hard link.
inline constexpr std::chrono::days fullScanInterval{3};

/// An earlier scan of the same folder, and what changed since. Any thread.
class EarlierScan {
 public:
  EarlierScan(Snapshot previous, const FolderChanges& changes);

  /// The `reuse` function of the next scan: returns a folder's node in the earlier scan if nothing changed in
  /// or below the folder. Holds the scan; may be called from any thread.
  DiskScanner::Reuse reuse() const;

  /// What the earlier scan could not read, and the snapshots that it found, in folders that `reuse` returns;
  /// and its places.
  Coverage carriedOver() const;

 private:
  struct Unchanged;

  std::shared_ptr<const Unchanged> unchanged_;
};

/// How a scan is made: as a full scan, by walking the changed folders and reusing the others, or as an update
/// with measured changes. Decided before the scan starts.
struct ScanPlan {
  struct Arguments {
    std::string root;
    Bytes minNodeSize = 0;
    /// The start of the scan.
    Date now;
    /// The newest stored scan.
    std::optional<Snapshot> earlier;
    /// False forces a full scan.
    bool mayReuse = true;
    /// The longest wait for the journal.
    std::chrono::milliseconds timeout = std::chrono::seconds{60};
    /// Called repeatedly during the wait for the journal; true ends the wait.
    std::function<bool()> shouldCancel;
    /// What the scan leaves out.
    Excludes excludes = {};
    /// How many folders the journal may list for an update.
    std::size_t updateLimit = 20'000;
    /// False: the plan is an update, or a full scan that the caller does not make.
    bool mayWalk = true;
  };

  /// The journal's id at the start of the scan, for the snapshot.
  std::optional<std::uint64_t> eventID;
  /// When the last full scan started, for the snapshot.
  Date fullScanDate;
  /// At most one of these two is set; none for a full scan.
  DiskScanner::Reuse reuse;
  std::optional<ScanUpdate> update;
  /// What the scan takes from the earlier one besides the folders.
  Coverage carriedOver;
  Excludes excludes;
  /// The last known sizes of what the scan leaves out, by path.
  std::map<std::string, Bytes> lastSizes;
  /// Why the scan is a full scan, as a clause that fits after "because"; empty if the scan reuses folders.
  std::string whyFull;

  bool isFull() const { return !reuse && !update; }

  /// Queries the journal and logs the decision. Blocks for at most about `Arguments::timeout`, or until
  /// `shouldCancel` returns true. Any thread.
  static ScanPlan make(EventJournal& journal, Arguments arguments);

  /// Makes the scan. Sets `Arguments::reuse` and `excludes`; all else is as for `DiskScanner::scan`. Call it
  /// once.
  std::optional<DiskScanner::Result> scan(DiskScanner::Arguments arguments);
};

/// A completed scan with all facts that are stored about it.
struct FinishedScan {
  DiskScanner::Result result;
  const ScanPlan& plan;
  Bytes minNodeSize = 0;
  Date start;
  Date end;
  std::optional<VolumeStatus> volume;

  /// The scan in the form that the history stores. Reads the free space of the volumes that it covers.
  Snapshot snapshot() &&;
};

}  // namespace spacemint
