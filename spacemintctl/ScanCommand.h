#pragma once

#include "core/base/Error.h"
#include "core/scan/ScanPlan.h"
#include "core/scan/ScanTiming.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spacemint::ctl {

struct ScanOptions {
  /// The folder to scan; empty for the home folder.
  std::string path;
  Bytes minSize = 20'000'000;
  std::size_t top = 10;
  bool throttle = false;
  /// Walk all folders, without asking the change journal.
  bool full = false;
  bool noSave = false;
  bool quiet = false;
  bool json = false;
  /// Patterns (`Excludes`) besides those of the settings.
  std::vector<std::string> excludes = {};
  /// The file to export the scan to, "-" for standard output; empty for none.
  std::string exportTo = {};
};

/// Scans a folder, prints its largest folders and files, and stores the scan. Returns the exit code.
int runScan(const ScanOptions& options);

/// Scans all of the folder at `ScanOptions::path`, an absolute path, with a line of progress; stores and
/// prints nothing. Absent if the folder cannot be opened or the user interrupted the scan.
std::optional<Snapshot> measuredScan(const ScanOptions& options);

/// Plans a scan of `root` from its newest stored scan and the changes recorded since, with the excludes of
/// the options and of the settings. Blocks for the recorder's answer, or until `shouldCancel` returns true.
/// Any thread.
ScanPlan planFor(const std::string& root, const ScanOptions& options, Date start,
                 const std::function<bool()>& shouldCancel);

/// Why `root` cannot be scanned; absent if it can.
std::optional<Error> scanObstacle(const std::string& root);

/// What a scan of `root` will find: as much as the last one; otherwise, if `root` is a mount point, the used
/// space of the volume.
ScanTiming::Expected expectedIn(const std::string& root);

/// Stores a finished scan in the history of its root, and removes scans that the history does not keep.
std::expected<void, Error> keepScan(const Snapshot& snapshot);

}  // namespace spacemint::ctl
