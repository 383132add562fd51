#pragma once

namespace spacemint::ctl {

/// Prints the stored scans of all folders, newest first; returns the exit code.
int runHistory(bool json);

}  // namespace spacemint::ctl
