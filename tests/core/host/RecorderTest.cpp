// What a recorder answers in unusual situations: limits, lost events, mounts, other roots.

#include "core/host/linux/journal/Recorder.h"

#include "core/scan/ScanPlan.h"
#include "support/ChildProcess.h"
#include "support/OwnMounts.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <mutex>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;
using namespace std::chrono_literals;

void write(const std::string& path, std::size_t bytes = 5'000) {
  std::ofstream(path, std::ios::app) << std::string(bytes, 'x');
}

// With a mark on the file system, or with a watch on each folder.
class RecorderTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) {
      withoutMark.emplace();
      return;
    }
    start();
    if (!recorder->status().marksFileSystem) GTEST_SKIP() << "no mark to be had here";
    recorder.reset();
    since = 0;
    for (const char* name : {"endpoint", "state"}) fs::remove_all(folder / name);
  }

  EventRecorder::Options options() const {
    return {.root = root, .endpointFolder = folder / "endpoint", .stateFolder = folder / "state"};
  }
  void start() { start(options()); }
  void start(EventRecorder::Options given) {
    recorder.reset();
    auto started = EventRecorder::start(std::move(given));
    ASSERT_TRUE(started) << started.error().message;
    recorder = std::move(*started);
    if (recorder->waitUntilRecording(1min)) since = currentID();
  }
  // With a recorder that waits for a crawl.
  void startIdle() {
    auto given = options();
    given.crawlsAtOnce = false;
    start(std::move(given));
  }
  std::uint64_t currentID() { return recorder->currentEventID({.root = root}); }

  std::expected<FolderChanges, JournalError> ask() { return ask(since); }
  std::expected<FolderChanges, JournalError> ask(std::uint64_t from) {
    auto answer = recorder->changes({.root = root, .since = from});
    if (answer) {
      std::ranges::sort(answer->directories);
      std::ranges::sort(answer->trees);
    }
    return answer;
  }
  // Why there is no answer, if there is none.
  static std::optional<JournalError> reason(const std::expected<FolderChanges, JournalError>& answer) {
    return answer ? std::nullopt : std::optional{answer.error()};
  }
  std::vector<std::string> directories() {
    return ask().value_or(FolderChanges{.directories = {"none"}}).directories;
  }
  std::vector<std::string> trees() { return ask().value_or(FolderChanges{.trees = {"none"}}).trees; }

  // Nothing reaches the recorder's thread while `work` runs.
  template <class Work>
  void whileHeld(Work work) {
    hold.take(Recorder::threadName);
    work();
    hold.release();
  }

  TemporaryFolder folder{support::recordableFolder()};
  std::string root = folder / "root";
  bool made = fs::create_directory(root);
  std::optional<support::WithoutMark> withoutMark;
  support::ThreadHold hold;
  std::shared_ptr<EventRecorder> recorder;
  std::uint64_t since = 0;
};

TEST_P(RecorderTest, namesFoldersWhoseEntriesChangedAndTreesThatCame) {
  fs::create_directories(root + "/a/b");
  fs::create_directories(root + "/quiet/too");
  start();
  EXPECT_EQ(ask()->directories.size() + ask()->trees.size(), 0U);
  write(root + "/a/b/f");
  fs::create_directories(root + "/new/below");
  EXPECT_EQ(directories(), (std::vector{root, root + "/a/b"}));
  EXPECT_EQ(trees(), std::vector{root + "/new"});
  since = currentID();
  write(root + "/new/below/f");
  EXPECT_EQ(directories(), std::vector{root + "/new/below"});
  EXPECT_EQ(trees().size(), 0U);
}

