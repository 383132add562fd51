#include "core/picture/Squarify.h"

#include <algorithm>
#include <numeric>

namespace spacemint {

namespace {

// The worst ratio of sides in a row along `side` of boxes with the area `sum` in total.
double worstRatio(double largest, double smallest, double sum, double side) {
  const double across = sum / side;
  return std::max(largest / (across * across), across * across / smallest);
}

// How many of the areas belong into the first row: as long as its worst box becomes no longer.
std::size_t rowLength(std::span<const double> areas, double side) {
  double sum = areas[0];
  double worst = worstRatio(areas[0], areas[0], sum, side);
  std::size_t count = 1;
  for (; count < areas.size(); ++count) {
    const double next = worstRatio(areas[0], areas[count], sum + areas[count], side);
    if (next > worst) break;
    worst = next;
    sum += areas[count];
  }
  return count;
}

// Places a row at the left of the room, or at its top if the room is higher than wide; returns what is left
// of the room.
Box placeRow(std::span<const double> areas, const Box& room, std::vector<Box>& boxes) {
  const bool isColumn = room.width >= room.height;
  const double side = isColumn ? room.height : room.width;
  const double sum = std::accumulate(areas.begin(), areas.end(), 0.0);
  const double across = side > 0 ? std::min(sum / side, isColumn ? room.width : room.height) : 0;
  double along = 0;
  for (const double area : areas) {
    const double length = side * area / sum;
    boxes.push_back(isColumn ? Box{room.x, room.y + along, across, length}
                             : Box{room.x + along, room.y, length, across});
    along += length;
  }
  return isColumn ? Box{room.x + across, room.y, room.width - across, room.height}
                  : Box{room.x, room.y + across, room.width, room.height - across};
}

}  // namespace

std::vector<Box> squarified(std::span<const double> sizes, const Box& in) {
  std::vector<Box> boxes;
  boxes.reserve(sizes.size());
  const double scale = in.area() / std::accumulate(sizes.begin(), sizes.end(), 0.0);
  std::vector<double> areas(sizes.size());
  std::ranges::transform(sizes, areas.begin(), [scale](double size) { return size * scale; });
  Box room = in;
  for (std::span<const double> rest{areas}; !rest.empty();) {
    const double side = std::min(room.width, room.height);
    const std::size_t count = side > 0 ? rowLength(rest, side) : rest.size();
    room = placeRow(rest.first(count), room, boxes);
    rest = rest.subspan(count);
  }
  return boxes;
}

}  // namespace spacemint
