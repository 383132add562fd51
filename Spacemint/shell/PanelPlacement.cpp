#include "Spacemint/shell/PanelPlacement.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr QSize panel{460, 700};
constexpr int sideMargin = 8;
constexpr int itemMargin = 6;

// A status area is where something of the screen is taken; most have it at the top.
bool isAreaAtTheBottom(const PanelScreen& screen) {
  const int takenAbove = screen.usable.top() - screen.whole.top();
  const int takenBelow = screen.whole.bottom() - screen.usable.bottom();
  return takenBelow > takenAbove;
}

}  // namespace

QRect panelPlacement(const std::optional<QPoint>& item, const PanelScreen& screen) {
  const QRect room = screen.usable.marginsRemoved({sideMargin, itemMargin, sideMargin, itemMargin});
  const QSize size = panel.boundedTo(room.size());
  const int right = room.right() + 1 - size.width();
  const int bottom = room.bottom() + 1 - size.height();
  const int x = item ? std::min(right, std::max(item->x() - size.width() / 2, room.left())) : right;
  const bool isAtTheBottom = item ? item->y() > screen.whole.center().y() : isAreaAtTheBottom(screen);
  return {QPoint{x, isAtTheBottom ? bottom : room.top()}, size};
}

}  // namespace spacemint
