#pragma once

namespace spacemint {

/// Whether the windows of this program are a Wayland compositor's; false with XWayland. Main thread only.
bool isOnWayland();

/// Whether the Wayland compositor of this session has the protocol layer shell, with which a program places a
/// panel at an edge of the screen (zwlr_layer_shell_v1). False without a compositor. Waits for the
/// compositor's answer. Any thread.
bool hasLayerShell();

}  // namespace spacemint
