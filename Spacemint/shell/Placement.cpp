#include "Spacemint/shell/Placement.h"

#include <algorithm>
#include <charconv>

namespace spacemint {

namespace {

constexpr QSize panel{460, 700};
constexpr int sideMargin = 8;
constexpr int itemMargin = 6;

// The status area is on the side where a desktop panel takes room; at the top if neither side has one.
bool isAreaAtTheBottom(const PanelScreen& screen) {
  const int takenAbove = screen.usable.top() - screen.whole.top();
  const int takenBelow = screen.whole.bottom() - screen.usable.bottom();
  return takenBelow > takenAbove;
}

std::optional<int> numberOf(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<QPoint> pointOf(std::string_view text) {
  const auto gap = text.find(' ');
  if (gap == std::string_view::npos) return std::nullopt;
  const auto x = numberOf(text.substr(0, gap));
  const auto y = numberOf(text.substr(gap + 1));
  if (!x || !y) return std::nullopt;
  return QPoint{*x, *y};
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

std::optional<WindowPlace> windowPlace(const std::string& text, QSize size, std::span<const QRect> areas) {
  const auto point = pointOf(text);
  if (!point) return std::nullopt;
  // The title bar: the user must be able to see and drag the window.
  constexpr int height = 40;
  const QRect top{*point, QSize{size.width(), height}};
  for (const QRect& area : areas) {
    const QRect seen = top.intersected(area);
    if (seen.height() == height && seen.width() > size.width() / 2) return WindowPlace{*point, area};
  }
  return std::nullopt;
}

std::string textOf(QPoint position) {
  return std::to_string(position.x()) + ' ' + std::to_string(position.y());
}

}  // namespace spacemint
