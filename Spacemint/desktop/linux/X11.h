#pragma once

#include "Spacemint/desktop/Desktop.h"

namespace spacemint {

/// Whether the screen shows what is behind a transparent part of a window. It does not on an X11 screen
/// without a compositor: such parts are black there. True on every other platform. Main thread only; asks the
/// X server.
bool isScreenComposited();

/// Clicks by the X server's raw input events. The server sends them to every program that asks, whichever
/// window has the focus and even while another program has grabbed the pointer.
class X11OutsideClicks final : public OutsideClicks {
 public:
  /// Null on other platforms, and where the X server has no XInput 2.2.
  std::unique_ptr<Watch> watch(const QWindow& window, std::function<void()> clicked) override;
};

}  // namespace spacemint