// A scan in between would have found the other folder.
TEST_P(RecorderTest, countsAFolderAsChangedThatAnotherStoodInFor) {
  fs::create_directories(root + "/a/x/below");
  fs::create_directories(root + "/a/y");
  start();
  for (int attempt = 0; attempt < 5; ++attempt) {
    whileHeld([&] {
      fs::rename(root + "/a/x", root + "/away");
      fs::rename(root + "/a/y", root + "/a/x");
      fs::rename(root + "/a/x", root + "/a/y");
      fs::rename(root + "/away", root + "/a/x");
    });
    EXPECT_EQ(trees(), (std::vector{root + "/a/x", root + "/a/y"}));
    fs::rename(root + "/a/x", root + "/away");
    EXPECT_EQ(trees(), (std::vector{root + "/a/y", root + "/away"}));
    since = currentID();
    fs::rename(root + "/away", root + "/a/x");
    EXPECT_EQ(trees(), std::vector{root + "/a/x"});
    since = currentID();
    fs::permissions(root + "/a/x", fs::perms::owner_all);
    EXPECT_EQ(trees().size(), 0U);
    since = currentID();
  }
}

TEST_P(RecorderTest, answersOnlyForItsOwnIds) {
  start();
  EXPECT_EQ(reason(ask(since - EventClock::count)), JournalError::olderThanSession);
  EXPECT_TRUE(ask(since));
  EXPECT_EQ(reason(ask(since + 1)), JournalError::fromTheFuture);
  EXPECT_EQ(reason(ask(since + EventClock::count)), JournalError::fromTheFuture);
  EXPECT_EQ(recorder->currentEventID({.root = root + "/"}), 0U);
  EXPECT_EQ(reason(recorder->changes({.root = "/", .since = since})), JournalError::notRecording);
}

TEST_P(RecorderTest, endsAWaitAtTheTimeoutAndWhenItIsCancelled) {
  start();
  ASSERT_TRUE(ask());  // so that the recorder sleeps without a time limit
  whileHeld([&] {
    EXPECT_EQ(reason(recorder->changes({.root = root, .since = since, .timeout = 10ms})),
              JournalError::timedOut);
    int polls = 0;
    const auto cancel = [&] { return ++polls == 3; };
    EXPECT_EQ(
        reason(recorder->changes({.root = root, .since = since, .timeout = 24h, .shouldCancel = cancel})),
        JournalError::timedOut);
  });
  EXPECT_TRUE(ask());
}

// A folder is filled and exchanged with another before the recorder looks, so its path leads to the other.
TEST_P(RecorderTest, verifiesTheFolderThatAPathLeadsTo) {
  for (int attempt = 0; attempt < 5; ++attempt) {
    fs::create_directories(root + "/x");
    start();
    fs::create_directories(root + "/p/y");
    fs::rename(root + "/x", root + "/p/x");
    ASSERT_TRUE(ask());
    whileHeld([&] {
      fs::create_directory(root + "/p/x/f");
      renameat2(AT_FDCWD, (root + "/p/x").c_str(), AT_FDCWD, (root + "/p/y").c_str(), RENAME_EXCHANGE);
    });
    ASSERT_TRUE(ask());
    since = currentID();
    write(root + "/p/y/f/late");
    EXPECT_EQ(directories(), std::vector{root + "/p/y/f"});
    recorder.reset();
    fs::remove_all(root + "/p");
  }
}

