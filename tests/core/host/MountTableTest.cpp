#include "core/host/linux/MountTable.h"

#include <gtest/gtest.h>

#include <sys/sysmacros.h>

namespace spacemint {
namespace {

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

TEST(MountTable, givesTheMountsBelowAFolderByName) {
  const std::vector<Mount> mounts{{.mountPoint = "/"},
                                  {.mountPoint = "/home/ann"},
                                  {.mountPoint = "/home/annex"},
                                  {.mountPoint = "/home/ann/a/b"},
                                  {.mountPoint = "/home/ann/a"}};
  const MountTree home = mountsBelow("/home/ann", mounts);
  ASSERT_EQ(home.below.size(), 1U);
  EXPECT_TRUE(home.child("a")->isMountPoint);
  EXPECT_TRUE(home.child("a")->child("b")->isMountPoint);
  EXPECT_EQ(home.child("b"), nullptr);
  const MountTree root = mountsBelow("/", mounts);
  EXPECT_FALSE(root.child("home")->isMountPoint);
  EXPECT_TRUE(root.child("home")->child("annex")->isMountPoint);
}

}  // namespace
}  // namespace spacemint
