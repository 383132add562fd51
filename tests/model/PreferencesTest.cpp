#include "Spacemint/model/Preferences.h"

#include "core/host/AtomicFile.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PreferencesTest : public testing::Test {
 protected:
  Preferences::Callback noting() {
    return [this](Setting setting) { told.emplace_back(describe(setting).key); };
  }
  std::string text() const { return readFile(path, 10'000).value_or("no file"); }

  support::TemporaryFolder folder;
  const std::string path = folder / "s.json";
  std::vector<std::string> told;
};

TEST_F(PreferencesTest, loadWhatIsStored) {
  struct Case {
    const char* stored;
    std::int64_t threshold;
    ScanScope scope;
    std::int64_t interval;
    bool shows;
    AppPresence presence;
    bool started;
  };
  using enum ScanScope;
  using enum AppPresence;
  const Case cases[]{
      {"{}", 20, home, 6, true, menuBar, false},
      {R"({"scope": "disk", "presence": "dock", "hasStarted": true})", 20, disk, 6, true, dock, true},
      {R"({"scope": "Disk", "presence": "both"})", 20, home, 6, true, menuBar, false},
      {R"({"scope": "volume", "presence": 1})", 20, home, 6, true, menuBar, false},
      {R"({"warningThresholdGB": 0, "scanIntervalHours": -1})", 0, home, -1, true, menuBar, false},
      {R"({"warningThresholdGB": "20", "scanIntervalHours": null})", 0, home, 0, true, menuBar, false},
      {R"({"showFreeSpaceInMenuBar": false, "hasStarted": "true"})", 20, home, 6, false, menuBar, false},
  };
  for (const Case& c : cases) {
    std::ofstream{path} << c.stored;
    DefaultsStore store{path};
    const Preferences preferences{store};
    EXPECT_EQ(preferences.warningThresholdGB(), c.threshold) << c.stored;
    EXPECT_EQ(preferences.scope(), c.scope) << c.stored;
    EXPECT_EQ(preferences.scanIntervalHours(), c.interval) << c.stored;
    EXPECT_EQ(preferences.showFreeSpaceInMenuBar(), c.shows) << c.stored;
    EXPECT_EQ(preferences.presence(), c.presence) << c.stored;
    EXPECT_EQ(preferences.hasStarted(), c.started) << c.stored;
    EXPECT_EQ(text(), c.stored);
  }
}

TEST_F(PreferencesTest, writeEveryValueAndTellOnlyOfChanges) {
  DefaultsStore store{path};
  Preferences preferences{store};
  const auto followed = preferences.observe(Preferences::followedAtOnce, noting());
  const auto setAll = [&](bool toDefaults) {
    preferences.setWarningThresholdGB(toDefaults ? 20 : 0);
    preferences.setScope(toDefaults ? ScanScope::home : ScanScope::disk);
    preferences.setScanIntervalHours(toDefaults ? 6 : 24);
    preferences.setShowFreeSpaceInMenuBar(toDefaults);
    preferences.setPresence(toDefaults ? AppPresence::menuBar : AppPresence::dock);
    preferences.setHasStarted(!toDefaults);
    preferences.setUnwatchedVolumes(toDefaults ? std::vector<std::string>{}
                                               : std::vector<std::string>{"/data"});
    preferences.setExcludes(toDefaults ? std::vector<std::string>{} : std::vector<std::string>{"*.iso"});
    std::string written = text();
    std::erase_if(written, [](char c) { return c == ' ' || c == '\n'; });
    return written;
  };
  EXPECT_EQ(setAll(true),
            R"({"excludes":[],"hasStarted":false,"presence":"menuBar","scanIntervalHours":6,"scope":"home",)"
            R"("showFreeSpaceInMenuBar":true,"unwatchedVolumes":[],"warningThresholdGB":20})");
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(
      setAll(false),
      R"({"excludes":["*.iso"],"hasStarted":true,"presence":"dock","scanIntervalHours":24,"scope":"disk",)"
      R"("showFreeSpaceInMenuBar":false,"unwatchedVolumes":["/data"],"warningThresholdGB":0})");
  EXPECT_THAT(told, ElementsAre("warningThresholdGB", "scope", "scanIntervalHours", "showFreeSpaceInMenuBar",
                                "presence", "unwatchedVolumes", "excludes"));
  EXPECT_EQ(Preferences{store}.unwatchedVolumes(), std::vector<std::string>{"/data"});
}

TEST_F(PreferencesTest, anObserverHearsOfItsOwnSettingsWhileItsSubscriptionLives) {
  DefaultsStore store{path};
  Preferences preferences{store};
  constexpr std::array started{Setting::hasStarted};
  auto subscription = preferences.observe(started, noting());
  preferences.setScope(ScanScope::disk);
  preferences.setHasStarted(true);
  EXPECT_THAT(told, ElementsAre("hasStarted"));
  subscription = {};
  preferences.setHasStarted(false);
  EXPECT_THAT(told, ElementsAre("hasStarted"));
}

TEST_F(PreferencesTest, anObserverMayChangeSettingsAndEndSubscriptions) {
  DefaultsStore store{path};
  Preferences preferences{store};
  constexpr std::array threshold{Setting::warningThresholdGB};
  Preferences::Subscription first;
  Preferences::Subscription second;
  first = preferences.observe(threshold, [&](Setting) {
    first = {};
    second = {};
    preferences.setWarningThresholdGB(preferences.warningThresholdGB() + 1);
  });
  second = preferences.observe(threshold, noting());
  preferences.setWarningThresholdGB(50);
  EXPECT_EQ(preferences.warningThresholdGB(), 51);
  EXPECT_EQ(store.integer("warningThresholdGB"), 51);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(PreferencesTest, aSubscriptionMayOutliveThePreferences) {
  DefaultsStore store{path};
  auto preferences = std::make_unique<Preferences>(store);
  const auto subscription = preferences->observe(Preferences::followedAtOnce, noting());
  preferences.reset();
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(PreferencesTest, takeOverWhatAnotherProcessStored) {
  DefaultsStore store{path};
  Preferences preferences{store};
  const auto subscription = preferences.observe(Preferences::followedAtOnce, noting());
  DefaultsStore other{path};
  ASSERT_TRUE(other.set("scope", "disk"));
  ASSERT_TRUE(other.set("unknown", 1));
  preferences.refresh();
  EXPECT_EQ(preferences.scope(), ScanScope::disk);
  EXPECT_THAT(told, ElementsAre("scope"));

  ASSERT_TRUE(other.set("scanIntervalHours", 12));
  preferences.setScope(ScanScope::home);  // which reads the other's change on its way
  told.clear();
  preferences.refresh();
  EXPECT_EQ(preferences.scanIntervalHours(), 12);
  EXPECT_THAT(told, ElementsAre("scanIntervalHours"));
}

TEST_F(PreferencesTest, aValueThatCannotBeStoredIsHeldAndReported) {
  DefaultsStore store{path};
  Preferences preferences{store};
  const auto subscription = preferences.observe(Preferences::followedAtOnce, noting());
  fs::create_directory(path);
  preferences.setScope(ScanScope::disk);
  ASSERT_TRUE(preferences.lastWriteError());
  EXPECT_THAT(preferences.lastWriteError()->message, HasSubstr("Is a directory"));
  preferences.refresh();
  EXPECT_EQ(preferences.scope(), ScanScope::disk);
  EXPECT_THAT(told, ElementsAre("scope"));

  fs::remove(path);
  preferences.setScope(ScanScope::disk);
  EXPECT_FALSE(preferences.lastWriteError());
  EXPECT_EQ(DefaultsStore{path}.string("scope"), "disk");
}

}  // namespace
}  // namespace spacemint
