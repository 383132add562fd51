#include "Spacemint/desktop/linux/CoarseScheduler.h"

#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;
using support::waitUntil;

constexpr Seconds soon{0.001};

struct Battery {
  const char* status = "Discharging";
  const char* capacity = "19";
  const char* scope = nullptr;
};

// The kernel's folder of power supplies.
class Supplies {
 public:
  const std::string& path() const { return folder_.path(); }

  void set(const std::string& name, const Battery& battery) {
    fs::create_directories(folder_ / name);
    write(name, "type", "Battery");
    write(name, "status", battery.status);
    write(name, "capacity", battery.capacity);
    if (battery.scope != nullptr) write(name, "scope", battery.scope);
  }

 private:
  void write(const std::string& name, const char* fact, const char* value) {
    std::ofstream(folder_ / name + "/" + fact) << value << '\n';
  }

  TemporaryFolder folder_;
};

TEST(BatteryLevel, isLowWhenEveryBatteryIsAndOneIsInUse) {
  Supplies supplies;
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  EXPECT_FALSE(isBatteryLow(supplies.path() + "/none"));
  supplies.set("BAT0", {});
  EXPECT_TRUE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {.status = "Charging"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {.capacity = "20"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT0", {});
  supplies.set("BAT1", {.status = "Not charging", .capacity = "90"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
  supplies.set("BAT1", {.status = "Not charging", .capacity = "1"});
  EXPECT_TRUE(isBatteryLow(supplies.path()));
}

TEST(BatteryLevel, isNotThatOfAMouse) {
  Supplies supplies;
  supplies.set("hid", {.capacity = "1", .scope = "Device"});
  EXPECT_FALSE(isBatteryLow(supplies.path()));
}

TEST(CoarseScheduler, runsAgainOnlyWhenTheLastRunIsFinished) {
  const Supplies none;
  CoarseScheduler scheduler({.folder = none.path()});
  std::vector<ActivityScheduler::Completion> runs;
  const auto scheduled = scheduler.schedule({.interval = soon}, [&](ActivityScheduler::Completion finished) {
    runs.push_back(std::move(finished));
  });
  ASSERT_TRUE(waitUntil([&] { return runs.size() == 1; }));
  EXPECT_FALSE(waitUntil([&] { return runs.size() > 1; }, std::chrono::milliseconds{20}));
  const auto first = runs[0];
  first();
  ASSERT_TRUE(waitUntil([&] { return runs.size() == 2; }));
  first();  // says nothing new
  EXPECT_FALSE(waitUntil([&] { return runs.size() > 2; }, std::chrono::milliseconds{20}));
}

TEST(CoarseScheduler, mayEndInsideARunAndBeforeItIsFinished) {
  const Supplies none;
  CoarseScheduler scheduler({.folder = none.path()});
  std::unique_ptr<ActivityScheduler::Scheduled> scheduled;
  ActivityScheduler::Completion last;
  scheduled = scheduler.schedule({.interval = soon}, [&](ActivityScheduler::Completion finished) {
    scheduled.reset();
    last = std::move(finished);
  });
  ASSERT_TRUE(waitUntil([&] { return last != nullptr; }));
  last();
}

TEST(CoarseScheduler, neverRunsWithoutAnInterval) {
  CoarseScheduler scheduler;
  bool hasRun = false;
  const auto zero = scheduler.schedule({}, [&](const auto&) { hasRun = true; });
  const auto less = scheduler.schedule({.interval = Seconds{-1}}, [&](const auto&) { hasRun = true; });
  EXPECT_NE(zero, nullptr);
  EXPECT_FALSE(waitUntil([&] { return hasRun; }, std::chrono::milliseconds{5}));
}

TEST(CoarseScheduler, waitsWhileTheBatteryIsLow) {
  Supplies supplies;
  supplies.set("BAT0", {});
  CoarseScheduler scheduler({.folder = supplies.path(), .lookAgain = soon});
  bool hasRun = false;
  const auto scheduled = scheduler.schedule({.interval = soon}, [&](const auto&) { hasRun = true; });
  EXPECT_FALSE(waitUntil([&] { return hasRun; }, std::chrono::milliseconds{20}));
  supplies.set("BAT0", {.status = "Charging"});
  EXPECT_TRUE(waitUntil([&] { return hasRun; }));
}

}  // namespace
}  // namespace spacemint
