// The account of a volume on real file systems, each on a loop device in a mount namespace of its own.

#include "core/volume/Account.h"

#include "core/host/FileBlocks.h"
#include "core/scan/ScanPlan.h"
#include "core/volume/SharedFiles.h"
#include "core/wording/AccountText.h"
#include "support/Disks.h"
#include "support/Files.h"
#include "support/HoldingProcess.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <limits>
#include <random>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::shell;
using support::TemporaryFolder;

constexpr Bytes MB = 1'000'000;

TEST(Account, addsUpWhateverTheFigures) {
  std::mt19937_64 random{7};
  const auto figure = [&] {
    return static_cast<Bytes>(random() >> (5 + random() % 59)) - (random() % 9 == 0 ? 1'000 : 0);
  };
  for (int round = 0; round < 2'000; ++round) {
    DeletedFiles deleted;
    Bytes held = 0;
    for (std::uint64_t i = 0; i < random() % 6; ++i) {
      const bool isHere = random() % 2 == 0;
      const std::optional<Bytes> size =
          random() % 4 == 0 ? std::nullopt : std::optional{std::abs(figure() / 8)};
      deleted.files.push_back({.size = size,
                               .pool = isHere ? 1ULL : 2ULL,
                               .programs = {{1, "a"}, {static_cast<int>(random() % 3), "b"}}});
      if (isHere) held += size.value_or(0);
    }
    const Space space{.total = figure(), .used = figure(), .free = figure()};
    const Bytes own = figure();
    const Bytes saved = figure() / 2;
    const Account account = accountOf({.volume = {.pool = 1},
                                       .space = space,
                                       .ownBytes = random() % 5 == 0 ? std::nullopt : std::optional{own},
                                       .deleted = std::move(deleted),
                                       .saved = saved},
                                      {.files = figure(), .folders = figure(), .isWhole = true});
    EXPECT_EQ(account.deleted, held);
    Bytes shown = 0;
    for (const AccountLine& line : AccountText::lines(account, "/home/ann", "en_US", Date{})) {
      const bool isUsed = line.part != AccountPart::heldBack && line.part != AccountPart::free;
      if (isUsed) shown += line.size.value_or(0);
    }
    EXPECT_EQ(shown, space.used) << round;
    EXPECT_EQ(account.scanned.files + account.notInFiles(), space.total - space.free) << round;
  }
}

TEST(Account, survivesFiguresThatNoDiskHas) {
  constexpr Bytes most = std::numeric_limits<Bytes>::max();
  for (const Bytes figure : {most, std::numeric_limits<Bytes>::min()}) {
    const Account account =
        accountOf({.volume = {.pool = 1, .places = {{}}},
                   .space = {.total = figure, .used = figure, .free = figure / 2},
                   .ownBytes = figure,
                   .deleted = {.files = {{.size = figure, .pool = 1}, {.size = figure, .pool = 1}}},
                   .saved = figure},
                  {.files = figure, .folders = figure, .isWhole = true});
    EXPECT_FALSE(AccountText::lines(account, "", "en_US", Date{}).empty());
    EXPECT_FALSE(AccountText::sum(account, "en_US").empty());
    account.causes();
  }
}

// What is used, but in no file of the scan, because a layout hides it on purpose.
struct Layout {
  const char* name;
  /// Mounts the volume and returns the folder to scan.
  std::function<std::string(const TemporaryFolder&)> mount;
  /// Bytes that no account can name, such as those in snapshots only.
  Bytes hidden = 0;
};

std::string mountBtrfs(const TemporaryFolder& folder, const std::string& subvolumes,
                       const std::string& mounts) {
  const std::string top = support::mountDisk(folder, "btrfs", "", "top");
  if (top.empty() || !shell("cd " + top + " && " + subvolumes)) return "";
  const std::string root = folder / "root";
  fs::create_directory(root);
  const bool isMounted = shell("dev=$(findmnt -no SOURCE " + top + ") && dev=${dev%%[*} && cd " + root +
                               " && " + mounts + " && umount " + top);
  return isMounted ? root : "";
}

void fillFile(const std::string& path, Bytes size) {
  support::writeText(path, std::string(static_cast<std::size_t>(size), 'x'));
}

const Layout layouts[] = {
    {"ext4 with a reserve", [](const auto& folder) { return support::mountDisk(folder, "ext4", "-m 20"); }},
    {"ext4 without", [](const auto& folder) { return support::mountDisk(folder, "ext4", "-m 0"); }},
    {"xfs", [](const auto& folder) { return support::mountDisk(folder, "xfs", ""); }},
    {"btrfs", [](const auto& folder) { return support::mountDisk(folder, "btrfs", ""); }},
    {"two subvolumes, as Fedora has them",
     [](const auto& folder) {
       return mountBtrfs(folder, "btrfs subvolume create root && btrfs subvolume create home",
                         "mount -o subvol=root $dev . && mkdir home && mount -o subvol=home $dev home");
     }},
    {"a root in a snapshot and nested ones, as openSUSE has them",
     [](const auto& folder) {
       return mountBtrfs(
           folder,
           "btrfs subvolume create @ && btrfs subvolume create @/.snapshots && mkdir @/.snapshots/1 && "
           "btrfs subvolume create old && btrfs subvolume snapshot old @/.snapshots/1/snapshot && "
           "btrfs subvolume create @/var && head -c 30000000 /dev/urandom > @/.snapshots/gone && "
           "mkdir @/.snapshots/2 && btrfs subvolume snapshot -r @/.snapshots @/.snapshots/2/snapshot && "
           "rm @/.snapshots/gone",
           "mount -o subvol=@/.snapshots/1/snapshot $dev . && mkdir .snapshots var && "
           "mount -o subvol=@/.snapshots $dev .snapshots && mount -o subvol=@/var $dev var");
     },
     30 * MB},
};

// Files of every kind, and a deleted one of 21 MB that two processes hold.
void fill(const std::string& root) {
  fillFile(root + "/plain", 31 * MB);
  fs::create_hard_link(root + "/plain", root + "/again");
  fillFile(root + "/sparse", 1'000'000);
  fs::resize_file(root + "/sparse", 9'000 * MB);
  support::allocateFile(root + "/allocated", 12 * MB);
  for (int i = 0; i < 300; ++i)
    fillFile(root + "/many/" + std::to_string(i % 30) + "/" + std::to_string(i), 9'000);
  for (int i = 0; i < 3'000; ++i)
    support::writeText(root + "/names/a quite long name of a short file " + std::to_string(i), "short");
  fs::create_symlink(std::string(900, 'x'), root + "/link");
  fillFile(root + "/secret/inside", 24 * MB);
  chmod((root + "/secret").c_str(), 0700);
  fillFile(root + "/log", 21 * MB);
}

std::optional<Account> accountIn(const std::string& root) {
  auto facts = readVolumeFacts(root);
  const ScanPlan plan{};
  auto result = DiskScanner::scan({.root = root, .minNodeSize = 20 * MB});
  if (!facts || !result) return std::nullopt;
  const Snapshot scan = FinishedScan{.result = std::move(*result), .plan = plan}.snapshot();
  facts->saved = savedBytes(scan, facts->volume);
  auto scanned = scannedVolume(scan, facts->volume);
  if (!scanned) return std::nullopt;
  return accountOf(std::move(*facts), std::move(*scanned));
}

std::ostream& operator<<(std::ostream& out, const Account& account) {
  for (const AccountLine& line : AccountText::lines(account, "", "en_US", Date{})) {
    out << "  " << line.title << ": " << line.size.value_or(-1) << " " << line.note << '\n';
  }
  return out;
}

bool isNear(Bytes rest, Bytes expected, Bytes used) {
  return std::abs(rest - expected) <= std::max(4 * MB, used / 100);
}

// As root everything is found; for an ordinary user the rest is what is locked away, and says so.
bool addsUp(const Layout& layout, const std::string& root) {
  fill(root);
  const auto hold = [&] { [[maybe_unused]] const int log = open((root + "/log").c_str(), O_RDONLY); };
  const support::HoldingProcess first{hold};
  const support::HoldingProcess second{hold};
  fs::remove(root + "/log");
  sync();
  const auto account = accountIn(root);
  const bool asRoot = account && account->scanned.isWhole && account->held.size() == 1 &&
                      account->held.front().pids.size() == 2 && account->deleted >= 21 * MB &&
                      account->deleted < 23 * MB && isNear(account->rest, layout.hidden, account->space.used);
  if (!asRoot && account) std::cerr << layout.name << " as root:\n" << *account;
  return asRoot && support::succeedsInChild([&] {
           if (!support::becomeNobody()) return false;
           const auto own = accountIn(root);
           const Bytes locked = layout.hidden + 24 * MB + account->deleted;
           const bool isRight = own && isNear(own->rest, locked, own->space.used) &&
                                own->scanned.unread > 0 && !own->causes().empty() &&
                                own->causes().front() == RestCause::unreadItems &&
                                std::ranges::count(own->scanned.unreadPaths, root + "/secret") == 1;
           if (!isRight && own) std::cerr << layout.name << " as a user:\n" << *own;
           return isRight;
         });
}

TEST(Account, leavesLittleUnexplainedOnEveryLayout) {
  if (!support::canMountDisks()) GTEST_SKIP() << "no loop devices or no programs that make file systems";
  for (const Layout& layout : layouts) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_TRUE(support::succeedsInChild([&] {
      const std::string root = support::enterOwnMounts() ? layout.mount(folder) : "";
      if (root.empty()) std::cerr << layout.name << ": not mounted\n";
      return !root.empty() && addsUp(layout, root);
    })) << layout.name;
  }
}

TEST(SharedFiles, freeOnlyWhatIsTheirOwn) {
  if (!support::canMountDisks()) GTEST_SKIP() << "no loop devices or no programs that make file systems";
  const TemporaryFolder folder;
  for (const char* type : {"btrfs", "xfs", "ext4"}) {
    EXPECT_TRUE(support::succeedsInChild([&] {
      const std::string root = support::enterOwnMounts() ? support::mountDisk(folder, type, "") : "";
      const bool canShare = std::string{type} != "ext4";
      const std::string copy = canShare ? "cp --reflink=always" : "cp";
      if (root.empty() ||
          !shell("cd " + root + " && head -c 40000000 /dev/urandom > one && " + copy +
                 " one two && ln one linked && head -c 25000000 /dev/urandom > alone && sync")) {
        return false;
      }
      // A new part of the copy is its own.
      if (!shell("dd if=/dev/urandom of=" + root + "/two bs=1M count=10 conv=notrunc && sync")) return false;
      const auto own = SharedFiles::freesAtMost(root + "/two");
      const auto account = accountIn(root);
      const Bytes saved = canShare ? 40 * MB - 10 * 1'048'576 : 0;
      const bool isRight = account && !SharedFiles::freesAtMost(root + "/alone") &&
                           own.has_value() == canShare && std::abs(account->saved - saved) < MB &&
                           std::abs(own.value_or(0) - (canShare ? 10 * 1'048'576 : 0)) < MB &&
                           !SharedFiles::freesAtMost(root) && !SharedFiles::freesAtMost(root + "/none");
      if (!isRight && account) std::cerr << type << " " << own.value_or(-1) << "\n" << *account;
      return isRight;
    })) << type;
  }
}

TEST(SharedFiles, coverEachByteOnce) {
  EXPECT_EQ(coveredBytes({}), 0);
  std::mt19937 random{3};
  for (int round = 0; round < 200; ++round) {
    std::vector<BlockRange> ranges;
    std::vector<bool> used(300);
    for (unsigned i = 0; i < random() % 20; ++i) {
      const std::uint64_t begin = random() % 250;
      ranges.push_back({begin, begin + random() % 50, false});
      std::fill(used.begin() + static_cast<int>(begin), used.begin() + static_cast<int>(ranges.back().end),
                true);
    }
    EXPECT_EQ(coveredBytes(ranges), std::ranges::count(used, true)) << round;
  }
}

}  // namespace
}  // namespace spacemint
