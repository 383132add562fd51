#pragma once

namespace spacemint::ctl {

/// Whether the application may report that it is in use.
int showUsage(bool json);
/// Agrees to it or withdraws.
int setUsage(bool isAllowed);

}  // namespace spacemint::ctl
