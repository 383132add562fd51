// Recording and rescanning as a user runs them, in two processes.

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/Program.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::Program;
using testing::HasSubstr;
using testing::Not;

class WatchTest : public testing::Test {
 protected:
  WatchTest() {
    fs::create_directory(program.home() / "run");
    fs::permissions(program.home() / "run", fs::perms::owner_all);
    program.addFile("Music/song", 40'000);
    program.addFile("Code/deep/down/core", 30'000);
  }
  std::string scan(std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"scan", "--min-size", "1000"});
    return program.run(more).out;
  }
  Snapshot newest() const { return program.scans().load(program.scans().entries().at(0)).value(); }

  Program program{SPACEMINTCTL, support::recordableFolder()};
};

TEST_F(WatchTest, aScanAfterARecordedOneTakesOverWhatHasNotChanged) {
  EXPECT_THAT(scan(), HasSubstr("A full scan, because there is no earlier scan.\n"));
  EXPECT_EQ(newest().eventID, std::nullopt);
  auto watch = program.begin({"watch"});
  EXPECT_EQ(watch.line(), "Recording what changes in " + program.home().path() + ": 13 folders watched");
  EXPECT_THAT(scan(), HasSubstr("A full scan, because nothing recorded changes at the last scan.\n"));
  const Snapshot full = newest();
  EXPECT_GT(full.eventID.value_or(0), 0U);

  program.addFile("Music/song", 40'000);
  EXPECT_THAT(scan({"--no-save"}),
              HasSubstr("A rescan: what has not changed was taken from the last scan.\n"));
  EXPECT_THAT(scan({"--no-save", "--json"}), HasSubstr(R"(,"scan":{"kind":"rescan"}})"));
  EXPECT_THAT(scan({"--no-save", "--json", "--full"}),
              HasSubstr(R"(,"scan":{"kind":"full","because":"that was asked for"}})"));
  EXPECT_THAT(program.run({"scan", "--no-save"}).out,
              HasSubstr("A full scan, because the last scan used another --min-size.\n"));
  scan();
  const Snapshot rescan = newest();
  EXPECT_EQ(rescan.fullScanDate, full.fullScanDate);
  EXPECT_GT(rescan.eventID, full.eventID);
  EXPECT_EQ(rescan.nodeAt(program.home() / "Music")->size, 81'920);
  EXPECT_EQ(*rescan.nodeAt(program.home() / "Code"), *full.nodeAt(program.home() / "Code"));
  EXPECT_EQ(watch.end(SIGTERM), 0);
  for (const auto& left : fs::directory_iterator(program.home() / "run/spacemint")) {
    EXPECT_EQ(left.path().extension(), ".lock") << left.path();
  }
}

TEST_F(WatchTest, aRecorderThatWasKilledIsFollowedByOneThatKnowsNothingOfItsTime) {
  auto first = program.begin({"watch"});
  ASSERT_THAT(first.line(), HasSubstr("Recording"));
  scan();
  EXPECT_EQ(first.end(SIGKILL), 128 + SIGKILL);
  program.addFile("Music/unseen", 5'000);
  EXPECT_THAT(scan({"--no-save"}),
              HasSubstr("A full scan, because nothing records the changes of this folder.\n"));
  auto second = program.begin({"watch"});
  ASSERT_THAT(second.line(), HasSubstr("Recording"));
  EXPECT_THAT(scan({"--no-save"}),
              HasSubstr("A full scan, because the last scan is older than the recording.\n"));
}

TEST_F(WatchTest, ctrlCEndsAScanThatWaitsForARecorder) {
  auto watch = program.begin({"watch"});
  ASSERT_THAT(watch.line(), HasSubstr("Recording"));
  scan();
  watch.hang();
  const auto start = std::chrono::steady_clock::now();
  const auto outcome = program.runInterrupted({"scan"});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{3});
  EXPECT_EQ(outcome.err, "spacemintctl: interrupted\n");
  EXPECT_EQ(outcome.out, "");
}

TEST_F(WatchTest, thereIsOneRecorderOfAFolder) {
  auto watch = program.begin({"watch"});
  ASSERT_THAT(watch.line(), HasSubstr("Recording"));
  const auto again = program.run({"watch"});
  EXPECT_EQ(again.exitCode, 1);
  EXPECT_EQ(again.err, "spacemintctl: " + program.home().path() + ": is being recorded already\n");
  auto other = program.begin({"watch", program.home() / "Music"});
  EXPECT_EQ(other.line(), "Recording what changes in " + (program.home() / "Music") + ": 1 folder watched");
  EXPECT_EQ(other.end(SIGINT), 0);
  EXPECT_EQ(program.run({"watch", program.home() / "none"}).err,
            "spacemintctl: " + (program.home() / "none") + ": No such file or directory\n");
}

TEST_F(WatchTest, saysOnceHowMoreFoldersCanBeWatched) {
  if (!support::succeedsInChild([] { return support::setOwnLimit("max_inotify_watches", 4); })) {
    GTEST_SKIP() << "no user namespace to be had here";
  }
  const std::string said = program.home() / "said";
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::setOwnLimit("max_inotify_watches", 4)) return false;
    if (std::freopen(said.c_str(), "w", stderr) == nullptr) return false;
    auto watch = program.begin({"watch"});
    return watch.line().ends_with(": 4 folders watched") && scan() != "" &&
           scan({"--no-save"}).contains("A rescan:") && watch.end(SIGTERM) == 0;
  }));
  const std::string lines = support::readText(said);
  EXPECT_THAT(lines, HasSubstr(R"(as an administrator, "sysctl fs.inotify.max_user_watches=)"));
  EXPECT_EQ(std::ranges::count(lines, '\n'), 1) << lines;
}

// With a recorder of its own, and with one of another process.
TEST_F(WatchTest, topNamesTheFileThatGrowsNow) {
  const std::string file = program.home() / "Music/new song";
  for (const bool isWatched : {false, true}) {
    const std::unique_ptr<Program::Running> watch{isWatched ? new Program::Running{program.begin({"watch"})}
                                                            : nullptr};
    if (watch) watch->line();
    auto top = program.begin({"top", "--json"});
    EXPECT_THAT(top.line(), HasSubstr(R"("lines":[])"));
    ASSERT_TRUE(support::allocateFile(file, 120'000'000));
    std::string line;
    for (int i = 0; i < 5 && line.find("new song") == std::string::npos; ++i) line = top.line();
    EXPECT_THAT(line, HasSubstr(R"("lines":[{"path":")" + file + R"(","isDirectory":false,"isFreed":false)"));
    EXPECT_EQ(top.end(SIGINT), 0);
    fs::remove(file);
  }
}

}  // namespace
}  // namespace spacemint
