#include "core/host/UserTimeZone.h"

#include "core/base/CalendarDays.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace spacemint {
namespace {

TEST(UserTimeZone, isANameHoweverTheEnvironmentGivesIt) {
  const char* given = std::getenv("TZ");
  const auto before = given != nullptr ? std::optional<std::string>{given} : std::nullopt;
  unsetenv("TZ");
  const std::string machine = userTimeZone();
  EXPECT_TRUE(isKnownTimeZone(machine)) << machine;
  struct Case {
    const char* variable;
    std::string zone;
  };
  const Case cases[]{
      {"Asia/Kolkata", "Asia/Kolkata"},
      {":Asia/Kolkata", "Asia/Kolkata"},
      {"/usr/share/zoneinfo/Asia/Kolkata", "Asia/Kolkata"},
      {":/usr/share/zoneinfo/posix/Asia/Kolkata", "Asia/Kolkata"},
      {"", "UTC"},
      {"CET-1CEST,M3.5.0,M10.5.0", machine},
      {"Nowhere/Land", machine},
  };
  for (const Case& c : cases) {
    setenv("TZ", c.variable, 1);
    EXPECT_EQ(userTimeZone(), c.zone) << c.variable;
  }
  before ? setenv("TZ", before->c_str(), 1) : unsetenv("TZ");
}

}  // namespace
}  // namespace spacemint
