#include "core/history/Migration.h"

#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>

namespace spacemint {
namespace {

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
  struct Case {
    const char* former;
    const char* present;
    bool copied;
    const char* after;
  };
  const Case cases[]{
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
  for (const Case& c : cases) {
    fs::remove(folder / "former.json");
    fs::remove(folder / "present.json");
    EXPECT_EQ(migrate(c.former, c.present), (Result{.copiedSettings = c.copied}));
    EXPECT_EQ(settingsNow(), c.after);
    EXPECT_FALSE(launch().copiedSettings) << "a second launch copies nothing";
    EXPECT_EQ(settingsNow(), c.after);
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

TEST_F(MigrationTest, movesTheHistoryOnce) {
  support::writeText(folder / "data/Loftmere/Snapshots/1700000000.json", "as it is");
  EXPECT_EQ(launch(), (Result{.movedHistory = true}));
  EXPECT_TRUE(fs::exists(folder / "data/Spacemint/Snapshots/1700000000.json"));
  EXPECT_FALSE(fs::exists(folder / "data/Loftmere"));
  EXPECT_EQ(launch(), Result{});
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
