// The scanner on the host's own listing, compared with an independent walk by lstat.

#include "core/cleanup/Remeasure.h"
#include "core/host/linux/LinuxFolderListing.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ReadAheadListing.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/SlowFiles.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <map>
#include <random>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::canMount;
using support::enterOwnMounts;
using support::openHandles;
using support::TemporaryFolder;

// Every path of a tree with its size and, for folders, the files below it.
struct Facts {
  Bytes size = 0;
  std::int64_t files = 0;

  bool operator==(const Facts&) const = default;
};
using Tree = std::map<std::string, Facts>;

Facts walkByLstat(const std::string& folder, Tree& tree) {
  Facts total;
  struct stat own {};
  lstat((folder + "/.").c_str(), &own);
  DIR* open = opendir(folder.c_str());
  while (const dirent* entry = open != nullptr ? readdir(open) : nullptr) {
    const std::string name = entry->d_name;
    const std::string path = folder + "/" + name;
    struct stat status {};
    if (name == "." || name == ".." || lstat(path.c_str(), &status) != 0) continue;
    Facts facts{.size = status.st_blocks * 512, .files = 1};
    if (S_ISREG(status.st_mode)) facts.size /= static_cast<Bytes>(status.st_nlink);
    if (S_ISDIR(status.st_mode)) {
      if (status.st_dev != own.st_dev) continue;
      facts = walkByLstat(path, tree);
    }
    tree[path] = facts;
    total.size += facts.size;
    total.files += facts.files;
  }
  if (open != nullptr) closedir(open);
  return total;
}

Tree expectedTree(const std::string& root) {
  Tree tree;
  tree[root] = walkByLstat(root, tree);
  return tree;
}

void collect(const Node& node, const std::string& path, Tree& tree) {
  tree[path] = {node.size, node.isDirectory ? node.fileCount : 1};
  for (const Node& child : node.children) collect(child, path + "/" + child.name, tree);
}

Tree treeOf(const Node& root) {
  Tree tree;
  collect(root, root.name, tree);
  return tree;
}

// A listing with so many helpers, for a scan that has none itself.
ReadAheadListing readAhead(FolderListing& inner, unsigned helpers) {
  return ReadAheadListing{inner, {.depth = {.processors = helpers, .most = helpers}}, {}};
}

// The scan of a folder with every node kept, by one thread; in every manner, with more helpers and fewer, and
// while the manner changes, it must be the very same.
DiskScanner::Result scan(const std::string& root) {
  const auto result = DiskScanner::scan({.root = root, .manner = always(ScanManner::quiet)});
  for (const ScanManner manner : {ScanManner::waiting, ScanManner::foreground})
    EXPECT_EQ(DiskScanner::scan({.root = root, .manner = always(manner)}), result) << int(manner);
  const auto host = hostFolderListing();
  for (const unsigned helpers : {1U, 8U}) {
    ReadAheadListing ahead = readAhead(*host, helpers);
    EXPECT_EQ(DiskScanner::scan({.root = root, .manner = always(ScanManner::quiet), .listing = &ahead}),
              result)
        << helpers << " helpers";
  }
  for (const int turn : {2, 7, 100}) {
    const auto changing = [turn, asked = 0]() mutable {
      return asked++ / turn % 2 == 0 ? ScanManner::waiting : ScanManner::quiet;
    };
    EXPECT_EQ(DiskScanner::scan({.root = root, .manner = changing}), result) << "a turn of " << turn;
  }
  return result.value();
}

void write(const std::string& path, std::size_t bytes) {
  support::writeText(path, std::string(bytes, 'x'));
}

