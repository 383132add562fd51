#include "core/host/VolumeTable.h"

#include "core/host/linux/Territory.h"
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
// the type. The option "folder" is for a mounted folder that is no subvolume, "copy" for a snapshot.
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

// A computer with these mounts and the home folder /home/ann.
struct Computer {
  std::vector<Mount> mounts;
  std::map<std::uint64_t, MountTop> tops;
  std::vector<Volume> volumes;

  explicit Computer(const std::vector<std::string>& table) {
    std::string text;
    for (const std::string& row : table) text += line(100 + static_cast<int>(text.size()), row);
    mounts = parseMountTable(text);
    std::map<std::string, std::uint64_t> visible;  // a later line covers an earlier one
    for (const Mount& mount : mounts) visible[mount.mountPoint] = mount.id;
    for (std::size_t i = 0; i < mounts.size(); ++i) tops[mounts[i].id] = topOf(mounts[i], table[i]);
    volumes =
        volumesOf(mounts, {.localTypes = localTypes("nodev\tproc\nnodev\ttmpfs\n\text4\n\txfs\n\tbtrfs\n"
                                                    "\tfuseblk\n\tsquashfs\n\tvfat\n"),
                           .home = "/home/ann",
                           .topOf = [&](const Mount& mount) -> std::optional<MountTop> {
                             EXPECT_FALSE(mount.mountPoint.starts_with("/net")) << "may hang";
                             return tops.at(visible.at(mount.mountPoint));
                           }});
    for (Volume& volume : volumes) {
      volume.isRemovable = volume.mountPoint().starts_with("/media");
      for (VolumePlace& place : volume.places) place.isSnapshot = place.mountPoint.contains("snapshots/");
    }
  }

  static MountTop topOf(const Mount& mount, const std::string& row) {
    const bool isSubvolume = mount.fileSystem == "btrfs" && !row.contains("folder");
    return {.mountId = mount.id,
            .identity = {isSubvolume ? std::hash<std::string>{}(mount.root) : mount.device,
                         isSubvolume ? 256U : std::hash<std::string>{}(mount.root)},
            .isFolder = !mount.mountPoint.ends_with(".conf")};
  }

  std::string volumesText() const {
    std::string result;
    for (const Volume& volume : volumes) {
      result += "[" + volume.name + (volume.holdsHome ? "*" : "") + " " + volume.fileSystem;
      for (const VolumePlace& place : volume.places) result += " " + place.mountPoint;
      result += std::string{volume.isWritable ? "" : " read-only"} + (volume.mayHang ? " asked aside]" : "]");
    }
    return result;
  }

  // What a scan of a folder enters, and what it leaves out.
  std::string territoryOf(const std::string& root) const {
    const Mount* holder = holderOf(root, mounts);
    if (holder == nullptr) return "";
    const MountTop& top = tops.at(holder->id);
    const auto territory = Territory::of(
        root, {.mounted = {top.identity.device, holder->id}, .inode = top.identity.inode}, mounts, volumes);
    std::string result;
    for (const ListedPlace& place : territory.places()) result += place.mountPoint + " ";
    constexpr std::array kinds{"volume", "snapshot", "removable", "remote"};
    for (const LeftOut& item : territory.leftOut()) {
      result += "-" + item.path + ":" + kinds.at(static_cast<std::size_t>(item.kind)) + " ";
    }
    return result;
  }
};

