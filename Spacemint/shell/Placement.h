#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>

#include <optional>
#include <span>
#include <string>

namespace spacemint {

// Where the windows go. Pure functions, any thread; all in the coordinates of windows.

struct PanelScreen {
  QRect whole;
  /// The part that the desktop's panels and docks leave free.
  QRect usable;
};

/// The place of the panel: at the edge of the usable area nearest to the status item, centred on the item.
/// `item` is the point where the item was clicked. Without it the panel goes to the corner where the status
/// area most likely is. Always inside the usable area; smaller than its usual size only where it does not
/// fit.
QRect panelPlacement(const std::optional<QPoint>& item, const PanelScreen& screen);

/// The same for a Wayland screen, where only the compositor knows how much its panels leave free. The panel
/// is held at an edge and has this size; at both the upper and the lower edge where the screen may be too
/// small.
struct LayerPlacement {
  Qt::Edges edges;
  QMargins margins;
  QSize size;

  bool operator==(const LayerPlacement&) const = default;
};
LayerPlacement layerPlacement(const std::optional<QPoint>& item, const QRect& screen);

/// The place of the main window on one of the screens.
struct WindowPlace {
  QRect place;
  /// The usable area of that screen.
  QRect area;

  bool operator==(const WindowPlace&) const = default;
};

/// Reads a stored place, "x y width height"; without a size, as older versions stored it, the window has the
/// size `usual`. Absent if the text is malformed, or if the user would not see a window there: its top edge
/// and most of its width must be in one of `areas`.
std::optional<WindowPlace> windowPlace(const std::string& text, QSize usual, std::span<const QRect> areas);

/// "x y width height".
std::string textOf(const QRect& place);

}  // namespace spacemint
