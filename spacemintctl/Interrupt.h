#pragma once

namespace spacemint::ctl {

/// After this call, the first SIGINT (Ctrl-C), SIGTERM or SIGHUP does not end the process but makes
/// `wasInterrupted` return true. A second signal of the same kind ends the process.
void noteInterrupts();
bool wasInterrupted();

}  // namespace spacemint::ctl
