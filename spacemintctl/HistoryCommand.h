#pragma once

namespace spacemint::ctl {

/// Lists the stored scans of all folders, newest first.
int runHistory(bool json);

}  // namespace spacemint::ctl
