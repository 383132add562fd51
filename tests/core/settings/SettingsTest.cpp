#include "core/settings/Settings.h"

#include "core/history/Migration.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <tuple>

namespace spacemint {
namespace {

TEST(Settings, acceptWhatPeopleMayType) {
  const std::tuple<const char*, const char*, DefaultsValue> cases[]{
      {"warningThresholdGB", "20", 20},
      {"warningThresholdGB", "0", 0},
      {"warningThresholdGB", "42", 42},
      {"warningThresholdGB", "9223372036", std::int64_t{9'223'372'036}},
      {"scanIntervalHours", "1", 1},
      {"scanIntervalHours", "2562047788", std::int64_t{2'562'047'788}},
      {"scope", "home", "home"},
      {"scope", "disk", "disk"},
      {"presence", "menuBar", "menuBar"},
      {"presence", "dock", "dock"},
      {"showFreeSpaceInMenuBar", "off", false},
      {"showFreeSpaceInMenuBar", "yes", true},
      {"showFreeSpaceInMenuBar", "false", false},
      {"hasStarted", "true", true},
      {"hasStarted", "no", false},
      {"hasStarted", "on", true},
      {"unwatchedVolumes", "", DefaultsArray{}},
      {"unwatchedVolumes", "/data,/mnt/a b", DefaultsArray{"/data", "/mnt/a b"}},
      {"excludes", " a b , *.iso,x\\,y,", DefaultsArray{"a b ", "*.iso", "x\\,y"}},
  };
  for (const auto& [key, text, wantedValue] : cases) {
    const auto value = parseSetting(key, text);
    ASSERT_TRUE(value) << key << ' ' << text;
    EXPECT_EQ(*value, wantedValue) << key << ' ' << text;
  }
  EXPECT_EQ(settingText({"*.iso", "x\\,y", "p,q"}), "*.iso,x\\,y,p\\,q");
  EXPECT_EQ(parseSetting("excludes", "a,b[").error().code, std::to_underlying(SettingError::unfitValue));
}

TEST(Settings, refuseTheRestAndSayWhatWouldDo) {
  const std::tuple<const char*, std::vector<const char*>, const char*> cases[]{
      {"warningThresholdGB",
       {"", "-1", "20 GB", " 20", "2.5", "+5", "0x10", "9223372037", "99999999999999999999"},
       "a whole number from 0 to 9223372036 (offered: 5, 10, 15, 20, 30, 50, 75, 100, 150, 200)."},
      {"scanIntervalHours",
       {"0", "-3", "2562047789", "Every 3 hours"},
       "a whole number from 1 to 2562047788 (offered: 3, 6, 12, 24)."},
      {"scope", {"Disk", "", "volume", "Entire disk"}, "home, disk."},
      {"presence", {"both", "menubar"}, "menuBar, dock."},
      {"hasStarted", {"1", "", "TRUE"}, "true, false, yes, no, on, off."},
      {"unwatchedVolumes", {"data", "/data, /b"}, "absolute paths, separated by commas, or nothing."},
  };
  for (const auto& [key, texts, wouldDo] : cases) {
    for (const char* text : texts) {
      const auto value = parseSetting(key, text);
      ASSERT_FALSE(value) << key << ' ' << text;
      EXPECT_EQ(value.error().code, std::to_underlying(SettingError::unfitValue));
      EXPECT_EQ(value.error().message,
                std::string{"\""} + text + "\" is no value of " + key + ". It can be: " + wouldDo);
    }
  }
}

TEST(Settings, everyOfferedChoiceCanBeTyped) {
  for (const SettingDescription& setting : settings) {
    for (const SettingChoice& choice : setting.choices) {
      const auto* number = std::get_if<std::int64_t>(&choice.value);
      const std::string text =
          number != nullptr ? std::to_string(*number) : std::string{std::get<std::string_view>(choice.value)};
      EXPECT_TRUE(parseSetting(setting.key, text)) << setting.key << ' ' << text;
      if (number != nullptr && setting.setting == Setting::warningThresholdGB) {
        EXPECT_EQ(choice.label, text + " GB free");
      }
    }
  }
}

namespace fs = std::filesystem;
using Migration::Result;

class MigrationTest : public testing::Test {
 protected:
  // The settings files are written as text, null for none.
  Result migrate(const char* former, const char* present) {
    if (former != nullptr) support::writeText(folder / "former.json", former);
    if (present != nullptr) support::writeText(folder / "present.json", present);
    return launch();
  }
  Result launch() {
    DefaultsStore defaults{folder / "present.json"};
    std::optional<DefaultsStore> old;
    if (fs::exists(folder / "former.json"))
      old.emplace(folder / "former.json", DefaultsStore::Access::readOnly);
    return Migration::fromLoftmere({.defaults = defaults,
                                    .oldDefaults = old ? &*old : nullptr,
                                    .supportDirectory = folder / "data",
                                    .fileManager = files});
  }
  std::string settingsNow() const {
    std::string text = support::readText(folder / "present.json");
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    return text;
  }

  support::TemporaryFolder folder;
  FileManager files = FileManager::host();
};

TEST_F(MigrationTest, copiesSettingsIntoAStoreThatWasNeverUsed) {
  const std::tuple<const char*, const char*, bool, const char*> cases[]{
      {nullptr, nullptr, false, ""},
      {R"({"scope": "disk"})", nullptr, false, ""},
      {R"({"hasStarted": true})", nullptr, true, R"({"hasStarted":true})"},
      {R"({"hasStarted": false, "scope": "disk"})", R"({"scope": "home", "other": 1})", true,
       R"({"hasStarted":false,"other":1,"scope":"disk"})"},
      {R"({"hasStarted": true, "scope": "disk"})", R"({"hasStarted": false})", false,
       R"({"hasStarted":false})"},
      {R"({"hasStarted": true, "scope": "disk"})", R"({"hasStarted": "?"})", false, R"({"hasStarted":"?"})"},
      {R"({"hasStarted": 1, "warningThresholdGB": 7.5, "presence": {"both": []}, "foreign": 1})", nullptr,
       true, R"({"hasStarted":1,"presence":{"both":[]},"warningThresholdGB":7.5})"},
      {"{\"hasStarted\": true", nullptr, false, ""},
  };
  for (const auto& [former, present, copied, after] : cases) {
    fs::remove(folder / "former.json");
    fs::remove(folder / "present.json");
    EXPECT_EQ(migrate(former, present), (Result{.copiedSettings = copied}));
    EXPECT_EQ(settingsNow(), after);
    EXPECT_FALSE(launch().copiedSettings) << "a second launch copies nothing";
    EXPECT_EQ(settingsNow(), after);
  }
}

TEST_F(MigrationTest, damagedSettingsAreNotReplacedByTheFormerProducts) {
  EXPECT_EQ(migrate(R"({"hasStarted": true, "scope": "disk"})", "{\"scope\": "), Result{});
  EXPECT_EQ(settingsNow(), "") << "the damaged file is set aside";
  EXPECT_EQ(launch(), Result{}) << "nor at the next start";
}

TEST_F(MigrationTest, settingsThatCannotBeStoredAreReportedAndTriedAgain) {
  fs::create_directory(folder / "present.json");
  const Result result = migrate(R"({"hasStarted": true})", nullptr);
  EXPECT_FALSE(result.copiedSettings);
  EXPECT_THAT(result.error.value_or(""), testing::StartsWith("Couldn't copy settings: "));
  fs::remove(folder / "present.json");
  EXPECT_EQ(launch(), (Result{.copiedSettings = true}));
}

TEST_F(MigrationTest, leavesBothHistoriesWhereTheNewOneExists) {
  fs::create_directories(folder / "data/Loftmere/Snapshots");
  fs::create_directories(folder / "data/Spacemint");
  EXPECT_EQ(launch(), Result{});
  EXPECT_TRUE(fs::exists(folder / "data/Loftmere/Snapshots"));
  EXPECT_TRUE(fs::is_empty(folder / "data/Spacemint"));
}

TEST_F(MigrationTest, reportsAMoveThatFailsAndTriesAgainAtTheNextLaunch) {
  fs::create_directories(folder / "data/Loftmere/Snapshots");
  const auto hostsMove = std::exchange(files.move, [](const std::string& from, const std::string&) {
    return std::expected<void, Error>{std::unexpected(systemError(from, EROFS))};
  });
  const std::string reason = (folder / "data/Loftmere") + ": Read-only file system";
  EXPECT_EQ(launch(), (Result{.error = "Couldn't move scan history: " + reason}));
  EXPECT_TRUE(fs::exists(folder / "data/Loftmere/Snapshots"));
  files.move = hostsMove;
  EXPECT_EQ(launch(), (Result{.movedHistory = true}));
}

TEST_F(MigrationTest, neverReplacesAFolderThatAppearsInBetween) {
  fs::create_directories(folder / "data/Loftmere/Snapshots");
  fs::create_directories(folder / "data/Spacemint");
  files.exists = [this](const std::string& path) { return path == folder / "data/Loftmere"; };
  const Result result = launch();
  EXPECT_FALSE(result.movedHistory);
  EXPECT_THAT(result.error.value_or(""), testing::HasSubstr("File exists"));
  EXPECT_TRUE(fs::is_empty(folder / "data/Spacemint"));
}

}  // namespace
}  // namespace spacemint
