// What a recorder says when things happen that are no everyday changes: limits, losses, mounts, other roots.

#include "core/host/linux/journal/Recorder.h"

#include "core/host/linux/journal/RecorderRules.h"
#include "core/scan/ChangeLog.h"
#include "core/scan/DiskScanner.h"
#include "core/scan/ReadAheadListing.h"
#include "support/ChildProcess.h"
#include "support/OwnLimits.h"
#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>

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

constexpr std::uint64_t firstEventID = EventClock::count * 5;

void write(const std::string& path, std::size_t bytes = 5'000) {
  std::ofstream(path, std::ios::app) << std::string(bytes, 'x');
}

// With a mark on the file system, or without.
class RecorderTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) return;
    start();
    if (!recorder->status().marksFileSystem) GTEST_SKIP() << "no mark to be had here";
    recorder.reset();
    since = 0;
  }

  void start(Recorder::Parts parts = {}) {
    parts.root = root;
    parts.firstEventID = firstEventID;
    parts.rules.marksFileSystem = GetParam();
    if (!parts.rules.beforeListening) {
      parts.rules.beforeListening = [this] { const std::lock_guard lock(hold); };
    }
    auto started = Recorder::start(std::move(parts));
    ASSERT_TRUE(started) << started.error().message;
    recorder = std::move(*started);
    if (recorder->waitUntilRecording(1min)) since = recorder->currentEventID(root);
  }

  std::expected<FolderChanges, JournalAbsence> ask() { return ask(since); }
  std::expected<FolderChanges, JournalAbsence> ask(std::uint64_t from) {
    auto answer = recorder->changes({.since = from, .root = root, .timeout = 1min});
    if (answer) {
      std::ranges::sort(answer->directories);
      std::ranges::sort(answer->trees);
    }
    return answer;
  }
  // Why there is no answer, if there is none.
  static std::optional<JournalAbsence> reason(const std::expected<FolderChanges, JournalAbsence>& answer) {
    return answer ? std::nullopt : std::optional{answer.error()};
  }
  std::vector<std::string> directories() {
    return ask().value_or(FolderChanges{.directories = {"none"}}).directories;
  }
  std::vector<std::string> trees() { return ask().value_or(FolderChanges{.trees = {"none"}}).trees; }

  TemporaryFolder folder;
  std::string root = folder / "root";
  bool made = fs::create_directory(root);
  std::mutex hold;
  std::unique_ptr<Recorder> recorder;
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
  since = recorder->currentEventID(root);
  write(root + "/new/below/f");
  EXPECT_EQ(directories(), std::vector{root + "/new/below"});
  EXPECT_EQ(trees().size(), 0U);
}

// A scan in between would have found the other one.
TEST_P(RecorderTest, countsAFolderAsChangedThatAnotherStoodInFor) {
  fs::create_directories(root + "/a/x/below");
  fs::create_directories(root + "/a/y");
  start();
  for (int attempt = 0; attempt < 5; ++attempt) {
    {
      // It may look once more before it is held, and then even finds the other one there.
      const std::lock_guard held(hold);
      fs::rename(root + "/a/x", root + "/away");
      fs::rename(root + "/a/y", root + "/a/x");
      fs::rename(root + "/a/x", root + "/a/y");
      fs::rename(root + "/away", root + "/a/x");
    }
    EXPECT_EQ(trees(), (std::vector{root + "/a/x", root + "/a/y"}));
    fs::rename(root + "/a/x", root + "/away");
    EXPECT_EQ(trees(), (std::vector{root + "/a/y", root + "/away"}));
    since = recorder->currentEventID(root);
    fs::rename(root + "/away", root + "/a/x");
    EXPECT_EQ(trees(), std::vector{root + "/a/x"});
    since = recorder->currentEventID(root);
    fs::permissions(root + "/a/x", fs::perms::owner_all);
    EXPECT_EQ(trees().size(), 0U);
    since = recorder->currentEventID(root);
  }
}

