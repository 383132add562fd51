// spacemintctl as a person runs it: what it says, how it ends, and what is left on the disk.

#include "support/Program.h"

#include "AppServices/consent/UsageConsent.h"
#include "core/history/FreeSpaceRecord.h"
#include "core/history/SnapshotCodec.h"
#include "core/host/VolumeInfo.h"
#include "spacemintctl/Console.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

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
  void writeMany(int count) const {
    fs::create_directory(program.home() / "many");
    for (int i = 0; i < count; ++i) std::ofstream(program.home() / ("many/" + std::to_string(i)));
  }

  Program program{SPACEMINTCTL};
  const Date now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
};

TEST_F(SpacemintctlTest, scanSaysWhatIsBigInTheHomeFolder) {
  program.addFile("Movies/long.mov", 3'000'000);
  program.addFile("Code/app/core", 2'000'000);
  program.addFile("notes\n.txt", 1'000'000);
  const Outcome outcome = program.run({"scan", "--min-size", "500000", "--top", "3"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr(": 6 MB in 3 files"), HasSubstr("3 MB  50 %  1 file  ~/Movies\n"),
                    HasSubstr("~/Code/app\n"), Not(HasSubstr("~/Code\n")), HasSubstr("~/Movies/long.mov\n"),
                    HasSubstr("~/notes\ufffd.txt\n"), Not(HasSubstr("\x1b"))));
  EXPECT_THAT(program.run({"scan"}).out, HasSubstr("Nothing here is as large as 20 MB.\n"));
}

