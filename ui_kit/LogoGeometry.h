#pragma once

#include <array>

namespace spacemint {

/// The logo as plain data: a flat top line over three bars of different heights.
namespace LogoGeometry {

struct Rect {
  double x;
  double y;
  double width;
  double height;

  bool operator==(const Rect&) const = default;
};

struct Part {
  Rect rect;
  bool isCeiling;

  bool operator==(const Part&) const = default;
};

/// The corner radius that makes the ends of a part half circles.
double cornerRadius(const Rect& rect);

/// The parts, scaled into a rectangle. `flipY` is for a coordinate system in which y grows upwards.
std::array<Part, 4> parts(const Rect& in, bool flipY);

}  // namespace LogoGeometry

}  // namespace spacemint
