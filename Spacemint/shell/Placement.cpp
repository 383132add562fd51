#include "Spacemint/shell/Placement.h"

#include <algorithm>
#include <sstream>
#include <vector>

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

// The whole numbers of a text with spaces between them; empty if it has anything else, or a number that is no
// coordinate of a screen.
std::vector<int> numbersOf(const std::string& text) {
  std::vector<int> numbers;
  std::istringstream stream{text};
  constexpr int largest = 1'000'000;
  for (int number = 0; stream >> number;) {
    if (number < -largest || number > largest) return {};
    numbers.push_back(number);
  }
  return stream.eof() ? numbers : std::vector<int>{};
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

LayerPlacement layerPlacement(const std::optional<QPoint>& item, const QRect& screen) {
  constexpr int highPanels = 100;
  const QRect place = panelPlacement(item, {.whole = screen, .usable = screen});
  const bool isAtTheBottom = item && item->y() > screen.center().y();
  const bool isTight = screen.height() < panel.height() + 2 * itemMargin + highPanels;
  const Qt::Edges vertical = isTight         ? Qt::TopEdge | Qt::BottomEdge
                             : isAtTheBottom ? Qt::BottomEdge
                                             : Qt::TopEdge;
  return {.edges = vertical | Qt::LeftEdge,
          .margins = {place.left() - screen.left(), itemMargin, sideMargin, itemMargin},
          .size = place.size()};
}

std::optional<WindowPlace> windowPlace(const std::string& text, QSize usual, std::span<const QRect> areas) {
  const std::vector<int> numbers = numbersOf(text);
  const bool hasSize = numbers.size() == 4;
  if (!hasSize && numbers.size() != 2) return std::nullopt;
  const QRect place{QPoint{numbers[0], numbers[1]}, hasSize ? QSize{numbers[2], numbers[3]} : usual};
  if (place.isEmpty()) return std::nullopt;
  // The title bar: the user must be able to see and drag the window.
  constexpr int height = 40;
  const QRect top{place.topLeft(), QSize{place.width(), height}};
  for (const QRect& area : areas) {
    const QRect seen = top.intersected(area);
    if (seen.height() == height && seen.width() > place.width() / 2) return WindowPlace{place, area};
  }
  return std::nullopt;
}

std::string textOf(const QRect& place) {
  std::ostringstream text;
  text << place.x() << ' ' << place.y() << ' ' << place.width() << ' ' << place.height();
  return text.str();
}

}  // namespace spacemint