TEST_P(RecorderTest, watchesFoldersThatAreMadeFasterThanItLooks) {
  start();
  std::string deepest = root;
  for (int i = 0; i < 3'000; ++i) {
    if (i % 100 == 0) deepest += "/deep";
    fs::create_directories(deepest + "/" + std::to_string(i));
  }
  EXPECT_EQ(trees(), std::vector{root + "/deep"});
  since = currentID();
  write(deepest + "/2999/f");
  EXPECT_EQ(directories(), std::vector{deepest + "/2999"});
  EXPECT_EQ(recorder->status().folders, 3'031U);
}

TEST_P(RecorderTest, hasNothingCertainAfterTheQueueOverflowed) {
  std::size_t limit = 0;
  std::ifstream(GetParam() ? "/proc/sys/fs/fanotify/max_queued_events"
                           : "/proc/sys/fs/inotify/max_queued_events") >>
      limit;
  if (limit == 0 || limit > 200'000) GTEST_SKIP() << "the queue takes too much here";
  start();
  whileHeld([&] {
    // Different names, because equal events are merged.
    for (std::size_t i = 0; i < limit + 10; ++i) {
      mknod((root + "/f" + std::to_string(i)).c_str(), S_IFREG | 0600, 0);
    }
    fs::create_directory(root + "/missed");
  });
  EXPECT_EQ(reason(ask()), JournalError::eventsLost);
  // It crawls again by itself, and knows that the earlier id is from before the loss.
  ASSERT_TRUE(recorder->waitUntilRecording(1min));
  EXPECT_EQ(reason(ask()), JournalError::eventsLost);
  EXPECT_TRUE(ask(currentID()));
}

TEST_P(RecorderTest, noticesThatAnotherFolderIsInThePlaceOfItsRoot) {
  start();
  fs::rename(root, folder / "elsewhere");
  EXPECT_EQ(reason(ask()), JournalError::rootReplaced);
  EXPECT_EQ(currentID(), 0U);
  EXPECT_FALSE(recorder->waitUntilRecording(1min));  // there is nothing to crawl
  fs::create_directory(root);
  EXPECT_FALSE(ask());  // after a query in vain it crawls what is there now
  ASSERT_TRUE(recorder->waitUntilRecording(1min));
  EXPECT_TRUE(ask(currentID()));

  // No event reports that a folder above the root moved.
  root = folder / "above/root";
  fs::create_directories(root);
  start();
  fs::rename(folder / "above", folder / "gone");
  fs::create_directories(root);
  EXPECT_EQ(reason(ask()), JournalError::rootReplaced);
}

TEST_P(RecorderTest, countsWhatIsMountedBelowTheRootAsChanged) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  fs::create_directories(root + "/m/below");
  write(root + "/m/below/f");
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    start();
    const std::string at = root + "/m";
    if (!ask() || mount("none", at.c_str(), "tmpfs", 0, "size=1m") != 0) return false;
    if (directories() != std::vector{root}) return false;
    since = currentID();
    if (umount(at.c_str()) != 0 || trees() != std::vector{at}) return false;
    since = currentID();
    write(at + "/below/f");
    return directories() == std::vector{at + "/below"};
  }));
}

// What is written to a lower folder of an overlay causes no event in the overlay. So a scan has to be full.
TEST_P(RecorderTest, vouchesForNoFileSystemThatCanChangeWithoutEvents) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  for (const char* name : {"lower/a", "upper", "work"}) fs::create_directories(folder / name);
  EXPECT_TRUE(support::succeedsInChild([&] {
    const std::string data = "lowerdir=" + (folder / "lower") + ",upperdir=" + (folder / "upper") +
                             ",workdir=" + (folder / "work");
    if (!support::enterOwnMounts() || mount("overlay", root.c_str(), "overlay", 0, data.c_str()) != 0) {
      return false;
    }
    startIdle();
    const auto crawl = recorder->beginCrawl(root);
    const auto scanned = DiskScanner::scan({.root = root, .listing = crawl.get()});
    crawl->finish();
    write(folder / "lower/a/silent");
    Snapshot earlier{.root = scanned->root, .eventID = crawl->eventID(), .fullScanDate = Date{}};
    earlier.root.fileCount = 1;
    const ScanPlan plan =
        ScanPlan::make(*recorder, {.root = root, .now = Date{}, .earlier = std::move(earlier)});
    return scanned && plan.isFull() && !plan.eventID &&
           plan.whyFull == "the file system can change without this computer noticing";
  }));
}

