#include "Spacemint/shell/PanelPlacement.h"

#include <algorithm>

namespace spacemint {

QRect panelPlacement(const QRect& item, const QRect& usable) {
  constexpr int width = 460;
  constexpr int height = 700;
  constexpr int margin = 8;
  const int x = std::min(usable.right() + 1 - width - margin,
                         std::max(item.center().x() - width / 2, usable.left() + margin));
  return {x, item.bottom() + 1 + 6, width, height};
}

}  // namespace spacemint