TEST(VolumeTable, groupsTheMountsOfEachLayoutAndEntersEachFolderOnce) {
  const struct {
    std::vector<std::string> table;
    const char* volumes;
    const char* scanned;
    std::string root = "/";
  } layouts[]{
      {{"1 / / rw ext4", "90 / /proc rw proc", "91 / /run rw tmpfs"}, "[System* ext4 /]", "/ "},
      {{"1 / / rw ext4", "2 / /home rw xfs", "3 / /boot rw ext4", "4 / /boot/efi rw vfat"},
       "[Home* xfs /home][System ext4 /][ ext4 /boot][ vfat /boot/efi]",
       "/ /home /boot /boot/efi "},
      {{"1 / / rw ext4", "2 / /home rw xfs", "3 / /home/ann/disk rw ext4"},
       "[Home* xfs /home][System ext4 /][ ext4 /home/ann/disk]",
       "/home -/home/ann/disk:volume ",
       "/home/ann"},
      {{"1 /root / rw btrfs", "1 /home /home rw btrfs", "3 / /boot rw ext4"},
       "[System* btrfs / /home][ ext4 /boot]",
       "/ /boot /home "},
      {{"1 /@/.snapshots/1/snapshot / rw btrfs", "1 /@/.snapshots /.snapshots rw btrfs",
        "1 /@/home /home rw btrfs", "1 /@/.snapshots/2/snapshot /mnt/snapshots/2 ro btrfs"},
       "[System* btrfs / /.snapshots /home /mnt/snapshots/2]",
       "/ /home /.snapshots -/mnt/snapshots/2:snapshot "},
      {{"1 /a / rw btrfs", "1 / /mnt/top\\040level rw btrfs", "1 /a/home/ann /srv/ann ro,folder btrfs"},
       "[System* btrfs / /mnt/top level /srv/ann]",
       "/ /mnt/top level "},
      {{"1 /ostree/1 / ro ext4", "1 / /sysroot ro ext4", "1 /ostree/var /var rw ext4",
        "1 /ostree/1/usr /usr ro ext4"},
       "[System* ext4 / /sysroot /var /usr]",
       "/ /sysroot /var /usr "},
      {{"1 / / rw ext4", "1 /home/ann/mail /home/ann/mail rw ext4", "1 /srv /home/ann/srv rw ext4"},
       "[System* ext4 / /home/ann/mail /home/ann/srv]",
       "/ /home/ann/srv /home/ann/mail ",
       "/home/ann"},
      {{"9 / / rw overlay", "2 /hosts /etc/hosts.conf rw ext4", "2 /v /data rw ext4"},
       "[System* overlay /][ ext4 /data]",
       "/ /data "},
      {{"1 / / rw ext4", "9 / /home/ann rw nfs4", "8 / /mnt/sftp rw fuse.sshfs",
        "7 / /run/doc rw fuse.portal"},
       "[Home* nfs4 /home/ann asked aside][System ext4 /]",
       "/ -/home/ann:remote -/mnt/sftp:remote "},
      {{"1 / / rw ext4", "9 / /net rw autofs", "2 / /net/disk rw ext4"},
       "[System* ext4 /]",
       "/ -/net:remote "},
      {{"1 / / rw ext4", "2 / /mnt rw ext4", "3 / /mnt rw ext4"}, "[System* ext4 /][ ext4 /mnt]", "/ /mnt "},
      {{"1 / / rw ext4", "2 / /win rw fuseblk", "3 / /snap/core/1 ro squashfs", "4 / /media/stick rw vfat"},
       "[System* ext4 /][ fuseblk /win asked aside][ vfat /media/stick]",
       "/ /win -/media/stick:removable "},
      {{"1 / / rw ext4", "91 / /tmp rw tmpfs", "2 / /tmp/a/b rw ext4", "3 / /tmp/a/b/c ro ext4"},
       "[System* ext4 /][ ext4 /tmp/a/b][ ext4 /tmp/a/b/c read-only]",
       "/ -/tmp/a/b:volume -/tmp/a/b/c:volume "},
      {{"2 / /data rw ext4"}, "[ ext4 /data]", ""},
      {{}, "", ""},
  };
  for (const auto& layout : layouts) {
    const Computer computer{layout.table};
    const std::string name = layout.table.empty() ? "no mounts" : layout.table.back();
    EXPECT_EQ(computer.volumesText(), layout.volumes) << "on the layout that ends with " << name;
    EXPECT_EQ(computer.territoryOf(layout.root), layout.scanned) << "on the layout that ends with " << name;
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
