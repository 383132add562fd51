#include "core/base/ByteFormat.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace spacemint {
namespace {

struct Case {
  Bytes bytes;
  const char* locale;
  const char* text;
};

TEST(ByteFormat, picksTheUnitThatNeverReadsOneThousand) {
  const Case cases[]{
      {0, "en_US", "0 bytes"},
      {999, "en_US", "999 bytes"},
      {1'000, "en_US", "1 KB"},
      {1'500, "en_US", "1.5 KB"},
      {999'499, "en_US", "999 KB"},
      {999'500, "en_US", "1 MB"},
      {99'949'999, "en_US", "99.9 MB"},
      {99'950'000, "en_US", "100 MB"},
      {123'456'789, "en_US", "123 MB"},
      {20'000'000'000, "en_US", "20 GB"},
      {1'250'000'000'000, "en_US", "1.2 TB"},
      {std::numeric_limits<std::int64_t>::max(), "en_US", "9,223 PB"},
      {std::numeric_limits<std::int64_t>::min(), "en_US", "-9,223 PB"},
      {-1'500, "en_US", "-1.5 KB"},
      {1'500, "de_DE", "1,5 KB"},
      {std::numeric_limits<std::int64_t>::max(), "de_DE", "9.223 PB"},
      {-1'500, "sv_SE", "\u22121,5 KB"},
      {1'500, "no such locale", "1.5 KB"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(ByteFormat::string(c.bytes, c.locale), c.text) << c.bytes << ' ' << c.locale;
}

TEST(ByteFormat, groupsWholeNumbersAsTheLocaleDoes) {
  EXPECT_EQ(groupedNumber(1'234'567, "en_US"), "1,234,567");
  EXPECT_EQ(groupedNumber(1'234'567, "de_DE"), "1.234.567");
}

}  // namespace
}  // namespace spacemint
