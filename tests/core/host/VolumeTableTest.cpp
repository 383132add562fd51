#include "core/host/VolumeTable.h"

#include "core/host/linux/VolumesOfMounts.h"
#include "support/Disks.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace spacemint {
namespace {

// A line of the mount table, in short: the device's minor number, the root, the mount point, the options and
// the type.
std::string line(int id, const std::string& text) {
  std::array<char, 200> root{};
  std::array<char, 200> point{};
  std::array<char, 20> options{};
  std::array<char, 20> type{};
  int minor = 0;
  std::sscanf(text.c_str(), "%d %199s %199s %19s %19s", &minor, root.data(), point.data(), options.data(),
              type.data());
  return std::to_string(id) + " 1 8:" + std::to_string(minor) + " " + root.data() + " " + point.data() + " " +
         options.data() + " shared:1 - " + type.data() + " /dev/x" + std::to_string(minor) + " rw\n";
}

// A computer with these mounts and the home folder /home/ann. Mount points that another line covers later,
// and those below a network file system, are as they would be found.
std::string volumesOn(const std::vector<std::string>& table) {
  std::string text;
  std::map<std::string, MountTop> tops;
  for (const std::string& row : table) {
    const int id = static_cast<int>(tops.size()) + 100 + static_cast<int>(text.size());
    text += line(id, row);
    const Mount mount = parseMountTable(line(id, row)).at(0);
    tops[mount.mountPoint] = {
        .mountId = mount.id, .identity = {mount.device, 2}, .isFolder = !mount.mountPoint.ends_with(".conf")};
  }
  std::string result;
  for (const Volume& volume :
       volumesOf(parseMountTable(text), {.localTypes = localTypes("nodev\tproc\nnodev\ttmpfs\n\text4\n\txfs\n"
                                                                  "\tbtrfs\n\tfuseblk\n\tsquashfs\n\tvfat\n"),
                                        .home = "/home/ann",
                                        .topOf = [&](const Mount& mount) -> std::optional<MountTop> {
                                          EXPECT_FALSE(mount.mountPoint.starts_with("/net")) << "may hang";
                                          return tops.at(mount.mountPoint);
                                        }})) {
    result += "[" + volume.name + (volume.holdsHome ? "*" : "") + " " + volume.fileSystem;
    for (const VolumePlace& place : volume.places) result += " " + place.mountPoint;
    result += std::string{volume.isWritable ? "" : " read-only"} + (volume.mayHang ? " asked aside]" : "]");
  }
  return result;
}

TEST(VolumeTable, groupsTheMountsOfEachLayoutByPool) {
  const struct {
    std::vector<std::string> table;
    const char* volumes;
  } layouts[]{
      {{"1 / / rw ext4", "90 / /proc rw proc", "91 / /run rw tmpfs"}, "[System* ext4 /]"},
      {{"1 / / rw ext4", "2 / /home rw xfs", "3 / /boot rw ext4", "4 / /boot/efi rw vfat"},
       "[Home* xfs /home][System ext4 /][ ext4 /boot][ vfat /boot/efi]"},
      {{"1 /root / rw btrfs", "1 /home /home rw btrfs", "3 / /boot rw ext4"},
       "[System* btrfs / /home][ ext4 /boot]"},
      {{"1 /a / rw btrfs", "1 / /mnt/top\\040level rw btrfs", "1 /a/home/ann /srv/ann ro btrfs"},
       "[System* btrfs / /mnt/top level /srv/ann]"},
      {{"1 / / ro ext4", "1 / /sysroot ro ext4", "1 /var /var rw ext4"}, "[System* ext4 / /sysroot /var]"},
      {{"9 / / rw overlay", "2 /hosts /etc/hosts.conf rw ext4", "2 /v /data rw ext4"},
       "[System* overlay /][ ext4 /data]"},
      {{"1 / / rw ext4", "9 / /home/ann rw nfs4"}, "[Home* nfs4 /home/ann asked aside][System ext4 /]"},
      {{"1 / / rw ext4", "9 / /net rw autofs", "2 / /net/disk rw ext4"}, "[System* ext4 /]"},
      {{"1 / / rw ext4", "2 / /mnt rw ext4", "3 / /mnt rw ext4"}, "[System* ext4 /][ ext4 /mnt]"},
      {{"1 / / rw ext4", "2 / /win rw fuseblk", "3 / /snap/core/1 ro squashfs", "4 / /old ro ext4"},
       "[System* ext4 /][ fuseblk /win asked aside][ ext4 /old read-only]"},
      {{"2 / /data rw ext4"}, "[ ext4 /data]"},
      {{}, ""},
  };
  for (const auto& layout : layouts) {
    const std::string first = layout.table.empty() ? "no mounts" : layout.table[0];
    EXPECT_EQ(volumesOn(layout.table), layout.volumes) << "on the layout that begins with " << first;
  }
}

// The figures of df for the file system at `path`.
std::vector<std::int64_t> figuresOfDf(const std::string& path) {
  const std::string command = "df -B1 --output=size,used,avail,itotal,iavail " + path + " | tail -1";
  const std::unique_ptr<FILE, int (*)(FILE*)> df{popen(command.c_str(), "r"), pclose};
  std::vector<std::int64_t> figures;
  long long figure = 0;
  while (std::fscanf(df.get(), "%lld", &figure) == 1) figures.push_back(figure);
  return figures;
}

TEST(VolumeTable, hasTheFiguresOfDfForRealDisks) {
  const support::TemporaryFolder folder;
  if (!support::canMountDisks()) GTEST_SKIP() << "no loop devices to be had here";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    const std::string ext4 = support::mountDisk(folder, "ext4", "-m 5 -N 2000");
    const std::string btrfs = support::mountDisk(folder, "btrfs", "");
    support::writeText(ext4 + "/f", std::string(5'000'000, 'x'));
    sync();
    std::size_t compared = 0;
    for (const auto& [volume, space] : readVolumes()) {
      const std::string path = volume.mountPoint();
      if (path != ext4 && path != btrfs) continue;
      const Space::Files files = space->files.value_or(Space::Files{});
      const std::vector<std::int64_t> ours{space->total, space->used, space->free, files.total, files.free};
      EXPECT_EQ(ours, figuresOfDf(path));
      EXPECT_EQ(space->total, space->used + space->heldBack + space->free);
      EXPECT_GT(space->heldBack, space->total / 50);
      EXPECT_EQ(volume.places.size(), 1U);
      ++compared;
    }
    return compared == 2 && !testing::Test::HasFailure();
  }));
}

}  // namespace
}  // namespace spacemint
