#pragma once

namespace spacemint::ctl {

/// Prints whether the user allowed the application to report anonymous usage; returns the exit code.
int showUsage(bool json);
/// Stores the user's decision; returns the exit code.
int setUsage(bool isAllowed);

}  // namespace spacemint::ctl