TEST_F(SpacemintctlTest, scanSaysInOneLineWhyARootCannotBeScanned) {
  const std::string file = program.addFile("file", 10);
  const std::string locked = program.home() / "locked";
  fs::create_directory(locked);
  fs::permissions(locked, fs::perms::none);
  fs::permissions(program.home().path(), fs::perms::all);
  for (const auto& [path, reason] :
       {std::pair{program.home() / "none", "No such file or directory"}, std::pair{file, "Not a directory"},
        std::pair{locked, "Permission denied"}}) {
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
  if (!Program::canHaveTerminal()) GTEST_SKIP() << "no terminal to be had here";
  const std::string place = program.home() / "place";
  fs::create_directories(place + "/folder");
  support::writeText(place + "/large", std::string(30'000'000, 'x'));
  EXPECT_THAT(program.runOnTerminal({"scan", "--no-save", place}).err,
              testing::ContainsRegex("30 MB  ████████████████████  large *\x1b\\[1A"));
  fs::remove_all(place);
  writeMany(4'200);
  EXPECT_THAT(program.runOnTerminal({"scan"}).err,
              AllOf(HasSubstr("4,200 files, 0 bytes"), HasSubstr("\r\x1b[K")));
  EXPECT_EQ(program.runOnTerminal({"scan", "--quiet"}).err, "");
  EXPECT_EQ(program.run({"scan"}).err, "");
}

TEST_F(SpacemintctlTest, statusSaysHowFullTheDiskIs) {
  const Outcome outcome = program.run({"status"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Free  "), HasSubstr("Total  ")));
  EXPECT_THAT(program.run({"status", "--json"}).out,
              AllOf(testing::MatchesRegex(R"(\{"name":".*,"total":[0-9]+,.*\}.)"),
                    HasSubstr(R"("volumes":[{"name":")"), HasSubstr(R"("mountPoints":["/)")));
}

TEST_F(SpacemintctlTest, statusShowsTheFreeSpaceOfTheLastDays) {
  setenv("TZ", "UTC", 1);
  EXPECT_THAT(program.run({"status", "--history"}).out, HasSubstr("No free space is recorded yet"));
  const std::string home = program.home().path();
  const auto record = FreeSpaceRecord::ofVolume(home + "/.local/state", mountPointOf(home).value_or("/"));
  const Date noon = std::chrono::floor<std::chrono::days>(now) - std::chrono::hours{36};
  constexpr Bytes free[]{60'000'000'000, 40'000'000'000, 50'000'000'000, 41'000'000'000};
  for (int i = 0; i < 4; ++i)
    ASSERT_TRUE(record.add({.date = noon + std::chrono::hours{7 * i}, .free = free[i], .total = 1}));
  const Outcome outcome = program.run({"status", "--history"});
  const std::string day = ctl::universalTime(noon).substr(0, 10);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("from 40 GB (▁) to 60 GB (█)\n"),
                                 HasSubstr("\n  " + day + "              █      ▁      40 GB  to 60 GB\n"),
                                 HasSubstr("    ▅      ▁                41 GB  to 50 GB\n")));
  EXPECT_THAT(program.run({"status", "--history", "--json"}).out,
              HasSubstr(ctl::universalTime(noon) + R"(","free":60000000000,"total":1},{"date":)"));
}

TEST_F(SpacemintctlTest, statusSaysHowTheNextScanWillBeMade) {
  EXPECT_THAT(program.run({"status", "--verbose"}).out,
              AllOf(HasSubstr("Last scan      none\n"), HasSubstr("because there is no earlier scan\n"),
                    HasSubstr("because nothing records the changes of this folder\n"),
                    HasSubstr("warns below 20 GB\n")));
  ASSERT_EQ(program.run({"scan"}).exitCode, 0);
  const Outcome outcome = program.run({"status", "--verbose", "--json"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out,
              HasSubstr(R"("nextScan":{"kind":"full","because":"nothing recorded changes at the last scan"},)"
                        R"("recorder":{"answers":false,"because":"nothing records)"));
}

TEST_F(SpacemintctlTest, theLogSaysWhyWhereItIsAskedFor) {
  setenv("SPACEMINT_LOG", "info", 1);
  const Outcome outcome = program.run({"scan"});
  unsetenv("SPACEMINT_LOG");
  EXPECT_THAT(outcome.err, testing::MatchesRegex("20[0-9-]+T[0-9:]+Z spacemint: the scan of [^\n]* is a full "
                                                 "scan, because there is no earlier scan\n"));
}

TEST_F(SpacemintctlTest, aScanIsKeptAndReadBackEqual) {
  program.addFile("Movies/long.mov", 3'000'000);
  program.addFile("Code/core", 2'000'000);
  EXPECT_THAT(program.run({"history"}).out, HasSubstr("No scan in the history yet"));
  EXPECT_EQ(program.run({"files"}).exitCode, 1);
  EXPECT_EQ(program.run({"scan", "--no-save"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(program.home() / ".local"));

  const Outcome scan = program.run({"scan", "--json", "--min-size", "1000000"});
  const auto entries = program.scans().entries();
  ASSERT_EQ(entries.size(), 1U);
  const auto stored = program.scans().load(entries[0]);
  ASSERT_TRUE(stored);
  EXPECT_EQ(SnapshotCodec::decode(scan.out), *stored);
  EXPECT_THAT(program.run({"history"}).out, AllOf(HasSubstr("  5 MB  2 files  ~\n")));
  EXPECT_THAT(program.run({"history", "--json"}).out, HasSubstr("\"fileCount\":2,\"minNodeSize\":1000000,"));
}

TEST_F(SpacemintctlTest, leavesOutWhatPatternsName) {
  program.addFile("VMs/disk", 3'000'000);
  program.addFile("a.iso", 2'000'000);
  program.addFile("b", 1'000'000);
  const auto scan = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"scan", "--min-size", "500000"});
    return program.run(more);
  };
  EXPECT_THAT(scan({}).out, HasSubstr(": 6 MB in 3 files"));
  // As if it had been made earlier; scans of one second have one name.
  fs::rename(program.scans().entries().front().path, program.scans().directory + "/1700000000.json");
  const Outcome wrong = program.run({"settings", "set", "excludes", "*.iso, [a-"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_THAT(wrong.err, HasSubstr("“[a-” is wrong at character 1: “[” has no “]”."));
  EXPECT_EQ(program.run({"settings", "get", "excludes"}).out, "\n");
  EXPECT_EQ(program.run({"settings", "set", "excludes", "*.iso, ~/VMs"}).exitCode, 0);
  EXPECT_EQ(program.run({"settings", "get", "excludes"}).out, "*.iso,~/VMs\n");
  const std::string left = scan({}).out;
  EXPECT_THAT(left, AllOf(HasSubstr(": 1 MB in "), HasSubstr("because the last scan left out other folders"),
                          HasSubstr("Left out of scans  5 MB in 2 files and folders, as last measured")));
  EXPECT_THAT(program.run({"growth"}).out, HasSubstr("left out other files and folders"));
  EXPECT_THAT(scan({"--exclude", "!*.iso", "--exclude", "b"}).out, HasSubstr(": 2 MB in "));
  EXPECT_EQ(scan({"--exclude", "a/b"}).exitCode, 2);
}

TEST_F(SpacemintctlTest, storedScansAreBrowsedByDate) {
  const auto made = [](const char* name, int day) {
    Snapshot snapshot{
        .date = std::chrono::sys_days{std::chrono::year{2026} / 3 / day} + std::chrono::hours{14},
        .root = support::folder("/home/ann",
                                {support::folder(name, {support::file("f", 700)}), support::file("g", 200)},
                                {.unlisted = 100})};
    return snapshot;
  };
  ASSERT_TRUE(program.scans().save(made("old", 1)));
  ASSERT_TRUE(program.scans().save(made("new", 2)));

  EXPECT_EQ(program.run({"folders"}).out,
            "/home/ann: 1 KB\n"
            "  700 bytes  70 %  new/\n"
            "  200 bytes  20 %  g\n"
            "  100 bytes  10 %  (smaller files and folders)\n");
  EXPECT_EQ(program.run({"folders", "/home/ann/./old/", "--scan", "2026-03-01"}).out,
            "/home/ann/old: 700 bytes\n  700 bytes  100 %  f\n");
  EXPECT_EQ(program.run({"folders", "/home/ann/new", "--json"}).out,
            R"({"name":"/home/ann/new","size":700,"isDirectory":true,"fileCount":1,"unlistedSize":0,)"
            R"("children":[{"name":"f","size":700,"isDirectory":false}]})"
            "\n");
  EXPECT_EQ(program.run({"files", "--scan", "2026-03-01T14", "--top", "1"}).out,
            "  700 bytes    /home/ann/old/f\n");
  EXPECT_EQ(program.run({"files", "--scan", "1772460000", "--json", "--top", "1"}).out,
            R"([{"path":"/home/ann/new/f","size":700}])"
            "\n");

  const Outcome missing = program.run({"folders", "/home/ann/old"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.err, HasSubstr("/home/ann/old: no such folder in the scan of 2026-03-02 14:00:00"));
  EXPECT_EQ(program.run({"files", "--scan", "2025"}).err,
            "spacemintctl: no scan of \"2025\" in the history\n");

  // The newest that can be read serves, and the list says which cannot.
  std::ofstream(program.scans().directory + "/1900000000.json") << "{";
  EXPECT_EQ(program.run({"files"}).exitCode, 0);
  EXPECT_THAT(program.run({"history"}).out, testing::ContainsRegex("2030-03-17 17:46:40 +cannot be read: "));
}

TEST_F(SpacemintctlTest, scanningPrunesTheHistory) {
  for (const int days : {10, 20, 30})
    ASSERT_TRUE(program.scans().save({.date = now - std::chrono::days{days}}));
  EXPECT_EQ(program.run({"scan"}).exitCode, 0);
  const auto kept = program.scans().entries();
  ASSERT_EQ(kept.size(), 2U);
  EXPECT_GE(kept.front().date, now);
  EXPECT_EQ(kept.back().date, now - std::chrono::days{10});
}

TEST_F(SpacemintctlTest, theFormerProductsHistoryIsMovedBeforeTheFirstScanIsKept) {
  const SnapshotStore former{program.home() / ".local/share/Loftmere/Snapshots"};
  ASSERT_TRUE(former.save({.date = now - std::chrono::days{1}}));
  EXPECT_EQ(program.run({"scan"}).err, "");
  EXPECT_EQ(program.scans().entries().size(), 2U);
  EXPECT_FALSE(fs::exists(program.home() / ".local/share/Loftmere"));
}

TEST_F(SpacemintctlTest, scansOfOtherFoldersAreKeptApart) {
  program.addFile("Code/core", 2'000'000);
  program.addFile("Movies/long.mov", 3'000'000);
  for (const int days : {1, 2})
    ASSERT_TRUE(program.scans().save(
        {.date = now - std::chrono::days{days}, .root = {.name = program.home().path()}}));
  for (const char* name : {"Code", "Code", "Movies"})
    ASSERT_EQ(program.run({"scan", "--min-size", "1000", program.home() / name}).exitCode, 0);
  EXPECT_EQ(program.scans().entries().size(), 2U) << "the history of the home folder is as it was";
  EXPECT_THAT(program.run({"history"}).out,
              AllOf(HasSubstr("  ~/Code\n"), HasSubstr("  ~/Movies\n"), HasSubstr("  ~\n")));
  EXPECT_NE(program.run({"files", "--top", "1"}).out, "") << "a scan of another folder is the newest";

  // What is old goes, and so does the folder that held it.
  const fs::path others = program.home() / ".local/share/Spacemint/Other Snapshots";
  fs::create_directory(others / "old");
  std::ofstream(others / "old/1700000000.json") << "{}";
  ASSERT_EQ(program.run({"scan"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(others / "old"));
  EXPECT_EQ(std::distance(fs::directory_iterator{others}, fs::directory_iterator{}), 2);
}

TEST_F(SpacemintctlTest, aScanThatCannotBeKeptIsStillAnswered) {
  fs::create_directories(program.home() / ".local/share");
  std::ofstream(program.home() / ".local/share/Spacemint") << "in the way";
  const Outcome outcome = program.run({"scan"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, HasSubstr(" in 1 file"));
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("couldn't save the scan: "), HasSubstr(".local/share/Spacemint")));
}

TEST_F(SpacemintctlTest, explainAddsUpToTheCapacity) {
  program.addFile("Movies/long.mov", 30'000'000);
  program.run({"scan"});
  const auto account = nlohmann::json::parse(program.run({"explain", "--json"}).out);
  std::int64_t sum = 0;
  for (const auto& part : account.at("parts"))
    sum += part.at("size").is_null() ? 0 : part.at("size").get<std::int64_t>();
  EXPECT_EQ(sum, account.at("total"));
  EXPECT_EQ(account.at("total"), account.at("used").get<std::int64_t>() +
                                     account.at("heldBack").get<std::int64_t>() +
                                     account.at("free").get<std::int64_t>());
  EXPECT_EQ(account.at("scan").at("root"), program.home().path());
  EXPECT_NEAR(account.at("parts").front().at("size").get<double>(), 30'000'000, 10'000);
  EXPECT_THAT(program.run({"explain"}).out,
              AllOf(HasSubstr("by the scan of ~, just now\n"), HasSubstr("  Elsewhere on this volume"),
                    HasSubstr("  Total\n")));
  const Outcome none = program.run({"explain", "/proc"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.err,
            "spacemintctl: /proc: its volume could not be read, or is on no disk of this computer\n");
}

TEST_F(SpacemintctlTest, settingsAreCheckedAndKept) {
  EXPECT_THAT(program.run({"settings"}).out, HasSubstr("  warningThresholdGB  20  (default)\n"));
  EXPECT_EQ(program.run({"settings", "set", "scope", "disk"}).exitCode, 0);
  EXPECT_EQ(program.run({"settings", "get", "scope"}).out, "disk\n");
  EXPECT_THAT(program.run({"settings", "--json"}).out,
              HasSubstr("\"scope\":\"disk\",\"scanIntervalHours\":6,"));

  const Outcome unfit = program.run({"settings", "set", "scope", "Disk"});
  EXPECT_EQ(unfit.exitCode, 2);
  EXPECT_THAT(unfit.err, HasSubstr("home, disk"));
  const Outcome unknown = program.run({"settings", "set", "colour", "red"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err, HasSubstr("warningThresholdGB, scope"));
  EXPECT_EQ(program.run({"settings", "get", "colour"}).exitCode, 2);
  EXPECT_EQ(program.run({"settings", "get", "scope"}).out, "disk\n");
}

TEST_F(SpacemintctlTest, wrongUsageIsTwo) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{},
                                             {"nonsense"},
                                             {"scan", "--min-size", "-1"},
                                             {"scan", "--min-size", "1.5"},
                                             {"scan", "a", "b"},
                                             {"scan", "--nope"},
                                             {"status", "x"},
                                             {"files", "--top", "-1"},
                                             {"settings", "set", "scope"}}) {
    const Outcome outcome = program.run(words);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err, "");
  }
  EXPECT_EQ(program.run({"--help"}).exitCode, 0);
}

TEST(UsageCommand, showsAndChangesTheConsent) {
  const Program program{SPACEMINTCTL};
  const auto store = [&] {
    return DefaultsStore{program.home() / ".config/spacemint/app.spacemint.Spacemint.json"};
  };
  EXPECT_EQ(program.run({"usage"}).out, "Not answered yet; nothing is sent.\n");
  EXPECT_EQ(program.run({"usage", "--json"}).out, "{\"allowed\":null,\"sentOn\":null}\n");

  EXPECT_EQ(program.run({"usage", "on"}).exitCode, 0);
  EXPECT_EQ(store().boolean(UsageConsent::shareKey), true);
  EXPECT_THAT(program.run({"usage", "status"}).out, HasSubstr("Last sent: never.\n"));
  store().set(UsageConsent::installKey, "ID");
  store().set(UsageConsent::sentOnKey, "2026-03-01");
  EXPECT_THAT(program.run({"usage"}).out, HasSubstr("Last sent: 2026-03-01.\n"));
  EXPECT_EQ(program.run({"usage", "status", "--json"}).out, "{\"allowed\":true,\"sentOn\":\"2026-03-01\"}\n");

  EXPECT_EQ(program.run({"usage", "off"}).exitCode, 0);
  EXPECT_EQ(store().boolean(UsageConsent::shareKey), false);
  EXPECT_FALSE(store().has(UsageConsent::installKey));
  EXPECT_FALSE(store().has(UsageConsent::sentOnKey));
  EXPECT_EQ(program.run({"usage"}).out, "Off: nothing is sent.\n");
  EXPECT_EQ(program.run({"usage", "perhaps"}).exitCode, 2);
}

TEST(UsageCommand, saysWhyItCannotChangeTheConsent) {
  const Program program{SPACEMINTCTL};
  std::filesystem::create_directories(program.home() / ".config/spacemint/app.spacemint.Spacemint.json");
  const auto outcome = program.run({"usage", "off"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.err, HasSubstr("app.spacemint.Spacemint.json"));
}

}  // namespace
}  // namespace spacemint
