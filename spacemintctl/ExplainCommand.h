#pragma once

#include <string>

namespace spacemint::ctl {

struct ExplainOptions {
  /// Any path on the volume; empty for the home folder.
  std::string path;
  /// Measures the volume now, in place of the newest stored scan.
  bool fresh = false;
  bool json = false;
};

/// Prints where the space of a volume is, as a sum that adds up to its capacity. Returns the exit code.
int runExplain(const ExplainOptions& options);

}  // namespace spacemint::ctl
