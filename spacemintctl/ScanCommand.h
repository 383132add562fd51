#pragma once

#include "core/base/Bytes.h"

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
};

/// Scans a folder, prints its largest folders and files, and stores the scan. Returns the exit code.
int runScan(const ScanOptions& options);

}  // namespace spacemint::ctl
