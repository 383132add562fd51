#pragma once

#include <QPoint>
#include <QRect>

#include <optional>

namespace spacemint {

struct PanelScreen {
  QRect whole;
  /// What docks and status areas leave of it.
  QRect usable;
};

/// Where the panel goes: at the edge of the usable area that is next to the status item, centred on it. The
/// item is known by the point at which it was clicked; without one the panel goes to the corner where the
/// status area most likely is. Never outside the usable area; smaller only where it does not fit.
QRect panelPlacement(const std::optional<QPoint>& item, const PanelScreen& screen);

}  // namespace spacemint
