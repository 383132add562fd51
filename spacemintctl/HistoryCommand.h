#pragma once

namespace spacemint::ctl {

/// Lists the scans that are kept, newest first.
int runHistory(bool json);

}  // namespace spacemint::ctl
