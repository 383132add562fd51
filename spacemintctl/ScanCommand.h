#pragma once

#include "core/base/Bytes.h"

#include <string>

namespace spacemint::ctl {

struct ScanOptions {
  /// Empty for the home folder.
  std::string path;
  Bytes minSize = 20'000'000;
  std::size_t top = 10;
  bool throttle = false;
  /// Walk everything, whatever the journal could say.
  bool full = false;
  bool noSave = false;
  bool quiet = false;
  bool json = false;
};

/// Measures a folder and says what is big in it.
int runScan(const ScanOptions& options);

}  // namespace spacemint::ctl