TEST_P(RecorderTest, livesWithTheLimitsOfTheSystem) {
  if (!support::succeedsInChild([] { return support::setOwnLimit("max_inotify_watches", 4); })) {
    GTEST_SKIP() << "no user namespace to be had here";
  }
  for (int i = 0; i < 10; ++i) fs::create_directories(root + "/" + std::to_string(i) + "/below");
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::setOwnLimit("max_inotify_watches", 4)) return false;
    start();
    return recorder->status().watches == 4 && !recorder->status().limitAdvice.empty() && trees().size() >= 6;
  }));
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::setOwnLimit("max_inotify_instances", 0)) return false;
    const auto failed = EventRecorder::start(options());
    return !failed && failed.error().isSystem(EMFILE) &&
           failed.error().message.find("sysctl fs.inotify.max_user_instances=") != std::string::npos;
  }));
}

TEST_P(RecorderTest, hasUnreadableFoldersInEveryAnswerUntilTheyCanBeRead) {
  fs::permissions(folder.path(), fs::perms::all);
  fs::permissions(root, fs::perms::all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    fs::create_directories(root + "/locked/below");
    fs::permissions(root + "/locked", fs::perms::none);
    start();
    if (trees() != std::vector{root + "/locked"}) return false;
    fs::permissions(root + "/locked", fs::perms::owner_all);
    if (trees() != std::vector{root + "/locked"}) return false;
    since = currentID();
    write(root + "/locked/below/f");
    return trees().empty() && directories() == std::vector{root + "/locked/below"};
  }));
}

TEST_P(RecorderTest, hearsOfItsFoldersAloneAlsoThroughAnotherMount) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  fs::create_directories(root + "/a");
  const std::string elsewhere = folder / "elsewhere";
  fs::create_directory(elsewhere);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    start();
    if (mount(root.c_str(), elsewhere.c_str(), nullptr, MS_BIND, nullptr) != 0) return false;
    write(folder / "outside");
    if (!ask() || !directories().empty() || !trees().empty()) return false;
    write(elsewhere + "/a/f");
    return directories() == std::vector{root + "/a"} && trees().empty();
  }));
}

// The mark ends with the volume, and another volume at the same place has no mark.
TEST_P(RecorderTest, isLostWhenItsVolumeIsUnmountedAlsoWhereAnotherTookItsPlace) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  for (const bool isReplaced : {false, true}) {
    EXPECT_TRUE(support::succeedsInChild([&] {
      const auto mountRoot = [&] { return mount("none", root.c_str(), "tmpfs", 0, "size=1m") == 0; };
      if (!support::enterOwnMounts() || !mountRoot()) return false;
      start();
      // The recorder keeps nothing open that would prevent this.
      return ask() && umount(root.c_str()) == 0 && (!isReplaced || mountRoot()) &&
             reason(ask()) == JournalError::unmounted;
    })) << isReplaced;
  }
}

// The size of everything below the root, as the recorder lists it for the scan with the id `since`.
class RecorderSizesTest : public RecorderTest {
 protected:
  std::expected<MeasuredChanges, JournalError> measured(std::size_t limit = 20'000) {
    return recorder->measuredChanges({.root = root, .since = since, .folderLimit = limit});
  }
  Bytes recorded() {
    const auto answer = measured();
    return answer && !answer->folders.empty() ? answer->folders.front().size : -1;
  }
  Bytes onTheDisk() { return DiskScanner::scan({.root = root}).value().root.size; }
};

