#pragma once

namespace spacemint::ctl {

/// Prints the free space of the startup volume. `verbose`: also the warning level, the last scan, whether the
/// next scan is a full one and why, and whether a recorder answers; asks the recorder, for up to 5 s.
int runStatus(bool json, bool verbose);

}  // namespace spacemint::ctl
