#include "ui_kit/LogoGeometry.h"

#include <gtest/gtest.h>

namespace spacemint {

namespace {

using LogoGeometry::Part;
using LogoGeometry::Rect;

struct Case {
  const char* what;
  Rect in;
  bool flipY;
  std::array<Rect, 4> expected;
};

const Case cases[] = {
    {"the unit square",
     {0, 0, 1, 1},
     false,
     {{{0.115, 0.08, 0.77, 0.10},
       {0.115, 0.54, 0.17, 0.38},
       {0.415, 0.34, 0.17, 0.58},
       {0.715, 0.46, 0.17, 0.46}}}},
    {"upside down: the bars stand on 0.08 and the ceiling is over them",
     {0, 0, 1, 1},
     true,
     {{{0.115, 0.82, 0.77, 0.10},
       {0.115, 0.08, 0.17, 0.38},
       {0.415, 0.08, 0.17, 0.58},
       {0.715, 0.08, 0.17, 0.46}}}},
    {"moved, and wider than high",
     {10, 20, 200, 100},
     false,
     {{{33, 28, 154, 10}, {33, 74, 34, 38}, {93, 54, 34, 58}, {153, 66, 34, 46}}}},
    {"moved and upside down",
     {10, 20, 200, 100},
     true,
     {{{33, 102, 154, 10}, {33, 28, 34, 38}, {93, 28, 34, 58}, {153, 28, 34, 46}}}},
    {"no room", {5, 6, 0, 0}, false, {{{5, 6, 0, 0}, {5, 6, 0, 0}, {5, 6, 0, 0}, {5, 6, 0, 0}}}},
};

TEST(LogoGeometry, ScalesItsPartsIntoARectangle) {
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const auto parts = LogoGeometry::parts(each.in, each.flipY);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      SCOPED_TRACE(i);
      EXPECT_EQ(parts[i].isCeiling, i == 0);
      EXPECT_NEAR(parts[i].rect.x, each.expected[i].x, 1e-9);
      EXPECT_NEAR(parts[i].rect.y, each.expected[i].y, 1e-9);
      EXPECT_NEAR(parts[i].rect.width, each.expected[i].width, 1e-9);
      EXPECT_NEAR(parts[i].rect.height, each.expected[i].height, 1e-9);
    }
  }
}

TEST(LogoGeometry, RoundsTheEndsFully) {
  EXPECT_DOUBLE_EQ(LogoGeometry::cornerRadius({0, 0, 17, 38}), 8.5);
  EXPECT_DOUBLE_EQ(LogoGeometry::cornerRadius({0, 0, 77, 10}), 5);
}

}  // namespace

}  // namespace spacemint
