#pragma once

namespace spacemint::ctl {

struct StatusOptions {
  bool json = false;
  /// Also the warning level, the last scan, whether the next scan is a full one and why, and whether a
  /// recorder answers; asks the recorder, for up to 5 s.
  bool verbose = false;
  /// Also the free space of the last 14 days.
  bool history = false;
};

/// Prints the free space of the startup volume; returns the exit code.
int runStatus(const StatusOptions& options);

}  // namespace spacemint::ctl
