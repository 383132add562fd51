#include "core/scan/ScanTiming.h"

#include "support/TreeBuilder.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using support::file;
using support::folder;

constexpr Date now{1'700'000'000s};

TEST(ScanTiming, saysHowFarAScanIs) {
  using namespace ScanTiming;
  EXPECT_EQ(fraction(10, 0), std::nullopt);
  EXPECT_EQ(fraction(25, 100), 0.25);
  EXPECT_EQ(fraction(200, 100), 0.99);
  EXPECT_EQ(remaining(0.5, 5s), std::nullopt);
  EXPECT_EQ(remaining(0.03, 60s), std::nullopt);
  EXPECT_EQ(remaining(std::nullopt, 60s), std::nullopt);
  EXPECT_EQ(remaining(0.25, 60s), Seconds{180});
}

TEST(ScanTiming, expectsWhatTheLastScanFoundOrTheVolumeHolds) {
  const Snapshot last{.root = folder("/home", {file("a", 10)})};
  const VolumeStatus volume{"Disk", 100, 30};
  EXPECT_EQ(ScanTiming::expectedBytes(&last, "/home", volume), 10);
  EXPECT_EQ(ScanTiming::expectedBytes(&last, "/", volume), 70);
  EXPECT_EQ(ScanTiming::expectedBytes(nullptr, "/", std::nullopt), 0);
}

TEST(ScanTiming, isStaleWhenOlderThanTheLimitOrOfAnotherFolder) {
  const Snapshot scan{.date = now, .root = folder("/home", {})};
  const auto isStale = [](const Snapshot* snapshot, const char* root, Seconds age) {
    return ScanTiming::isStale({.snapshot = snapshot,
                                .root = root,
                                .now = now + std::chrono::duration_cast<std::chrono::microseconds>(age),
                                .olderThan = Seconds{3'600}});
  };
  EXPECT_TRUE(isStale(nullptr, "/home", Seconds{0}));
  EXPECT_TRUE(isStale(&scan, "/", Seconds{0}));
  EXPECT_FALSE(isStale(&scan, "/home", Seconds{3'600}));
  EXPECT_TRUE(isStale(&scan, "/home", Seconds{3'600.001}));
  EXPECT_TRUE(isStale(&scan, "/home", Seconds{-1})) << "a scan of a time to come is of an unknown age";
  const Snapshot ancient{.date = Date::min(), .root = folder("/home", {})};
  EXPECT_TRUE(isStale(&ancient, "/home", Seconds{0}));
}

}  // namespace
}  // namespace spacemint
