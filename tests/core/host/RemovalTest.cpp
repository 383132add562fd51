// Removal on real files: everything of the item goes, and whatever is done to it meanwhile, nothing else.

#include "core/host/Removal.h"

#include "core/base/Translation.h"
#include "core/host/linux/FolderEraser.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::canMount;
using support::enterOwnMounts;
using support::openHandles;
using support::readText;
using support::TemporaryFolder;
using support::writeText;

constexpr int rounds = 10'000;

struct stat statusOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status;
}

// The errno of a result; 0 for a success.
int codeOf(const std::expected<void, RemovalFailure>& result) {
  return result ? 0 : result.error().error.code;
}

int remove(const RemovalTarget& target) {
  RemovalProgress progress;
  return codeOf(removeItem(target, progress));
}

int empty(const RemovalTarget& target, const EntryCheck& check = {}) {
  RemovalProgress progress;
  return codeOf(emptyFolder(target, check, progress));
}

// Why the removal of a path fails, in words.
std::string reason(const std::string& path) {
  RemovalProgress progress;
  const auto removed = removeItem({.path = path}, progress);
  return removed ? "" : fillIn(removed.error().error.message, {{"item", removed.error().path}});
}

// Makes `depth` folders of one name, each in the one before, and answers a handle of the deepest.
FileHandle makeChain(const std::string& start, const std::string& name, int depth) {
  FileHandle at{open(start.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  for (int i = 0; i < depth; ++i) {
    mkdirat(at.get(), name.c_str(), 0700);
    at = FileHandle{openat(at.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  }
  return at;
}

void fill(const FileHandle& folder, const std::string& prefix, int count) {
  for (int i = 0; i < count; ++i) {
    FileHandle{
        openat(folder.get(), (prefix + std::to_string(i)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)};
  }
}

// An item to remove, and beside it what must never be touched.
class RemovalTest : public testing::Test {
 protected:
  RemovalTest() {
    fs::create_directories(outside / "inner");
    writeText(outside / "treasure");
    writeText(outside / "inner/treasure");
    fs::create_directory(item);
  }

  bool outsideIsWhole() const {
    return readText(outside / "treasure") == "text" && readText(outside / "inner/treasure") == "text";
  }

  // Removes the item, and meddles as soon as the first of many files in one of its folders is gone.
  int removeWhile(const FileHandle& folder, const std::function<void()>& meddle) const {
    fill(folder, "file", 5'000);
    const int events = inotify_init1(IN_CLOEXEC);
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get());
    EXPECT_GE(inotify_add_watch(events, path.c_str(), IN_DELETE), 0);
    std::thread meddler([&] {
      char event[4'096];
      if (::read(events, event, sizeof event) > 0) meddle();
    });
    const int failure = remove({.path = item});
    meddler.join();
    close(events);
    return failure;
  }

  TemporaryFolder outside;
  TemporaryFolder home;
  const std::string item = home / "item";
};

TEST_F(RemovalTest, takesEverythingThatCanBeInAFolder) {
  fs::create_directories(item + "/folder/folder/empty");
  fs::create_directory(item + "/locked");
  fs::permissions(item + "/locked", fs::perms::none);
  writeText(item + "/folder/read only");
  fs::permissions(item + "/folder/read only", fs::perms::owner_read);
  writeText(item + "/line\nbreak \xff\xfe");
  fs::create_directory(item + "/\xff\n");
  ASSERT_EQ(mkfifo((item + "/pipe").c_str(), 0600), 0);
  fs::create_directory_symlink(outside.path(), item + "/link to a folder");
  fs::create_symlink(outside / "treasure", item + "/link to a file");
  fs::create_symlink("nowhere", item + "/link to nothing");
  EXPECT_EQ(remove({.path = item}), 0);
  EXPECT_TRUE(fs::is_empty(home.path()));
  EXPECT_TRUE(outsideIsWhole());
}

TEST_F(RemovalTest, takesASingleFileOfAnyKind) {
  writeText(home / "file");
  ASSERT_EQ(mkfifo((home / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(remove({.path = home / "file"}), 0);
  EXPECT_EQ(remove({.path = home / "pipe"}), 0);
  EXPECT_EQ(remove({.path = home / "file"}), ENOENT);
  EXPECT_EQ(remove({.path = item + "/"}), 0);
  EXPECT_TRUE(fs::is_empty(home.path()));
}

TEST_F(RemovalTest, leavesTheOtherNamesOfAFileAsTheyWere) {
  const struct stat before = statusOf(outside / "treasure");
  fs::permissions(outside / "inner/treasure", fs::perms::owner_read);
  fs::create_hard_link(outside / "treasure", item + "/same");
  fs::create_hard_link(outside / "inner/treasure", item + "/same, read only");
  EXPECT_EQ(remove({.path = item}), 0);
  const struct stat after = statusOf(outside / "treasure");
  EXPECT_TRUE(outsideIsWhole());
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_nlink, 1U);
  EXPECT_EQ(statusOf(outside / "inner/treasure").st_mode & 0777U, 0400U);
}

TEST_F(RemovalTest, goesTenThousandFoldersDownWithFewHandles) {
  const FileHandle deepest = makeChain(item, std::string(20, 'd'), 10'000);
  fill(deepest, "file", 3);
  EXPECT_TRUE(support::succeedsInChild([&] {
    const rlimit few{FolderEraser::handleLimit + 16, FolderEraser::handleLimit + 16};
    return setrlimit(RLIMIT_NOFILE, &few) == 0 && remove({.path = item}) == 0;
  }));
  EXPECT_FALSE(fs::exists(item));
}

TEST_F(RemovalTest, needsNoMoreMemoryForALargerFolder) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  constexpr long kilobytes = 200'000;  // with what the sanitizers note of every byte and freed block
#else
  constexpr long kilobytes = 4'000;  // the names alone are 11,000
#endif
  const std::string prefix(200, 'n');
  fill(FileHandle{open(item.c_str(), O_RDONLY | O_DIRECTORY)}, prefix, 50'000);
  for (int i = 0; i < 5'000; ++i)
    fs::create_directory(item + "/" + std::string(200, 'f') + std::to_string(i));
  const std::string other = home / "other";
  fs::create_directories(other + "/folder");
  EXPECT_TRUE(support::succeedsInChild([&] {
    rusage before{};
    rusage after{};
    if (remove({.path = other}) != 0) return false;  // what any removal needs is there then
    getrusage(RUSAGE_SELF, &before);
    const bool removed = remove({.path = item}) == 0;
    getrusage(RUSAGE_SELF, &after);
    return removed && after.ru_maxrss - before.ru_maxrss < kilobytes;
  }));
}

TEST_F(RemovalTest, comesBackToWhatIsLeftOfFoldersItHadToClose) {
  std::string path = item;
  for (std::size_t depth = 0; depth < FolderEraser::handleLimit * 3; ++depth) {
    for (const char* sibling : {"/a", "/m", "/z"}) fs::create_directories(path + sibling + "/below");
    writeText(path + "/file");
    path += "/m";
  }
  EXPECT_EQ(remove({.path = item}), 0);
  EXPECT_FALSE(fs::exists(item));
}

TEST_F(RemovalTest, refusesPathsThatAreNotPlain) {
  for (const std::string& path : {std::string{}, std::string{"item"}, std::string{"/"}, std::string{"//."},
                                  home / "..", home / "other/../item", std::string("/tmp\0/x", 7)}) {
    EXPECT_EQ(remove({.path = path}), EINVAL) << path;
  }
  EXPECT_EQ(remove({.path = "/" + std::string(100'000, 'x')}), ENAMETOOLONG);
  EXPECT_TRUE(fs::exists(item));
}

TEST_F(RemovalTest, findsItsWayAlongPathsLongerThanTheSystemTakes) {
  const std::string name(200, 'n');
  const FileHandle deepest = makeChain(item, name, 500);
  fill(deepest, "file", 1);
  std::string path = item;
  for (int i = 0; i < 500; ++i) path += "/" + name;
  ASSERT_GT(path.size(), 100'000U);
  EXPECT_EQ(remove({.path = path + "/./file0"}), 0);
  EXPECT_NE(faccessat(deepest.get(), "file0", F_OK, 0), 0);
  EXPECT_EQ(remove({.path = path}), 0);
  EXPECT_EQ(statusOf(item).st_nlink, 3U);
}

TEST_F(RemovalTest, followsLinksAsFarAsItIsToldAndNoFurther) {
  fs::create_directory_symlink(home.path(), outside / "home");
  fs::create_directory_symlink("item", home / "way");
  fs::create_directories(item + "/inner");
  const std::string linkedHome = outside / "home";
  EXPECT_EQ(remove({.path = linkedHome + "/item/inner"}), ELOOP);
  EXPECT_EQ(remove({.path = linkedHome + "/way/inner", .linksAllowedUpTo = linkedHome}), ELOOP);
  EXPECT_EQ(remove({.path = linkedHome + "/way", .linksAllowedUpTo = linkedHome}), ELOOP);
  EXPECT_EQ(remove({.path = linkedHome, .linksAllowedUpTo = linkedHome}), ELOOP);
  EXPECT_EQ(empty({.path = home / "way"}), ELOOP);
  EXPECT_TRUE(fs::exists(item + "/inner"));
  for (const std::string& start : {linkedHome, linkedHome + "/"}) {
    fs::create_directories(item + "/inner");
    EXPECT_EQ(remove({.path = linkedHome + "/item/inner", .linksAllowedUpTo = start}), 0);
  }
  EXPECT_FALSE(fs::exists(item + "/inner"));
}

TEST_F(RemovalTest, leavesAnotherItemThanTheConfirmedOneAlone) {
  const auto confirmed = fileIdentity(item);
  ASSERT_TRUE(confirmed);
  fs::rename(item, home / "moved away");
  EXPECT_EQ(remove({.path = item, .identity = *confirmed}), ENOENT);
  const std::vector<std::function<void()>> replacements{
      [&] { writeText(item); }, [&] { fs::create_directory_symlink(outside.path(), item); },
      [&] { fs::create_directories(item + "/x"); }};
  for (const auto& replace : replacements) {
    fs::remove_all(item);
    replace();
    EXPECT_EQ(remove({.path = item, .identity = *confirmed}), ESTALE);
    EXPECT_EQ(empty({.path = item, .identity = *confirmed}), ESTALE);
    EXPECT_TRUE(fs::exists(fs::symlink_status(item)));
  }
  EXPECT_TRUE(fs::exists(item + "/x"));
  EXPECT_EQ(remove({.path = home / "moved away", .identity = *confirmed}), 0);
}

// Each folder of the item has a link parked beside the item, which somebody puts in its place and back. There
// are enough of them for some to be swapped between being listed and being entered.
TEST_F(RemovalTest, neverFollowsAFolderThatTurnsIntoALink) {
  constexpr int folders = 30;
  const auto victim = [&](int i) { return item + "/" + std::to_string(i); };
  const auto parked = [&](int i) { return home / ("parked " + std::to_string(i)); };
  std::atomic<int> swaps = 0;
  std::thread attacker([&] {
    for (int i = 0; swaps < rounds; i = (i + 1) % folders) {
      if (renameat2(AT_FDCWD, victim(i).c_str(), AT_FDCWD, parked(i).c_str(), RENAME_EXCHANGE) == 0) ++swaps;
    }
  });
  while (swaps < rounds) {
    mkdir(item.c_str(), 0700);
    for (int i = 0; i < folders; ++i) {
      mkdir(victim(i).c_str(), 0700);
      while (symlink(outside.path().c_str(), parked(i).c_str()) != 0) {
        if (unlink(parked(i).c_str()) != 0) remove({.path = parked(i)});
      }
    }
    remove({.path = item});
  }
  attacker.join();
  EXPECT_TRUE(outsideIsWhole());
}

TEST_F(RemovalTest, neverFollowsALinkThatAppearsOnTheWay) {
  fs::create_directories(home / "way");
  fs::create_directory_symlink(outside.path(), home / "trap");
  const std::string way = home / "way";
  const std::string trap = home / "trap";
  std::atomic<bool> over = false;
  std::thread attacker([&] {
    for (int round = 0; round < rounds; ++round) {
      renameat2(AT_FDCWD, way.c_str(), AT_FDCWD, trap.c_str(), RENAME_EXCHANGE);
    }
    over = true;
  });
  // An item of the same name lies behind the trap.
  while (!over) remove({.path = way + "/inner", .linksAllowedUpTo = home.path()});
  attacker.join();
  EXPECT_TRUE(outsideIsWhole());
}

TEST_F(RemovalTest, doesNotGoUpIntoAnotherFolderThanItCameFrom) {
  int failure = 0;
  for (int attempt = 0; attempt < 20 && failure == 0; ++attempt) {
    fs::create_directories(item + "/a/b");
    // Deep enough for the handles above to be closed.
    const FileHandle deepest = makeChain(item + "/a/b", "c", static_cast<int>(FolderEraser::handleLimit) + 8);
    failure = removeWhile(deepest, [&] { rename((item + "/a/b/c").c_str(), (outside / "c").c_str()); });
    EXPECT_TRUE(outsideIsWhole());
    fs::remove_all(outside / "c");
  }
  EXPECT_EQ(failure, ESTALE);
}

TEST_F(RemovalTest, leavesAFolderAloneThatTookTheItemsPlaceMeanwhile) {
  int failure = 0;
  for (int attempt = 0; attempt < 20 && failure == 0; ++attempt) {
    fs::create_directory(item);
    failure = removeWhile(FileHandle{open(item.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}, [&] {
      if (rename(item.c_str(), (outside / "moved").c_str()) == 0) fs::create_directory(item);
    });
    fs::remove_all(outside / "moved");
  }
  EXPECT_EQ(failure, ESTALE);
  EXPECT_TRUE(fs::exists(item));
}

TEST_F(RemovalTest, takesWhatVanishesMeanwhileAsRemoved) {
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 200; ++i) {
      const std::string folder = item + "/folder/" + std::to_string(i);
      fs::create_directories(folder + "/below");
      writeText(folder + "/file");
    }
    // Two at once, each with the other's removals under its feet.
    std::thread other([&] { EXPECT_EQ(empty({.path = item}), 0); });
    EXPECT_EQ(empty({.path = item}), 0);
    other.join();
    EXPECT_TRUE(fs::is_empty(item));
  }
}

TEST_F(RemovalTest, emptiesTheOpenedFolderWhereverItsPathLeads) {
  fs::create_directories(item + "/folder/below");
  for (const char* name : {"/inner", "/treasure", "/vanishing"}) writeText(item + name);
  // At the first entry the folder is moved away, and a link takes its place.
  const auto meddle = [&, isFirst = true](const std::string&) mutable -> std::optional<std::string> {
    if (!std::exchange(isFirst, false)) return std::nullopt;
    fs::rename(item, home / "elsewhere");
    fs::create_directory_symlink(outside.path(), item);
    fs::remove(home / "elsewhere/vanishing");
    return std::nullopt;
  };
  EXPECT_EQ(empty({.path = item}, meddle), 0);
  EXPECT_TRUE(fs::is_empty(home / "elsewhere"));
  EXPECT_TRUE(outsideIsWhole());
}

TEST_F(RemovalTest, asksAboutEveryEntryOnceAndStopsAtTheFirstThatIsKept) {
  fill(FileHandle{open(item.c_str(), O_RDONLY | O_DIRECTORY)}, std::string(230, 'n'),
       3'000);  // three batches
  std::size_t count = 0;
  const auto keepLast = [&](const std::string&) {
    return ++count < 3'000 ? std::nullopt : std::optional<std::string>{"is kept"};
  };
  RemovalProgress progress;
  const auto emptied = emptyFolder({.path = item}, keepLast, progress);
  ASSERT_FALSE(emptied);
  EXPECT_EQ(emptied.error().error.domain, keptByCheck);
  EXPECT_EQ(progress.removed().items, 2'999);
  EXPECT_EQ(support::namesIn(item).size(), 1U);
}

TEST_F(RemovalTest, changesNoModeToGetThrough) {
  fs::permissions(home.path(), fs::perms::owner_all | fs::perms::others_all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    const std::string mine = home / "mine";
    if (!support::becomeNobody()) return false;
    fs::create_directories(mine + "/full");
    writeText(mine + "/full/file");
    for (const auto mode : {fs::perms::owner_read | fs::perms::owner_exec, fs::perms::none}) {
      fs::permissions(mine + "/full", mode);
      if (remove({.path = mine}) != EACCES || fs::status(mine + "/full").permissions() != mode) return false;
      if (remove({.path = mine + "/full"}) != EACCES) return false;
      const std::string closed =
          mode == fs::perms::none
              ? "/full has insufficient permissions (mode 000)"
              : "/full/file lies in a folder that has insufficient permissions (mode 500)";
      if (reason(mine) != mine + closed) return false;
    }
    fs::permissions(mine + "/full", fs::perms::owner_all);
    // Nothing has to be listed to remove an empty folder.
    for (const char* closed : {"/closed", "/full/closed"}) {
      fs::create_directory(mine + closed);
      fs::permissions(mine + closed, fs::perms::none);
    }
    return fs::exists(mine + "/full/file") && remove({.path = mine + "/closed"}) == 0 &&
           remove({.path = mine}) == 0;
  }));
}

TEST_F(RemovalTest, stopsAtAnImmutableFile) {
  writeText(item + "/fixed");
  const FileHandle fixed{open((item + "/fixed").c_str(), O_RDONLY | O_CLOEXEC)};
  int flags = FS_IMMUTABLE_FL;
  if (ioctl(fixed.get(), FS_IOC_SETFLAGS, &flags) != 0) GTEST_SKIP() << "no immutable files to be had here";
  EXPECT_EQ(remove({.path = item}), EPERM);
  EXPECT_EQ(reason(item), item + "/fixed is marked as immutable");
  flags = 0;
  ioctl(fixed.get(), FS_IOC_SETFLAGS, &flags);
  EXPECT_EQ(readText(item + "/fixed"), "text");
}

// What `mountIn` mounts below the item must stop a removal before it begins, and the eraser when it gets
// there.
bool stopsAtMount(const std::string& item, const std::function<bool()>& mountIn, int onTheWay) {
  return support::succeedsInChild([&] {
    if (!enterOwnMounts() || !mountIn()) return false;
    if (remove({.path = item}) != EXDEV || empty({.path = item}) != EXDEV) return false;
    if (!fs::exists(item + "/folder/first")) return false;
    FileHandle folder{open((item + "/folder").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    const auto facts = factsOf(folder);
    RemovalProgress progress;
    FolderEraser eraser{item, progress};
    return codeOf(eraser.empty(std::move(folder), *facts)) == onTheWay;
  });
}

TEST_F(RemovalTest, neverEntersWhatIsMountedInTheItem) {
  if (!canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  const std::string place = item + "/folder/first";
  fs::create_directories(place);
  const auto bind = [&](const std::string& from, const std::string& to) {
    return mount(from.c_str(), to.c_str(), nullptr, MS_BIND, nullptr) == 0;
  };
  // Another folder of the same device, and a file system of its own.
  EXPECT_TRUE(stopsAtMount(
      item, [&] { return bind(outside.path(), place); }, EXDEV));
  EXPECT_TRUE(outsideIsWhole());
  const auto mountVolume = [&] { return mount("none", place.c_str(), "tmpfs", 0, "size=1m") == 0; };
  EXPECT_TRUE(stopsAtMount(item, mountVolume, EXDEV));
  fs::remove(place);
  writeText(place);
  EXPECT_TRUE(stopsAtMount(
      item, [&] { return bind(outside / "treasure", place); }, EBUSY));
  EXPECT_TRUE(outsideIsWhole());
  EXPECT_TRUE(support::succeedsInChild([&] {
    return enterOwnMounts() && bind(outside.path(), item) && remove({.path = item}) == EXDEV &&
           empty({.path = item}) == EXDEV && outsideIsWhole();
  }));
}

// Entries come without their kind there, and there are more folders than a removal tries again.
TEST_F(RemovalTest, removesFoldersWhereListingsDoNotTellThem) {
  if (!canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  const std::string disk = home / "disk";
  const std::string make = "truncate -s 16M " + disk + " && /sbin/mkfs.ext4 -q -O ^filetype " + disk;
  const std::string mountDisk = "mount -o loop " + disk + " " + item + " 2>/dev/null";
  if (std::system(make.c_str()) != 0) GTEST_SKIP() << "no file system of this kind to be had here";
  const int status = support::statusOf(support::startChild([&] {
    if (!enterOwnMounts() || std::system(mountDisk.c_str()) != 0) _exit(2);
    for (int i = 0; i < FolderEraser::retryLimit * 2; ++i) {
      fs::create_directories(item + "/top/" + std::to_string(i) + "/below");
    }
    return remove({.path = item + "/top"}) == 0 && !fs::exists(item + "/top");
  }));
  if (WEXITSTATUS(status) == 2) GTEST_SKIP() << "no loop device to be had here";
  EXPECT_EQ(status, 0);
}

TEST_F(RemovalTest, leavesNoHandleOpen) {
  const auto before = openHandles();
  makeChain(item, "d", 100);
  EXPECT_EQ(remove({.path = item}), 0);
  EXPECT_EQ(remove({.path = item}), ENOENT);
  EXPECT_EQ(openHandles(), before);
}

}  // namespace
}  // namespace spacemint
