#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/host/linux/MountTable.h"
#include "core/volume/Permissions.h"
#include "core/volume/VolumeStatus.h"
#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <cstdlib>
#include <filesystem>

namespace spacemint {
namespace {

TEST(VolumeStatus, choosesTheFigureForFreeSpaceInOrder) {
  EXPECT_FALSE(VolumeStatus::from({.name = "x", .available = 5}));
  EXPECT_EQ(VolumeStatus::from({.total = 9}), (VolumeStatus{"System", 9, 0}));
  EXPECT_EQ(VolumeStatus::from({.name = "x", .total = 9, .available = 5}), (VolumeStatus{"x", 9, 5}));
  EXPECT_EQ(
      VolumeStatus::from({.name = "x", .total = 9, .availableForImportantUsage = 7, .available = 5})->free,
      7);
}

TEST(VolumeStatus, neverUsesLessThanNothing) {
  EXPECT_EQ((VolumeStatus{.total = 5, .free = 9}.used()), 0);
  EXPECT_EQ((VolumeStatus{.total = 0, .free = 9}.usedFraction()), 0);
  EXPECT_EQ((VolumeStatus{.total = 8, .free = 2}.usedFraction()), 0.75);
}

TEST(VolumeStatus, readsTheVolumeOfAnyPathOnIt) {
  const support::TemporaryFolder folder;
  struct statvfs status {};
  ASSERT_EQ(statvfs(folder.path().c_str(), &status), 0);
  const auto volume = VolumeStatus::current(folder.path());
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->total, static_cast<Bytes>(status.f_blocks * status.f_frsize));
  EXPECT_FALSE(volume->name.empty());
  EXPECT_FALSE(VolumeStatus::current(folder / "none"));
}

TEST(VolumeInfo, namesAVolumeThatNoTableOfMountsHas) {
  const support::TemporaryFolder folder;
  std::filesystem::create_directory(folder / "a");
  if (!support::canMount()) GTEST_SKIP() << "no chroot to be had here";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts() || chroot(folder.path().c_str()) != 0 || chdir("/") != 0) return false;
    const auto info = readVolumeInfo("/a");
    return info && VolumeStatus::from(*info).value_or(VolumeStatus{}).name == "System";
  }));
}

TEST(VolumeInfo, namesTheVolumeOfTheHomeFolderAsTheListOfVolumesDoes) {
  const support::TemporaryFolder folder;
  if (!support::canMount()) GTEST_SKIP() << "nothing can be mounted here";
  EXPECT_TRUE(support::succeedsInChild([&] {
    const std::string& home = folder.path();
    setenv("HOME", home.c_str(), 1);
    return support::enterOwnMounts() && mount("tmpfs", home.c_str(), "tmpfs", 0, nullptr) == 0 &&
           VolumeStatus::current(home).value_or(VolumeStatus{}).name == "Home";
  }));
}

TEST(Permissions, areThereWhenOnePlaceCanBeOpened) {
  const support::TemporaryFolder folder;
  const std::string open = folder / "open";
  const std::string locked = folder / "locked";
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  std::filesystem::create_directory(open);
  std::filesystem::create_directory(locked);
  std::filesystem::permissions(locked, std::filesystem::perms::none);
  EXPECT_TRUE(support::succeedsInChild([&] {
    const std::string none = folder / "none";
    return support::becomeNobody() && Permissions::canOpenOne(std::vector{none, locked, open}) &&
           !Permissions::canOpenOne(std::vector{none, locked});
  }));
}

TEST(UserFolders, followTheEnvironmentWhereItNamesAbsolutePaths) {
  EXPECT_TRUE(support::succeedsInChild([] {
    setenv("HOME", "/home/ann/", 1);
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("XDG_CONFIG_HOME", "/elsewhere/config", 1);
    unsetenv("XDG_CACHE_HOME");
    const bool named =
        UserFolders::home() == "/home/ann" && UserFolders::data() == "/home/ann/.local/share" &&
        UserFolders::config() == "/elsewhere/config" && UserFolders::cache() == "/home/ann/.cache";
    unsetenv("HOME");
    return named && UserFolders::home().starts_with('/');
  }));
}

TEST(UserLocale, isTheFirstThatIsSet) {
  EXPECT_TRUE(support::succeedsInChild([] {
    setenv("LC_ALL", "", 1);
    setenv("LC_NUMERIC", "de_DE.UTF-8@euro", 1);
    setenv("LANG", "fr_FR", 1);
    const bool german = userLocale() == "de_DE";
    setenv("LC_ALL", "C.UTF-8", 1);
    return german && userLocale() == "en";
  }));
}

TEST(MountTable, readsTheKernelsLines) {
  const auto mounts = parseMountTable(
      "36 35 98:0 /mnt1 / rw,noatime master:1 - ext3 /dev/root rw,errors=continue\n"
      "40 36 0:44 / /home/ann/with\\040blank\\134and\\012line rw shared:2 propagate_from:1 - nfs4 "
      "host:/a\\040b rw\n"
      "broken line\n"
      "41 36 0:x / /odd rw - tmpfs none rw\n"
      "42 36 0:45 / /cut rw\n"
      "43 36 8:1 / /home/ann/last rw - vfat");
  ASSERT_EQ(mounts.size(), 3U);
  EXPECT_EQ(mounts[0].id, 36U);
  EXPECT_EQ(mounts[0].device, makedev(98, 0));
  EXPECT_EQ(mounts[0].source, "/dev/root");
  EXPECT_EQ(mounts[1].mountPoint, "/home/ann/with blank\\and\nline");
  EXPECT_EQ(mounts[1].fileSystem, "nfs4");
  EXPECT_EQ(mounts[1].source, "host:/a b");
  EXPECT_EQ(mounts[2].mountPoint, "/home/ann/last");
}

}  // namespace
}  // namespace spacemint