TEST_P(RecorderTest, answersOnlyForItsOwnIds) {
  start();
  EXPECT_EQ(reason(ask(firstEventID - 1)), JournalAbsence::olderThanSession);
  EXPECT_TRUE(ask(since));
  EXPECT_EQ(reason(ask(since + 1)), JournalAbsence::fromTheFuture);
  EXPECT_EQ(reason(ask(since + EventClock::count)), JournalAbsence::fromTheFuture);
  EXPECT_EQ(recorder->currentEventID(root + "/"), 0U);
  EXPECT_EQ(reason(recorder->changes({.since = since, .root = "/", .timeout = 1s})),
            JournalAbsence::notRecording);
  const std::lock_guard busy(hold);
  // It may answer once more before it comes to where it is held.
  recorder->changes({.since = since, .root = root, .timeout = 1s});
  EXPECT_EQ(reason(recorder->changes({.since = since, .root = root, .timeout = 10ms})),
            JournalAbsence::timedOut);
}

// A folder is filled and exchanged with another before the recorder looks, so its path leads to the other. It
// may look once more before it comes to where it is held, and then even one that does not make sure is right.
TEST_P(RecorderTest, makesSureOfTheFolderThatAPathLeadsTo) {
  for (const bool verifies : {true, false}) {
    bool wasRight = true;
    for (int attempt = 0; attempt < 20 && wasRight; ++attempt) {
      fs::create_directories(root + "/x");
      start({.rules = {.verifiesFolders = verifies}});
      fs::create_directories(root + "/p/y");
      fs::rename(root + "/x", root + "/p/x");
      ASSERT_TRUE(ask());
      {
        const std::lock_guard held(hold);
        fs::create_directory(root + "/p/x/f");
        renameat2(AT_FDCWD, (root + "/p/x").c_str(), AT_FDCWD, (root + "/p/y").c_str(), RENAME_EXCHANGE);
      }
      ASSERT_TRUE(ask());
      since = recorder->currentEventID(root);
      write(root + "/p/y/f/late");
      wasRight = directories() == std::vector{root + "/p/y/f"};
      recorder.reset();
      fs::remove_all(root + "/p");
    }
    EXPECT_EQ(wasRight, verifies);
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
  since = recorder->currentEventID(root);
  write(deepest + "/2999/f");
  EXPECT_EQ(directories(), std::vector{deepest + "/2999"});
  EXPECT_EQ(recorder->status().folders, 3'031U);
}

TEST_P(RecorderTest, hasNothingCertainAfterTheQueueOverflowed) {
  // Where so many files are made quickly.
  const TemporaryFolder memory{access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path()};
  root = memory.path();
  std::size_t limit = 0;
  std::ifstream(GetParam() ? "/proc/sys/fs/fanotify/max_queued_events"
                           : "/proc/sys/fs/inotify/max_queued_events") >>
      limit;
  if (limit == 0 || limit > 200'000) GTEST_SKIP() << "the queue takes too much here";
  for (const bool notices : {true, false}) {
    start({.restartTime = 0s, .rules = {.noticesLoss = notices}});
    {
      const std::lock_guard held(hold);
      // It may wake once more and take what is there by then; what follows is too much.
      // Equal events would be told once.
      for (std::size_t i = 0; i < 2 * limit + 10; ++i) {
        mknod((root + (notices ? "/f" : "/g") + std::to_string(i)).c_str(), S_IFREG | 0600, 0);
      }
      fs::create_directory(root + "/missed");
    }
    EXPECT_EQ(ask().has_value(), !notices);
    if (!notices) break;
    // It begins anew by itself, and knows that the earlier id is from before.
    ASSERT_TRUE(recorder->waitUntilRecording(1min));
    EXPECT_EQ(reason(ask()), JournalAbsence::eventsLost);
    EXPECT_TRUE(ask(recorder->currentEventID(root)));
  }
}

TEST_P(RecorderTest, noticesThatAnotherFolderIsInThePlaceOfItsRoot) {
  start();
  fs::rename(root, folder / "elsewhere");
  EXPECT_EQ(reason(ask()), JournalAbsence::rootReplaced);
  EXPECT_EQ(recorder->currentEventID(root), 0U);
  fs::create_directory(root);
  EXPECT_FALSE(ask());  // which makes it begin with what is there now
  ASSERT_TRUE(recorder->waitUntilRecording(1min));
  EXPECT_TRUE(ask(recorder->currentEventID(root)));

  for (const bool checks : {true, false}) {
    root = folder / "above/root";
    fs::create_directories(root);
    start({.rules = {.checksRoot = checks}});
    fs::rename(folder / "above", folder / (checks ? "gone" : "gone too"));
    fs::create_directories(root);
    EXPECT_EQ(ask().has_value(), !checks);
    recorder.reset();
  }
}

TEST_P(RecorderTest, isLostWhenItsVolumeIsUnmounted) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts() || mount("none", root.c_str(), "tmpfs", 0, "size=1m") != 0) return false;
    start();
    // It keeps nothing open that would stop this.
    return ask() && umount(root.c_str()) == 0 && reason(ask()) == JournalAbsence::unmounted;
  }));
}

