// spacemintctl as a person runs it: what it says, how it ends, and what is left on the disk.

#include "core/history/SnapshotCodec.h"
#include "support/Program.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::Outcome;
using support::Program;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class SpacemintctlTest : public testing::Test {
 protected:
  std::string write(const std::string& name, std::size_t bytes) const {
    const std::string path = program.home() / name;
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << std::string(bytes, 'x');
    return path;
  }

  void writeMany(int count) const {
    fs::create_directory(program.home() / "many");
    for (int i = 0; i < count; ++i) std::ofstream(program.home() / ("many/" + std::to_string(i)));
  }

  Program program{SPACEMINTCTL};
};

TEST_F(SpacemintctlTest, scanSaysWhatIsBigInTheHomeFolder) {
  write("Movies/long.mov", 3'000'000);
  write("Code/app/core", 2'000'000);
  write("notes\n.txt", 1'000'000);
  const Outcome outcome = program.run({"scan", "--min-size", "500000", "--top", "3"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, AllOf(HasSubstr(": 6 MB in 3 files"), HasSubstr("3 MB  50 %  1 file  ~/Movies\n"),
                                 HasSubstr("~/Code/app\n"), Not(HasSubstr("~/Code\n")),
                                 HasSubstr("~/Movies/long.mov\n"), HasSubstr("~/notes\ufffd.txt\n"),
                                 Not(HasSubstr("\x1b"))));
  EXPECT_THAT(program.run({"scan"}).out, HasSubstr("Nothing here is as large as 20 MB.\n"));
}

TEST_F(SpacemintctlTest, scanPrintsTheStoredDocumentAsJson) {
  write("Movies/long.mov", 3'000'000);
  const Outcome outcome = program.run({"scan", "--json", "--min-size", "1000000", "--no-save", program.home().path() + "/"});
  EXPECT_EQ(outcome.exitCode, 0);
  const auto snapshot = SnapshotCodec::decode(outcome.out);
  ASSERT_TRUE(snapshot) << snapshot.error().message;
  EXPECT_EQ(snapshot->rootPath(), program.home().path());
  EXPECT_EQ(snapshot->minNodeSize, 1'000'000);
  EXPECT_EQ(snapshot->nodeAt(program.home() / "Movies")->fileCount, 1);
  EXPECT_GT(snapshot->volumeTotal, 0);
  EXPECT_TRUE(snapshot->fullScanDate && *snapshot->fullScanDate <= snapshot->date);
}

TEST_F(SpacemintctlTest, scanSaysInOneLineWhyARootCannotBeScanned) {
  const std::string file = write("file", 10);
  const std::string locked = program.home() / "locked";
  fs::create_directory(locked);
  fs::permissions(locked, fs::perms::none);
  fs::permissions(program.home().path(), fs::perms::all);
  for (const auto& [path, reason] : {std::pair{program.home() / "none", "No such file or directory"},
                                     std::pair{file, "Not a directory"}, std::pair{locked, "Permission denied"}}) {
    const Outcome outcome = program.runAsNobody({"scan", path});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "spacemintctl: " + path + ": " + reason + "\n");
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(SpacemintctlTest, scanCountsTheFoldersThatItCouldNotRead) {
  fs::permissions(program.home().path(), fs::perms::all);
  for (const char* name : {"a", "b", "c"}) {
    fs::create_directory(program.home() / name);
    fs::permissions(program.home() / name, fs::perms::none);
  }
  const Outcome outcome = program.runAsNobody({"scan"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, HasSubstr("3 folders could not be read; sizes are at least what is shown\n"));
  EXPECT_EQ(program.runAsNobody({"scan", "--quiet"}).err, "");
}

TEST_F(SpacemintctlTest, aScanThatIsInterruptedEndsCleanly) {
  writeMany(4'200);
  for (const char* speed : {"--quiet", "--throttle"}) {
    const Outcome outcome = program.runInterrupted({"scan", speed});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.err, "spacemintctl: interrupted\n");
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_FALSE(fs::exists(program.home() / ".local"));
}

TEST_F(SpacemintctlTest, progressIsForTerminalsOnly) {
  writeMany(4'200);
  EXPECT_THAT(program.runOnTerminal({"scan"}).err, AllOf(HasSubstr("4,200 files, 0 bytes"), HasSubstr("\r\x1b[K")));
  EXPECT_EQ(program.runOnTerminal({"scan", "--quiet"}).err, "");
  EXPECT_EQ(program.run({"scan"}).err, "");
}

TEST_F(SpacemintctlTest, statusSaysHowFullTheDiskIs) {
  const Outcome outcome = program.run({"status"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Free  "), HasSubstr("Total  ")));
  EXPECT_THAT(program.run({"status", "--json"}).out, testing::MatchesRegex(R"(\{"name":".*,"total":[0-9]+,.*\}.)"));
}

TEST_F(SpacemintctlTest, wrongUsageIsTwo) {
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {}, {"nonsense"}, {"scan", "--min-size", "-1"}, {"scan", "--min-size", "1.5"}, {"scan", "a", "b"},
           {"scan", "--nope"}, {"status", "x"}}) {
    const Outcome outcome = program.run(words);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err, "");
  }
  EXPECT_EQ(program.run({"--help"}).exitCode, 0);
}

}  // namespace
}  // namespace spacemint
