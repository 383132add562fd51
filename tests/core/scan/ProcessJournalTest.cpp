#include "core/scan/ProcessJournal.h"

#include "core/scan/DiskScanner.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

class ProcessJournalTest : public testing::Test {
 protected:
  ProcessJournalTest() {
    for (const char* name : {"endpoint", "state", "a/inner", "b"}) fs::create_directories(folder / name);
    fs::permissions(folder / "endpoint", fs::perms::owner_all);
  }
  EventRecorder::Options options() const {
    return {.endpointFolder = folder / "endpoint", .stateFolder = folder / "state"};
  }
  // A full scan; the id that it would carry.
  static std::uint64_t scan(EventJournal& journal, const std::string& root) {
    const auto crawl = journal.beginCrawl(root);
    EXPECT_TRUE(crawl) << root;
    if (!crawl) return 0;
    EXPECT_TRUE(DiskScanner::scan({.root = root, .listing = crawl.get()}));
    crawl->finish();
    return crawl->eventID();
  }

  support::TemporaryFolder folder{support::recordableFolder()};
};

TEST_F(ProcessJournalTest, recordsFromTheFirstScanOn) {
  ProcessJournal journal{options()};
  const std::string root = folder / "a";
  EXPECT_EQ(journal.currentEventID({.root = root}), 0U);
  const std::uint64_t first = scan(journal, root);
  EXPECT_FALSE(journal.beginCrawl(root)) << "it is recorded by now";
  std::ofstream{root + "/inner/new"} << "x";
  const auto changes = journal.changes({.root = root, .since = first});
  ASSERT_TRUE(changes) << textOf(changes.error());
  EXPECT_THAT(changes->directories, UnorderedElementsAre(root + "/inner"));
}

int threadsOfLowPriority() {
  const fs::directory_iterator threads{"/proc/self/task"};
  return static_cast<int>(std::ranges::count_if(threads, [](const fs::directory_entry& thread) {
    return getpriority(PRIO_PROCESS, static_cast<id_t>(std::stoi(thread.path().filename()))) == 19;
  }));
}

TEST_F(ProcessJournalTest, recordsAtThePriorityOfItsMakerAndNotOfTheScan) {
  ProcessJournal journal{options()};
  std::thread{[&] {
    ASSERT_EQ(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 19), 0);
    ASSERT_EQ(threadsOfLowPriority(), 1);
    scan(journal, folder / "a");
    EXPECT_EQ(threadsOfLowPriority(), 1);
  }}.join();
}

TEST_F(ProcessJournalTest, recordsOneFolderAtATime) {
  ProcessJournal journal{options()};
  const std::string other = folder / "b";
  const std::uint64_t first = scan(journal, folder / "a");
  EXPECT_FALSE(journal.beginCrawl(folder / "a"));
  const auto crawl = journal.beginCrawl(other);
  ASSERT_TRUE(crawl);
  EXPECT_FALSE(journal.changes({.root = folder / "a", .since = first}));
  // A crawl can be completed after its recorder was replaced.
  EXPECT_TRUE(journal.beginCrawl(folder / "a"));
  EXPECT_TRUE(DiskScanner::scan({.root = other, .listing = crawl.get()}));
  crawl->finish();
}

TEST_F(ProcessJournalTest, leavesTheRecordingToAnotherThatDoesIt) {
  ProcessJournal first{options()};
  ProcessJournal second{options()};
  scan(first, folder / "a");
  EXPECT_FALSE(second.beginCrawl(folder / "a"));
}

}  // namespace
}  // namespace spacemint
