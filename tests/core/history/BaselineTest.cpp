#include "core/history/Baseline.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(Baseline, isTheScanNearestToADayBeforeTheNewest) {
  const auto history = [](std::initializer_list<int> hours) {
    std::vector<SnapshotStore::Entry> entries;
    for (const int hour : hours) {
      entries.push_back(
          {dateFromUnixSeconds(1'700'000'000) - std::chrono::hours{hour}, std::to_string(hour)});
    }
    return entries;
  };
  EXPECT_EQ(defaultBaseline({}), std::nullopt);
  EXPECT_EQ(defaultBaseline(history({0})), std::nullopt);
  EXPECT_EQ(defaultBaseline(history({0, 3}))->path, "3");
  EXPECT_EQ(defaultBaseline(history({0, 3, 20, 30, 72}))->path, "20");
  EXPECT_EQ(defaultBaseline(history({0, 23, 25}))->path, "23");  // as near; the newer one
  EXPECT_EQ(baselineCandidates(history({0, 3, 20, 30, 72})).back().path, "72");
  EXPECT_EQ(defaultBaseline(history({0, 3, -5, -24})), history({3}).front()) << "not one of a time to come";
  // As far apart as dates can be.
  const std::vector<SnapshotStore::Entry> extremes{{Date::max(), "max"}, {Date{}, "0"}, {Date::min(), "min"}};
  EXPECT_EQ(defaultBaseline(extremes)->path, "0");
}

}  // namespace
}  // namespace spacemint
