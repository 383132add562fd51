#include "ui_kit/LogoGeometry.h"

#include <algorithm>

namespace spacemint::LogoGeometry {

namespace {

/// In a unit square; y grows downwards.
constexpr std::array<Part, 4> unitParts{{
    {{0.115, 0.08, 0.77, 0.10}, true},
    {{0.115, 0.54, 0.17, 0.38}, false},
    {{0.415, 0.34, 0.17, 0.58}, false},
    {{0.715, 0.46, 0.17, 0.46}, false},
}};

}  // namespace

double cornerRadius(const Rect& rect) {
  return std::min(rect.width, rect.height) / 2;
}

std::array<Part, 4> parts(const Rect& in, bool flipY) {
  std::array<Part, 4> result = unitParts;
  for (auto& [rect, isCeiling] : result) {
    const double y = flipY ? 1 - (rect.y + rect.height) : rect.y;
    rect = {in.x + rect.x * in.width, in.y + y * in.height, rect.width * in.width, rect.height * in.height};
  }
  return result;
}

}  // namespace spacemint::LogoGeometry
