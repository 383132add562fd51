#include "core/scan/ScanJournal.h"

#include "core/scan/ChangeLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sched.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

class ScanJournalTest : public testing::Test {
 protected:
  ScanJournalTest() {
    for (const char* name : {"meet", "state", "a/inner", "b"}) fs::create_directories(folder / name);
    fs::permissions(folder / "meet", fs::perms::owner_all);
  }
  EventRecorder::Options options() const {
    return {.root = {}, .meetingFolder = folder / "meet", .stateFolder = folder / "state"};
  }
  // Walks the root as a scan does; the id that the scan would carry.
  static std::uint64_t scan(ScanJournal& journal, const std::string& root) {
    const auto walk = journal.beginWalk(root);
    EXPECT_TRUE(walk) << root;
    if (!walk) return 0;
    EXPECT_TRUE(DiskScanner::scan({.root = root, .listing = &walk->listing()}));
    walk->finish();
    return walk->eventID();
  }

  support::TemporaryFolder folder;
};

TEST_F(ScanJournalTest, recordsFromTheFirstScanOn) {
  OwnScanJournal journal{options()};
  const std::string root = folder / "a";
  EXPECT_EQ(journal.currentEventID(root), 0U);
  const std::uint64_t first = scan(journal, root);
  EXPECT_FALSE(journal.beginWalk(root)) << "it is recorded by now";
  std::ofstream{root + "/inner/new"} << "x";
  const auto changes =
      ChangeLog{journal}.changes({.since = first, .under = root, .timeout = std::chrono::seconds{10}});
  ASSERT_TRUE(changes) << textOf(changes.error());
  EXPECT_THAT(changes->directories, UnorderedElementsAre(root + "/inner"));
}

// Everybody's threads, by what the kernel does with them when others want the processor too.
int idleThreads() {
  const fs::directory_iterator threads{"/proc/self/task"};
  return static_cast<int>(std::ranges::count_if(threads, [](const fs::directory_entry& thread) {
    return sched_getscheduler(std::stoi(thread.path().filename())) == SCHED_IDLE;
  }));
}

TEST_F(ScanJournalTest, recordsAtThePriorityOfItsMakerAndNotOfTheScan) {
  OwnScanJournal journal{options()};
  std::thread{[&] {
    const sched_param none{};
    ASSERT_EQ(sched_setscheduler(0, SCHED_IDLE, &none), 0);
    ASSERT_EQ(idleThreads(), 1);
    scan(journal, folder / "a");
    EXPECT_EQ(idleThreads(), 1);
  }}.join();
}

TEST_F(ScanJournalTest, recordsOneFolderAtATime) {
  OwnScanJournal journal{options()};
  const std::string other = folder / "b";
  const std::uint64_t first = scan(journal, folder / "a");
  {
    const auto walk = journal.beginWalk(folder / "a");
    EXPECT_FALSE(walk);
  }
  const auto given = journal.beginWalk(other);
  ASSERT_TRUE(given);
  EXPECT_FALSE(ChangeLog{journal}.changes({.since = first, .under = folder / "a"}));
  // A walk outlives the recorder that took the place of its own.
  EXPECT_TRUE(journal.beginWalk(folder / "a"));
  EXPECT_TRUE(DiskScanner::scan({.root = other, .listing = &given->listing()}));
  given->finish();
}

TEST_F(ScanJournalTest, leavesTheRecordingToAnotherThatDoesIt) {
  OwnScanJournal first{options()};
  OwnScanJournal second{options()};
  scan(first, folder / "a");
  EXPECT_FALSE(second.beginWalk(folder / "a"));
}

}  // namespace
}  // namespace spacemint
