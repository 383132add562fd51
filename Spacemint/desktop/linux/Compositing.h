#pragma once

namespace spacemint {

/// Whether what is behind a window shows through where it is transparent. Without it, as on an X screen that nobody
/// composes, such places are black. Main thread only.
bool isScreenComposited();

}  // namespace spacemint
