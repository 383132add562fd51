// Scans of "/" on disks of several layouts. Each runs in a namespace of mounts, with a disk of its own as
// "/".

#include "core/host/VolumeTable.h"
#include "core/scan/ProcessJournal.h"
#include "core/scan/ScanPlan.h"
#include "support/Disks.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

constexpr Bytes MiB = 1'048'576;

void writeBytes(const std::string& path, Bytes bytes) {
  support::writeText(path, std::string(static_cast<std::size_t>(bytes), 'x'));
}

// Btrfs with subvolumes for "/" and "/home", one inside another, a snapshot, a writable copy, and the top
// level mounted as well; /boot of its own, a bind mount, and a file system in memory. 7 MiB in 4 files.
constexpr const char* subvolumes = R"(
  btrfs subvolume create $T/root && btrfs subvolume create $T/home &&
  mkdir -p $T/root/boot $T/root/home $T/root/proc $T/root/tmp $T/root/srv $T/root/top $T/root/bound $T/home/ann &&
  btrfs subvolume create $T/root/nested &&
  head -c 3145728 /dev/urandom >$T/root/nested/f && head -c 2097152 /dev/urandom >$T/home/ann/g &&
  head -c 1048576 /dev/urandom >$T/root/h && head -c 1048576 /dev/urandom >$BOOT/k &&
  btrfs subvolume snapshot -r $T/home $T/home/before && btrfs subvolume snapshot $T/home $T/root/srv/copy &&
  D=$(findmnt -no SOURCE $T) && mount -o subvol=root $D $N && mount -o subvol=home $D $N/home &&
  mount -o subvolid=5 $D $N/top && mount --move $BOOT $N/boot && mount --bind $N/home/ann $N/bound)";

// openSUSE's: "/" is a snapshot itself, below a subvolume of snapshots that is mounted too.
constexpr const char* rootInSnapshots = R"(
  btrfs subvolume create $T/@ && btrfs subvolume create $T/@/.snapshots && btrfs subvolume create $T/@/home &&
  mkdir $T/@/.snapshots/1 $T/@/.snapshots/2 && btrfs subvolume create $T/first &&
  mkdir -p $T/first/boot $T/first/home $T/first/proc $T/first/tmp $T/first/.snapshots $T/@/home/ann &&
  head -c 4194304 /dev/urandom >$T/first/f && head -c 2097152 /dev/urandom >$T/@/home/ann/g &&
  head -c 1048576 /dev/urandom >$BOOT/k &&
  btrfs subvolume snapshot $T/first $T/@/.snapshots/1/snapshot &&
  btrfs subvolume snapshot -r $T/@/.snapshots/1/snapshot $T/@/.snapshots/2/snapshot &&
  D=$(findmnt -no SOURCE $T) && mount -o subvol=@/.snapshots/1/snapshot $D $N &&
  mount -o subvol=@/home $D $N/home && mount -o subvol=@/.snapshots $D $N/.snapshots &&
  mount --move $BOOT $N/boot && head -c 1048576 /dev/urandom >$N/home/h)";

// Runs a check with that layout as "/".
bool onDisk(const TemporaryFolder& folder, const std::string& layout, const std::function<bool()>& check) {
  return support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    const std::string top = support::mountDisk(folder, "btrfs", "", "top");
    const std::string boot = support::mountDisk(folder, "ext4", "", "boot");
    const std::string root = folder / "root";
    fs::create_directory(root);
    return support::shell(
               "T=" + top + " BOOT=" + boot + " N=" + root + " && " + layout +
               " && mount -t proc none $N/proc && mount -t tmpfs none $N/tmp && umount $T && sync") &&
           chroot(root.c_str()) == 0 && chdir("/") == 0 && check() && !testing::Test::HasFailure();
  });
}

Snapshot scanOfDisk(EventJournal& journal, std::optional<Snapshot> earlier) {
  const Date now = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
  ScanPlan plan = ScanPlan::make(journal, {.root = "/", .now = now, .earlier = std::move(earlier)});
  const auto crawl = !plan.isFull() ? nullptr : journal.beginCrawl("/");
  auto result = plan.scan({.root = "/", .listing = crawl.get()});
  if (crawl) {
    plan.eventID = crawl->eventID();
    crawl->finish();
  }
  EXPECT_TRUE(result);
  return FinishedScan{.result = std::move(*result), .plan = plan, .start = now, .end = now}.snapshot();
}

// A rescan has what a scan without earlier scans has.
void expectRightRescan(EventJournal& journal, Snapshot& last) {
  const bool reuses =
      ScanPlan::make(journal, {.root = "/", .now = last.date, .earlier = last}).whyFull.empty();
  EXPECT_TRUE(reuses);
  last = scanOfDisk(journal, last);
  const auto full = DiskScanner::scan({.root = "/"}).value();
  EXPECT_EQ(last.root, full.root);
  EXPECT_EQ(last.coverage.leftOut, full.coverage.leftOut);
  ASSERT_EQ(last.coverage.places.size(), full.coverage.places.size());
  Bytes sum = 0;
  for (std::size_t i = 0; i < full.coverage.places.size(); ++i) {
    const CoveredPlace& place = last.coverage.places[i];
    EXPECT_EQ(place.size, full.coverage.places[i].size) << place.place.mountPoint;
    sum += place.size;
  }
  EXPECT_EQ(sum, full.root.size);
}

TEST(WholeDisk, isScannedOnceWithAllItsSubvolumesAndVolumesAndRecorded) {
  const struct {
    const char* layout;
    std::vector<std::string> snapshots;
  } cases[]{{subvolumes, {"/home/before", "/srv/copy"}}, {rootInSnapshots, {"/.snapshots/2/snapshot"}}};
  if (!support::canMountDisks()) GTEST_SKIP() << "no loop devices to be had here";
  for (const auto& [layout, snapshots] : cases) {
    const TemporaryFolder folder;
    EXPECT_TRUE(onDisk(folder, layout, [&] {
      ProcessJournal journal{{.endpointFolder = "/tmp/run", .stateFolder = "/tmp/state"}};
      Snapshot last = scanOfDisk(journal, std::nullopt);
      EXPECT_EQ(last.fileCount, 4);
      EXPECT_EQ(last.root.size, 7 * MiB + (std::string{layout} == rootInSnapshots ? MiB : 0));
      std::vector<std::string> found;
      for (const LeftOut& item : last.coverage.leftOut) {
        found.push_back(item.path);
        EXPECT_TRUE(item.kind == LeftOut::Kind::snapshot && item.created) << item.path;
      }
      EXPECT_EQ(found, snapshots);

      writeBytes("/home/ann/new/f", MiB);
      fs::remove("/home/ann/g");
      expectRightRescan(journal, last);
      writeBytes("/boot/new/f", 2 * MiB);  // on another volume
      expectRightRescan(journal, last);
      EXPECT_EQ(umount("/boot"), 0);
      writeBytes("/boot/below", MiB);
      expectRightRescan(journal, last);
      return true;
    })) << layout;
  }
}

}  // namespace
}  // namespace spacemint
