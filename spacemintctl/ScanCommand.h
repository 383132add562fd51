#pragma once

#include "core/tree/Snapshot.h"

#include <optional>
#include <string>

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
  /// The file to export the scan to, "-" for standard output; empty for none.
  std::string exportTo = {};
};

/// Scans a folder, prints its largest folders and files, and stores the scan. Returns the exit code.
int runScan(const ScanOptions& options);

/// Scans all of the folder at `ScanOptions::path`, an absolute path, with a line of progress; stores and
/// prints nothing. Absent if the folder cannot be opened or the user interrupted the scan.
std::optional<Snapshot> measuredScan(const ScanOptions& options);

}  // namespace spacemint::ctl