// A hole is filled through a mapping, and a file through its name in another folder.
TEST_P(RecorderSizesTest, findsWhatChangedWithoutAnEvent) {
  fs::create_directories(root + "/a");
  write(root + "/a/linked");
  fs::create_hard_link(root + "/a/linked", folder / "elsewhere");
  start();
  ASSERT_TRUE(measured());
  const FileHandle mapped{open((root + "/mapped").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)};
  ASSERT_EQ(ftruncate(mapped.get(), 65'536), 0);
  void* memory = mmap(nullptr, 65'536, PROT_READ | PROT_WRITE, MAP_SHARED, mapped.get(), 0);
  EXPECT_EQ(recorded(), onTheDisk());
  for (std::size_t page = 0; page < 3; ++page) {
    since = currentID();
    static_cast<char*>(memory)[page * 8'192] = 'm';
    write(folder / "elsewhere", 50'000);
    EXPECT_EQ(directories().size(), 0U);
    EXPECT_EQ(recorded(), onTheDisk());
  }
  munmap(memory, 65'536);
}

TEST_P(RecorderSizesTest, continuesWhereItReachedTheLimit) {
  start();
  for (int i = 0; i < 25; ++i) {
    fs::create_directories(root + "/" + std::to_string(i));
    write(root + "/" + std::to_string(i) + "/f");
  }
  EXPECT_EQ(measured(10).error(), JournalError::tooManyChanges);
  EXPECT_EQ(recorded(), onTheDisk());
}

TEST_P(RecorderSizesTest, leaveOutWhatIsMounted) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  write(root + "/f");
  write(folder / "large", 100'000);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    start();
    const std::string at = root + "/f";
    if (mount((folder / "large").c_str(), at.c_str(), nullptr, MS_BIND, nullptr) != 0) return false;
    write(root + "/g");
    return measured() && recorded() == onTheDisk();
  }));
}

class RecordingCrawlTest : public RecorderTest {
 protected:
  Node scanWith(FolderListing& listing) {
    return DiskScanner::scan({.root = root, .listing = &listing}).value().root;
  }
};

TEST_P(RecordingCrawlTest, ofAScanSetsUpTheRecorderOnItsWay) {
  for (const char* name : {"/a/b", "/c/d", "/e/f"}) fs::create_directories(root + name);
  write(root + "/a/b/f");
  startIdle();
  // If a crawl is given up, nothing is recorded.
  recorder->beginCrawl(root).reset();
  EXPECT_EQ(reason(ask()), JournalError::notRecording);

  const auto crawl = recorder->beginCrawl(root);
  EXPECT_EQ(reason(ask(crawl->eventID())), JournalError::settingUp);
  scanWith(*crawl);
  write(root + "/c/d/during");
  crawl->finish();
  EXPECT_FALSE(recorder->beginCrawl(root)) << "it is recorded by now";
  since = crawl->eventID();
  EXPECT_EQ(directories(), std::vector{root + "/c/d"});
  EXPECT_EQ(recorder->status().watches, 7U);
  since = currentID();
  EXPECT_EQ(directories().size(), 0U);
}

// A folder's names can be read, but not the facts about its entries.
TEST_P(RecordingCrawlTest, countsWhatItCouldNotListAsUnknown) {
  fs::create_directories(root + "/a/b");
  fs::permissions(folder.path(), fs::perms::all);
  fs::permissions(root, fs::perms::all);
  fs::permissions(root + "/a", fs::perms::all);
  write(root + "/a/f");
  fs::permissions(root + "/a", fs::perms::others_read | fs::perms::owner_read);
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    startIdle();
    const auto crawl = recorder->beginCrawl(root);
    scanWith(*crawl);
    crawl->finish();
    since = currentID();
    return trees() == std::vector{root + "/a"};
  }));
  fs::permissions(root + "/a", fs::perms::all);
}

std::string nameOfSource(const testing::TestParamInfo<bool>& tested) {
  return tested.param ? "ByMark" : "ByWatches";
}

INSTANTIATE_TEST_SUITE_P(Each, RecorderTest, testing::Bool(), nameOfSource);
INSTANTIATE_TEST_SUITE_P(Each, RecorderSizesTest, testing::Bool(), nameOfSource);
INSTANTIATE_TEST_SUITE_P(Each, RecordingCrawlTest, testing::Bool(), nameOfSource);

}  // namespace
}  // namespace spacemint
