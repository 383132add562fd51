#pragma once

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

/// The place of the main window on one of the screens.
struct WindowPlace {
  QPoint position;
  /// The usable area of that screen.
  QRect area;

  bool operator==(const WindowPlace&) const = default;
};

/// Reads a stored place, "x y". Absent if the text is malformed, or if the user would not see a window of
/// that size there: its top edge and most of its width must be in one of `areas`.
std::optional<WindowPlace> windowPlace(const std::string& text, QSize size, std::span<const QRect> areas);

/// "x y".
std::string textOf(QPoint position);

}  // namespace spacemint