TEST_P(RecorderTest, countsWhatIsMountedBelowTheRootAsChanged) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  fs::create_directories(root + "/m/below");
  write(root + "/m/below/f");
  for (const bool notices : {true, false}) {
    const auto work = [&] {
      if (!support::enterOwnMounts()) return false;
      start({.rules = {.noticesMounts = notices}});
      const std::string at = root + "/m";
      if (!ask() || mount("none", at.c_str(), "tmpfs", 0, "size=1m") != 0) return false;
      if ((directories() == std::vector{root}) != notices) return false;
      since = recorder->currentEventID(root);
      if (umount(at.c_str()) != 0 || (trees() == std::vector{at}) != notices) return false;
      since = recorder->currentEventID(root);
      write(at + "/below/f");
      return directories() == std::vector{at + "/below"};
    };
    EXPECT_TRUE(support::succeedsInChild(work)) << notices;
  }
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
    const auto failed = Recorder::start({.root = root, .firstEventID = firstEventID});
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
    since = recorder->currentEventID(root);
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

// The mark goes with the volume, and another one at the same place has none.
TEST_P(RecorderTest, isLostWhenAnotherVolumeTookThePlaceOfItsOwn) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  EXPECT_TRUE(support::succeedsInChild([&] {
    const auto mountRoot = [&] { return mount("none", root.c_str(), "tmpfs", 0, "size=1m") == 0; };
    if (!support::enterOwnMounts() || !mountRoot()) return false;
    start({.rules = {.checksRoot = false}});
    return ask() && umount(root.c_str()) == 0 && mountRoot() && reason(ask()) == JournalAbsence::unmounted;
  }));
}

class RecordingWalkTest : public RecorderTest {
 protected:
  Node scanWith(FolderListing& listing) {
    return DiskScanner::scan({.root = root, .listing = &listing}).value().root;
  }
};

TEST_P(RecordingWalkTest, ofAScanSetsUpTheRecorderOnItsWay) {
  for (const char* name : {"/a/b", "/c/d", "/e/f"}) fs::create_directories(root + name);
  write(root + "/a/b/f");
  start({.walksAtOnce = false});
  EXPECT_EQ(since, 0U);
  auto walk = recorder->beginWalk();
  EXPECT_EQ(reason(ask(walk->eventID())), JournalAbsence::settingUp);
  {
    ReadAheadListing ahead{walk->listing(), 4};
    scanWith(ahead);
  }
  write(root + "/c/d/during");
  walk->finish();
  since = walk->eventID();
  EXPECT_EQ(directories(), std::vector{root + "/c/d"});
  EXPECT_EQ(recorder->status().watches, 7U);
  since = recorder->currentEventID(root);
  EXPECT_EQ(directories().size(), 0U);

  // One that is given up leaves nothing certain.
  recorder->beginWalk().reset();
  EXPECT_EQ(reason(ask()), JournalAbsence::notRecording);
}

// Tells, for one folder, that it could be listed in part only.
TEST_P(RecordingWalkTest, countsWhatItCouldNotListAsUnknown) {
  fs::create_directories(root + "/a/b");
  fs::permissions(folder.path(), fs::perms::all);
  fs::permissions(root, fs::perms::all);
  fs::permissions(root + "/a", fs::perms::all);
  write(root + "/a/f");
  fs::permissions(root + "/a", fs::perms::others_read | fs::perms::owner_read);  // names, but no facts
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::becomeNobody()) return false;
    start({.walksAtOnce = false});
    const auto walk = recorder->beginWalk();
    scanWith(walk->listing());
    walk->finish();
    since = recorder->currentEventID(root);
    return trees() == std::vector{root + "/a"};
  }));
  fs::permissions(root + "/a", fs::perms::all);
}

std::string nameOfHearing(const testing::TestParamInfo<bool>& tested) {
  return tested.param ? "ByMark" : "ByWatches";
}

INSTANTIATE_TEST_SUITE_P(Each, RecorderTest, testing::Bool(), nameOfHearing);
INSTANTIATE_TEST_SUITE_P(Each, RecordingWalkTest, testing::Bool(), nameOfHearing);

}  // namespace
}  // namespace spacemint
