#include "core/analysis/DeviceBackups.h"

#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::file;
using support::folder;

constexpr Bytes gigabyte = 1'000'000'000;
constexpr Date backedUp = dateFromUnixSeconds(1'772'368'200);  // 2026-03-01T12:30:00Z

// A home with one backup, whose Info.plist a test may write.
class DeviceBackupsTest : public testing::Test {
 protected:
  DeviceBackupsTest() { fs::create_directories(backup()); }

  std::string backup() const { return home / (std::string{DeviceBackups::relativePath} + "/00008110"); }
  std::string info() const { return backup() + "/Info.plist"; }

  Snapshot scan() const {
    const Node backups =
        folder("Backup", {folder("00008110", {file("a", 5 * gigabyte)}),
                          folder("unreadable", {file("a", 12 * gigabyte)}), file("stray", 7)});
    return {.root = folder(
                home.path(),
                {folder("Library", {folder("Application Support", {folder("MobileSync", {backups})})})})};
  }

  support::TemporaryFolder home;
};

TEST_F(DeviceBackupsTest, areListedLargestFirstWithWhatTheySayOfThemselves) {
  std::ofstream(info()) << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
<key>Display Name</key><string>Ann&apos;s iPad</string><key>Product Name</key><string>iPad Air</string>
<key>Last Backup Date</key><date>2026-03-01T12:30:00Z</date></dict></plist>)";
  const auto found = DeviceBackups::find({.in = scan(), .home = home.path()});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].name, "Unknown device");
  EXPECT_EQ(found[0].model, std::nullopt);
  EXPECT_EQ(found[0].size, 12 * gigabyte);
  EXPECT_EQ(found[1], (DeviceBackup{backup(), "Ann's iPad", "iPad Air", backedUp, 5 * gigabyte}));
  EXPECT_TRUE(DeviceBackups::find({.in = scan(), .home = "/elsewhere"}).empty());
}

TEST_F(DeviceBackupsTest, takeEachFactOnlyInItsOwnType) {
  const auto withInfo = [&](PropertyDictionary dictionary) {
    return DeviceBackups::find({.in = scan(),
                                .home = home.path(),
                                .readInfo = [&](const std::string&) { return std::optional{dictionary}; }})
        .front();
  };
  const auto named =
      withInfo({{"Device Name", std::string{"Phone"}}, {"Display Name", std::string{"Other"}}});
  EXPECT_EQ(named.name, "Phone");
  const auto odd = withInfo({{"Device Name", std::int64_t{7}},
                             {"Display Name", std::string{"Other"}},
                             {"Product Name", true},
                             {"Last Backup Date", std::string{"2020-01-01"}}});
  EXPECT_EQ(odd.name, "Other");
  EXPECT_EQ(odd.model, std::nullopt);
  EXPECT_EQ(odd.lastBackup, std::nullopt);
  EXPECT_FALSE(odd.isOld(backedUp, 90));
}

TEST_F(DeviceBackupsTest, areOldAfterTheDaysAndNotOnTheDay) {
  const DeviceBackup backup{.path = "/b", .name = "Phone", .lastBackup = backedUp};
  EXPECT_FALSE(backup.isOld(backedUp + std::chrono::days{90}, 90));
  EXPECT_TRUE(backup.isOld(backedUp + std::chrono::days{90} + std::chrono::microseconds{1}, 90));
}

TEST_F(DeviceBackupsTest, areNotReadWhereTheFileIsNoPlainOne) {
  ASSERT_EQ(mkfifo(info().c_str(), 0600), 0);
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));  // and does not wait for a writer
  fs::remove(info());
  fs::create_symlink("Info.plist", info());
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));
  fs::remove(info());
  std::ofstream(info()) << "<plist><dict></dict></plist>";
  EXPECT_TRUE(DeviceBackups::readInfo(backup()));
  fs::resize_file(info(), DeviceBackups::infoLimit + 1);
  EXPECT_FALSE(DeviceBackups::readInfo(backup()));
}

}  // namespace
}  // namespace spacemint
