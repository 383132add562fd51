#pragma once

#include <QPoint>
#include <QRect>

#include <optional>
#include <span>

namespace spacemint {

/// A screen as windows see it, and how many pixels one of their units is there. Both count from the same top
/// left corner.
struct ScreenScale {
  QRect geometry;
  qreal scale = 1;
};

/// The place of a pixel in the coordinates of windows; absent where it is on no screen. The first pixel of
/// all counts as no place: it is what is told when the place is not known.
std::optional<QPoint> pointOfPixel(QPoint pixel, std::span<const ScreenScale> screens);

}  // namespace spacemint
