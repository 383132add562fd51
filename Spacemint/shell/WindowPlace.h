#pragma once

#include <QPoint>
#include <QRect>

#include <optional>
#include <span>
#include <string>

namespace spacemint {

/// A place on one of the screens.
struct WindowPlace {
  QPoint position;
  /// What that screen leaves to windows.
  QRect area;

  bool operator==(const WindowPlace&) const = default;
};

/// The place that was kept as text, if a window of that size would be seen there: its top and most of its
/// width are on a screen that is still there.
std::optional<WindowPlace> windowPlace(const std::string& text, QSize size, std::span<const QRect> areas);

/// "x y".
std::string textOf(QPoint position);

}  // namespace spacemint
