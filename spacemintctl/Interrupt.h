#pragma once

namespace spacemint::ctl {

/// From here on Ctrl-C and a request to terminate are noted instead of ending the process; a second one ends
/// it at once.
void noteInterrupts();
bool wasInterrupted();

}  // namespace spacemint::ctl
