#include "Spacemint/desktop/linux/ScreenPoint.h"

namespace spacemint {

std::optional<QPoint> pointOfPixel(QPoint pixel, std::span<const ScreenScale> screens) {
  if (pixel.isNull()) return std::nullopt;
  for (const ScreenScale& screen : screens) {
    const QPoint origin = screen.geometry.topLeft();
    if (QRect{origin, screen.geometry.size() * screen.scale}.contains(pixel)) {
      return origin + (pixel - origin) / screen.scale;
    }
  }
  return std::nullopt;
}

}  // namespace spacemint
