#include "core/base/NumericOrder.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(NumericOrder, countsDigitsAsNumbers) {
  struct Case {
    const char* a;
    const char* b;
    std::weak_ordering order;
  };
  constexpr auto less = std::weak_ordering::less;
  constexpr auto equal = std::weak_ordering::equivalent;
  const Case cases[]{
      {"1.9", "1.10", less},
      {"2.0", "2.1", less},
      {"2.0", "2.0", equal},
      {"1.2", "1.2.1", less},
      {"9", "10", less},
      {"1.01", "1.1", equal},
      {"1.0", "1.00", equal},
      {"0", "", std::weak_ordering::greater},
      {"", "", equal},
      {"1.0b2", "1.0b10", less},
      {"1.0", "1.0b1", less},  // only longer; a version has no marks for what comes before it
      {"99999999999999999999998", "99999999999999999999999", less},
      {"1.a", "1.\xc3\xa4", less},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(numericOrder(c.a, c.b), c.order) << c.a << ' ' << c.b;
    EXPECT_EQ(numericOrder(c.b, c.a), 0 <=> c.order) << c.b << ' ' << c.a;
  }
}

}  // namespace
}  // namespace spacemint
