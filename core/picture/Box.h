#pragma once

namespace spacemint {

/// A rectangle of a picture; y grows downwards.
struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double area() const { return width * height; }
  double right() const { return x + width; }
  double bottom() const { return y + height; }
  bool contains(double px, double py) const { return px >= x && px < right() && py >= y && py < bottom(); }

  bool operator==(const Box&) const = default;
};

}  // namespace spacemint