TEST(RealFolders, areMeasuredAsAnIndependentWalkMeasuresThem) {
  const TemporaryFolder outside;
  const TemporaryFolder folder;
  write(folder / "plain", 100'000);
  write(folder / "twice", 40'960);
  fs::create_hard_link(folder / "twice", folder / "twice too");
  write(outside / "elsewhere", 81'920);
  fs::create_hard_link(outside / "elsewhere", folder / "across");
  write(folder / "sparse", 1);
  fs::resize_file(folder / "sparse", 1'000'000'000);
  fs::create_directory_symlink("/usr", folder / "link to a folder");
  fs::create_symlink("/nowhere", folder / "dangling");
  fs::create_symlink(std::string(500, 'x'), folder / "link with blocks of its own");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  ASSERT_EQ(mknod((folder / "socket").c_str(), S_IFSOCK | 0600, 0), 0);
  for (const char* name :
       {"new\nline", "quo\"te'", "invalid\xff\xfe", "caf\u00e9", "cafe\u0301", " ", "...", ".hidden"}) {
    write((folder / name) + "/" + name, 10'000);
  }
  fs::create_directories(folder / "empty/er");
  const auto result = scan(folder.path());
  EXPECT_EQ(treeOf(result.root), expectedTree(folder.path()));
  EXPECT_EQ(result.coverage.unread, Unread{});
  EXPECT_LT(result.root.size, 2'000'000);  // neither the hole nor /usr
}

TEST(RealFolders, withGitFilesAreWorktrees) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "repository/.git");
  write(folder / "worktree/.git", 10);
  fs::create_directory(folder / "linked");
  fs::create_symlink("../repository/.git", folder / "linked/.git");
  const auto result = scan(folder.path());
  for (const Node& node : result.root.children)
    EXPECT_EQ(node.isWorktree, node.name == "worktree") << node.name;
}

TEST(RealFolders, keepTheModificationTimeInWholeSeconds) {
  const TemporaryFolder folder;
  write(folder / "f", 1);
  const timespec times[2]{{0, 0}, {1'600'000'000, 999'999'999}};
  ASSERT_EQ(utimensat(AT_FDCWD, (folder / "f").c_str(), times, 0), 0);
  EXPECT_EQ(scan(folder.path()).root.children.at(0).modified, Date{std::chrono::seconds{1'600'000'000}});
}

TEST(RealFolders, mayBeDeeperThanAPathCanBeLong) {
  const TemporaryFolder folder;
  const std::string name(20, 'd');
  int at = open(folder.path().c_str(), O_RDONLY | O_DIRECTORY);
  for (int depth = 0; depth < 3'000; ++depth) {  // paths of 63,000 bytes
    ASSERT_EQ(mkdirat(at, name.c_str(), 0700), 0);
    const int next = openat(at, name.c_str(), O_RDONLY | O_DIRECTORY);
    close(at);
    at = next;
    ASSERT_GE(at, 0);
  }
  close(openat(at, "file", O_CREAT | O_WRONLY, 0600));
  close(at);
  const auto result = scan(folder.path());
  EXPECT_EQ(result.fileCount, 1);
  int depth = 0;
  const Node* node = &result.root;
  for (; !node->children.empty(); node = &node->children[0]) ++depth;
  EXPECT_EQ(depth, 3'001);
  EXPECT_EQ(node->name, "file");
}

TEST(RealFolders, areTheSameReadAheadWhateverTheirShape) {
  const TemporaryFolder folder;
  std::mt19937 random{1};
  std::vector<std::string> folders{folder.path()};
  for (int i = 0; i < 400; ++i) {
    folders.push_back(folders[random() % folders.size()] + "/" + std::to_string(i));
    fs::create_directory(folders.back());
  }
  for (int i = 0; i < 2'000; ++i)
    write(folders[random() % folders.size()] + "/f" + std::to_string(i), random() % 9'000);
  // A folder of several batches, with subfolders in each.
  fs::create_directory(folder / "huge");
  for (int i = 0; i < 3'000; ++i) {
    const std::string path = (folder / "huge/") + std::string(230, 'n') + std::to_string(i);
    if (i % 4 == 0) fs::create_directories(path + "/below");
    if (i % 4 != 0) write(path, 1);
  }
  EXPECT_EQ(treeOf(scan(folder.path()).root), expectedTree(folder.path()));
}

TEST(RealFolders, mayBeNamedByALinkOrWithASlashBehind) {
  const TemporaryFolder folder;
  write(folder / "real/f", 5'000);
  fs::create_directory_symlink("real", folder / "link");
  for (const std::string& root : {folder / "link", folder / "real/", folder / "link/"}) {
    const auto result = scan(root);
    EXPECT_EQ(result.root.name, root);
    EXPECT_EQ(result.fileCount, 1);
  }
  DiskScanner::scan({.root = folder.path() + "/", .reuse = [&](const std::string& path) -> const Node* {
                       EXPECT_EQ(path, folder / "real");
                       return nullptr;
                     }});
  EXPECT_FALSE(DiskScanner::scan({.root = folder / "none"}));
  EXPECT_FALSE(DiskScanner::scan({.root = folder / "real/f"}));
}

TEST(RealFolders, countAsUnreadWhereAnOrdinaryUserMayNotLook) {
  const TemporaryFolder folder;
  fs::permissions(folder.path(), fs::perms::owner_all | fs::perms::others_all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    fs::create_directories(folder / "locked/inside");
    write(folder / "locked/f", 50'000);
    write(folder / "listed/f", 50'000);
    fs::permissions(folder / "locked", fs::perms::none);
    fs::permissions(folder / "listed", fs::perms::owner_read);  // names, but no facts
    const auto result = scan(folder.path());
    const Unread unread{.folders = 2, .paths = {folder / "listed", folder / "locked"}};
    Unread found = result.coverage.unread;
    std::ranges::sort(found.paths);
    const bool right = result.root.size == 0 && result.fileCount == 0 && found == unread;
    fs::permissions(folder / "locked", fs::perms::owner_all);
    fs::permissions(folder / "listed", fs::perms::owner_all);
    return right;
  }));
}

TEST(RealFolders, endWhereSomethingElseIsMounted) {
  if (!canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  const TemporaryFolder folder;
  for (const char* name : {"volume", "bound", "mine", "a b/c"}) fs::create_directories(folder / name);
  write(folder / "mine/f", 30'000);
  write(folder / "over", 30'000);
  write(folder / "file", 20'000);
  EXPECT_TRUE(support::succeedsInChild([&] {
    const auto bind = [&](const char* from, const char* to) {
      return mount((folder / from).c_str(), (folder / to).c_str(), nullptr, MS_BIND, nullptr) == 0;
    };
    // The same folder seen twice, a name that the kernel's table escapes, and a file that covers another.
    if (!enterOwnMounts() || mount("none", (folder / "volume").c_str(), "tmpfs", 0, "size=1m") != 0 ||
        !bind("mine", "bound") || !bind("mine", "a b/c") || !bind("file", "over")) {
      return false;
    }
    write(folder / "volume/f", 100'000);
    const auto result = scan(folder.path());
    const Tree tree = treeOf(result.root);
    return result.fileCount == 2 && tree.contains(folder / "mine/f") && tree.contains(folder / "file") &&
           tree.contains(folder / "a b") && !tree.contains(folder / "volume") &&
           !tree.contains(folder / "bound") &&
           scan(folder / "bound").fileCount == 1;  // a mount is a fine root
  }));
}

TEST(RealFolders, mayBeTheRootOfTheFileSystem) {
  if (!canMount()) GTEST_SKIP() << "no namespace to be had here";
  const TemporaryFolder folder;
  write(folder / "home/f", 5'000);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!enterOwnMounts() || chroot(folder.path().c_str()) != 0 || chdir("/") != 0) return false;
    std::atomic<bool> hasAskedOtherwise = false;
    const auto result = DiskScanner::scan({.root = "/", .reuse = [&](const std::string& path) -> const Node* {
                                             if (path != "/home") hasAskedOtherwise = true;
                                             return nullptr;
                                           }});
    return result && result->root.name == "/" && result->fileCount == 1 && !hasAskedOtherwise &&
           scan("/").root == result->root;
  }));
}

// Does something to the disk just before the walk opens a subfolder of the given name.
class MeddlingListing final : public FolderListing {
 public:
  using Meddle = std::function<void(const std::string& name)>;
  explicit MeddlingListing(Meddle meddle) : meddle_(std::move(meddle)) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override {
    auto opened = host_->open(root);
    if (!opened) return std::unexpected(opened.error());
    return std::make_unique<Opened>(std::move(*opened), meddle_);
  }

 private:
  class Opened final : public OpenFolder {
   public:
    Opened(std::unique_ptr<OpenFolder> inner, const Meddle& meddle)
        : inner_(std::move(inner)),
          meddle_(meddle) {}
    std::uint64_t device() const override { return inner_->device(); }
    Facts facts() const override { return inner_->facts(); }
    Batch nextBatch(ListingBuffer& buffer) override { return inner_->nextBatch(buffer); }
    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
      meddle_(name);
      auto opened = inner_->openSubfolder(name);
      if (!opened) return std::unexpected(opened.error());
      return std::make_unique<Opened>(std::move(*opened), meddle_);
    }

   private:
    std::unique_ptr<OpenFolder> inner_;
    const Meddle& meddle_;
  };

  std::unique_ptr<FolderListing> host_ = hostFolderListing();
  Meddle meddle_;
};

TEST(RealFolders, thatVanishOrTurnIntoSomethingElseAreLeftOut) {
  const TemporaryFolder outside;
  const TemporaryFolder folder;
  write(outside / "treasure", 90'000);
  for (const char* name : {"vanishing", "linked", "filed", "staying"}) {
    write((folder / name) + "/f", 10'000);
  }
  MeddlingListing listing{[&](const std::string& name) {
    if (name == "staying") return;
    fs::remove_all(folder / name);
    if (name == "linked") fs::create_directory_symlink(outside.path(), folder / name);
    if (name == "filed") write(folder / name, 90'000);
  }};
  const auto result = DiskScanner::scan({.root = folder.path(), .listing = &listing});
  ASSERT_TRUE(result);
  EXPECT_EQ(result->fileCount, 1);
  EXPECT_EQ(result->root.children.size(), 1U);
  EXPECT_EQ(result->coverage.unread, Unread{});
}

TEST(RealFolders, endAtAMountThatAppearsDuringTheScan) {
  if (!canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  const TemporaryFolder folder;
  for (const char* name : {"late", "bound"}) fs::create_directory(folder / name);
  write(folder / "file", 20'000);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!enterOwnMounts()) return false;
    MeddlingListing listing{[&](const std::string& name) {
      // The second one is of the same device.
      const bool bind = name == "bound";
      mount(bind ? folder.path().c_str() : "none", (folder / name).c_str(), "tmpfs", bind ? MS_BIND : 0,
            nullptr);
    }};
    const auto result = DiskScanner::scan({.root = folder.path(), .listing = &listing});
    return result && result->fileCount == 1 && result->root.children.size() == 1 &&
           result->coverage.unread == Unread{};
  }));
}

TEST(RealFolders, leaveNoHandleOpenWhenTheScanIsCancelled) {
  const TemporaryFolder folder;
  std::string path = folder.path();
  for (int depth = 0; depth < 20; ++depth) {
    for (int i = 0; i < 300; ++i) write(path + "/" + std::to_string(i), 0);
    fs::create_directory(path + "/a");
    path += "/b";
    fs::create_directory(path);
  }
  const std::size_t before = openHandles();
  for (const ScanManner manner : {ScanManner::quiet, ScanManner::foreground}) {
    int polls = 0;
    EXPECT_FALSE(DiskScanner::scan(
        {.root = folder.path(), .manner = always(manner), .shouldCancel = [&] { return ++polls == 1; }}));
    EXPECT_EQ(polls, 1);
    EXPECT_EQ(openHandles(), before);
    EXPECT_TRUE(DiskScanner::scan({.root = folder.path(), .manner = always(manner)}));
    EXPECT_EQ(openHandles(), before);
  }
}

// A system that has no more than so many handles for folders.
class ScarceHandles final : public FolderListing {
 public:
  ScarceHandles(FolderListing& inner, int limit) : inner_(inner), limit_(limit) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& root) override {
    auto opened = inner_.open(root);
    if (!opened) return std::unexpected(opened.error());
    ++used_;
    return std::make_unique<Counted>(*this, std::move(*opened));
  }
  std::vector<ListedPlace> places() const override { return inner_.places(); }
  int used() const { return used_; }

 private:
  class Counted final : public OpenFolder {
   public:
    Counted(ScarceHandles& owner, std::unique_ptr<OpenFolder> inner)
        : owner_(owner),
          inner_(std::move(inner)) {}
    ~Counted() override { --owner_.used_; }

    std::uint64_t device() const override { return inner_->device(); }
    Facts facts() const override { return inner_->facts(); }
    Batch nextBatch(ListingBuffer& buffer) override { return inner_->nextBatch(buffer); }
    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
      if (++owner_.used_ > owner_.limit_) {
        --owner_.used_;
        return std::unexpected(EMFILE);
      }
      auto opened = inner_->openSubfolder(name);
      if (opened) return std::make_unique<Counted>(owner_, std::move(*opened));
      --owner_.used_;
      return std::unexpected(opened.error());
    }

   private:
    ScarceHandles& owner_;
    std::unique_ptr<OpenFolder> inner_;
  };

  FolderListing& inner_;
  int limit_;
  std::atomic<int> used_ = 0;
};

TEST(RealFolders, areAllCountedWhereHelpersTakeTheLastHandles) {
  const TemporaryFolder folder;
  for (int i = 0; i < 600; ++i) {
    write((folder / std::to_string(i % 20)) + "/" + std::to_string(i) + "/below/" + std::to_string(i), 1);
  }
  const auto host = hostFolderListing();
  const auto expected = DiskScanner::scan({.root = folder.path(), .manner = always(ScanManner::quiet)});
  for (int round = 0; round < 60; ++round) {
    // The walk itself holds four folders at once, and a helper holds one that the walk may want.
    ScarceHandles scarce{*host, 5 + round % 12};
    ReadAheadListing ahead = readAhead(scarce, round % 2 == 0 ? 8U : 2U);
    EXPECT_EQ(
        DiskScanner::scan({.root = folder.path(), .manner = always(ScanManner::quiet), .listing = &ahead}),
        expected)
        << "round " << round;
    EXPECT_EQ(scarce.used(), 0);
  }
}

TEST(RealFolders, areAllCountedWithFewHandles) {
  const TemporaryFolder folder;
  for (int i = 0; i < 2'500; ++i) {
    write((folder / std::to_string(i % 50)) + "/" + std::to_string(i) + "/below/" + std::to_string(i), 1);
  }
  const auto host = hostFolderListing();
  const auto expected = DiskScanner::scan({.root = folder.path(), .manner = always(ScanManner::quiet)});
  // The scan as programs make it, under limits that leave room for the walk.
  for (const rlim_t limit : {256U, 40U}) {
    EXPECT_TRUE(support::succeedsInChild([&] {
      const rlimit few{limit, limit};
      if (setrlimit(RLIMIT_NOFILE, &few) != 0) return false;
      return DiskScanner::scan({.root = folder.path()}) == expected;
    })) << limit;
  }
  // Handles run out here, because the listing is told of more than there are. Not under the address
  // sanitizer: its check of an object opens a pipe, and takes a failure for a broken object.
#if !defined(__SANITIZE_ADDRESS__)
  for (const unsigned helpers : {1U, 8U}) {
    EXPECT_TRUE(support::succeedsInChild([&] {
      const rlimit few{32, 32};
      if (setrlimit(RLIMIT_NOFILE, &few) != 0) return false;
      ReadAheadListing ahead = readAhead(*host, helpers);
      return DiskScanner::scan(
                 {.root = folder.path(), .manner = always(ScanManner::quiet), .listing = &ahead}) ==
                 expected &&
             openHandles() < 32;
    })) << helpers
        << " helpers";
  }
#endif
}

// On a real file system whose device answers each request after 200 microseconds.
TEST(RealFolders, areReadAheadOnASlowDeviceAndByInodeWhereItRotates) {
  const TemporaryFolder folder;
  const auto mounted = [&](const std::function<bool(support::SlowFiles&)>& check) {
    return support::statusOf(support::startChild([&] {
      support::SlowFiles files;
      const bool isMounted = enterOwnMounts() && files.mountAt(folder.path(), std::chrono::microseconds{200});
      if (!isMounted) _exit(2);
      return check(files);
    }));
  };
  if (mounted([](auto&) { return true; }) != 0) GTEST_SKIP() << "FUSE cannot be mounted here";
  EXPECT_EQ(mounted([&](support::SlowFiles& files) {
              const auto ahead = DiskScanner::scan({.root = folder.path()});
              EXPECT_GT(files.takeMostAtOnce(), 3U);
              EXPECT_FALSE(files.takeIsInInodeOrder()) << "the listing runs backwards";
              const auto byInode = linuxFolderListing({.order = AskingOrder::inode});
              const auto rotating = DiskScanner::scan(
                  {.root = folder.path(), .manner = always(ScanManner::quiet), .listing = byInode.get()});
              EXPECT_EQ(files.takeMostAtOnce(), 1U);
              EXPECT_TRUE(files.takeIsInInodeOrder());
              EXPECT_EQ(ahead, rotating) << "in listing order";
              EXPECT_EQ(treeOf(ahead->root), expectedTree(folder.path()));
              EXPECT_EQ(ahead->fileCount, support::SlowFiles::fileCount);
              return !testing::Test::HasFailure();
            }),
            0);
}

TEST(RealFolders, areReadWithoutTouchingTheirAccessTimes) {
  const TemporaryFolder folder;
  const timespec old[2]{{1'000'000'000, 0}, {1'500'000'000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, folder.path().c_str(), old, 0), 0);
  scan(folder.path());
  struct stat status {};
  ASSERT_EQ(stat(folder.path().c_str(), &status), 0);
  EXPECT_EQ(status.st_atime, 1'000'000'000);
}

// An item may have been swapped for a link since it was shown.
TEST(RealFolders, areNotMeasuredForALinkToThem) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "movies");
  support::writeText(folder / "movies/film", std::string(1'000'000, 'x'));
  fs::create_directory_symlink("movies", folder / "link");
  fs::create_directory_symlink("nowhere", folder / "dangling");
  const auto sizeOf = [&](const char* name) {
    const Measured measured = measureAgain(folder / name, 0, {});
    return measured.exists && measured.tree ? measured.tree->size : -1;
  };
  EXPECT_GE(sizeOf("movies"), 1'000'000);
  for (const char* link : {"link", "dangling"}) {
    EXPECT_GE(sizeOf(link), 0) << link;
    EXPECT_LT(sizeOf(link), 100'000) << link;
  }
}

}  // namespace
}  // namespace spacemint
