#include "spacemintctl/Answer.h"

#include "spacemintctl/Console.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/ReportPicture.h"
#include "support/Files.h"
#include "support/Program.h"
#include "support/TreeBuilder.h"
#include "ui_kit/Colours.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace spacemint::ctl {
namespace {

using std::chrono::seconds;
using support::file;
using support::folder;

const Wording english{.home = "/home/ann", .locale = "en_US"};

TEST(Printable, takesTheSenseOutOfWhatATerminalObeys) {
  EXPECT_EQ(printable("plain \u00e9"), "plain \u00e9");
  EXPECT_EQ(printable("a\nb\x1b[2J\x7f"), "a\ufffdb\ufffd[2J\ufffd");
  EXPECT_EQ(printable("\xc2\x9b"), "\ufffd");  // an escape sequence in one character
  EXPECT_EQ(printable("\xff"), "\ufffd");
}

TEST(LargestFolders, nameEachPlaceOnce) {
  const Node root =
      folder("/r", {folder("wrapper", {folder("inner", {file("f", 90)}), folder("other", {file("f", 20)})}),
                    folder("mixed", {folder("half", {file("g", 80)}), folder("rest", {file("h", 75)})}),
                    folder("deep", {folder("a", {folder("b", {file("f", 60)})}, {.unlisted = 39})}),
                    folder("asFar", {folder("c", {file("f", 59)})}, {.unlisted = 41}), file("big", 500)});
  std::vector<std::string> paths;
  for (const FolderItem& item : largestFolders(root, 10)) paths.push_back(item.path);
  EXPECT_EQ(paths, (std::vector<std::string>{"/r/mixed", "/r/asFar", "/r/wrapper/inner", "/r/deep/a/b",
                                             "/r/wrapper/other"}));
  EXPECT_EQ(largestFolders(root, 1).size(), 1U);
}

TEST(Progress, saysHowMuchIsDoneWhereTheWholeIsKnown) {
  struct Case {
    DiskScanner::Progress progress;
    ScanTiming::Expected expected;
    double elapsed;
    const char* text;
  };
  const Case cases[]{
      {{1'234, 1'500'000}, {}, 9, "1,234 files, 1.5 MB"},
      {{1, 25}, {.bytes = 100}, 10, "1 file, 25 bytes, 25 %, 30 s left"},
      {{1, 25}, {.bytes = 100}, 100, "1 file, 25 bytes, 25 %, 5 min left"},
      {{1, 25}, {.bytes = 100}, 3'600, "1 file, 25 bytes, 25 %, 3 h 0 min left"},
      {{1, 150}, {.bytes = 100}, 10, "1 file, 150 bytes, 99 %"},
      {{1, 25}, {.bytes = 100, .files = 2}, 10, "1 file, 25 bytes, 25 %, 10 s left"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(progressText(c.progress, c.expected, std::chrono::duration<double>(c.elapsed), "en_US"),
              c.text);
  }
}

TEST(UnreadNote, countsAndNamesTheFirstFew) {
  EXPECT_EQ(unreadNote({}, english), "");
  EXPECT_EQ(unreadNote({.folders = 1, .paths = {"/home/ann/a\nb"}}, english),
            "1 folder could not be read; sizes are at least what is shown\n  ~/a\ufffdb");
  EXPECT_EQ(
      unreadNote({.folders = 3, .entries = 1'000, .paths = {"/a", "/b", "/c", "/d", "/e", "/f"}}, english),
      "3 folders and 1,000 entries could not be read; sizes are at least what is shown\n"
      "  /a\n  /b\n  /c\n  /d\n  /e\n  …");
}

TEST(Table, alignsAllButTheLastColumnToTheRight) {
  Table table;
  table.add({"1 KB", "caf\u00e9", "x"});
  table.add({"100 bytes", "tea", "y"});
  EXPECT_EQ(table.text(), "       1 KB  caf\u00e9  x\n  100 bytes   tea  y\n");
}

namespace fs = std::filesystem;
using nlohmann::json;
using support::Outcome;
using support::Program;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ReportTest : public testing::Test {
 protected:
  void write(const std::string& name, std::size_t kilobytes) const {
    support::writeText(program.home() / name, std::string(kilobytes * 1'000, 'x'));
  }

  void scan() const { ASSERT_EQ(program.run({"scan", "--min-size", "1000"}).exitCode, 0); }

  // As if the scans that are kept had been made earlier.
  void makeScansOlder(std::chrono::seconds by) const {
    const fs::path folder = program.scans().directory;
    for (const fs::path name : support::namesIn(folder)) {
      fs::rename(folder / name, folder / (std::to_string(std::stol(name.stem()) - by.count()) + ".json"));
    }
  }

  json asJson(std::vector<std::string> arguments) const {
    arguments.emplace_back("--json");
    const Outcome outcome = program.run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return json::parse(outcome.out);
  }

  Program program{SPACEMINTCTL};
};

TEST_F(ReportTest, answersEverythingOnOnePage) {
  write(".cache/pip/wheel", 300);
  write(".cache/huggingface/hub/models--gpt2/blob", 200);
  write(".local/share/Trash/files/.hidden", 100);
  write("Library/Application Support/MobileSync/Backup/0001/data", 400);
  write("app/node_modules/left", 500);
  support::writeText(program.home() / "orphan/.git", "gitdir: /nowhere/.git/worktrees/orphan\n");
  write("orphan/big", 600);
  scan();
  const Outcome report = program.run({"report"});
  EXPECT_EQ(report.exitCode, 0) << report.err;
  EXPECT_THAT(
      report.out,
      AllOf(HasSubstr(" free of "), HasSubstr("After the next scan, this shows where new space went."),
            HasSubstr("is sitting in the Trash: ~/.local/share/Trash\nMost of it is hidden"),
            HasSubstr("Unknown device"), HasSubstr("Nothing obvious to clean up."),
            HasSubstr("Largest folders\n"), HasSubstr("Largest files\n"),
            HasSubstr("No package or build caches over 50 MB."), HasSubstr("Model  gpt2"),
            Not(HasSubstr("\x1b"))));

  // The same scan as a picture; its colours are those of the window.
  const std::string picture = program.home() / "scan.svg";
  EXPECT_EQ(program.run({"report", "--svg", picture}).out, "");
  const std::string svg = support::readText(picture);
  EXPECT_THAT(
      svg, AllOf(testing::StartsWith("<svg "), HasSubstr("<title>" + (program.home() / "orphan/big")),
                 HasSubstr("After the next scan, colour shows what came."), testing::EndsWith("</svg>\n")));
  for (const auto& [name, light, dark] : ctl::pictureColours) {
    const auto* colour = std::ranges::find(colours, name, &Colour::name);
    ASSERT_NE(colour, colours.end()) << name;
    EXPECT_EQ(std::stoul(std::string{light}, nullptr, 16), colour->light) << name;
    EXPECT_EQ(std::stoul(std::string{dark}, nullptr, 16), colour->dark) << name;
  }

  // Smaller things are named when asked for.
  const auto caches = asJson({"caches", "--min-size", "1000"});
  ASSERT_EQ(caches.size(), 1U);
  EXPECT_EQ(caches[0]["id"], "pip-xdg");
  EXPECT_EQ(caches[0]["commandLine"], "pip3 cache purge");
  EXPECT_EQ(caches[0]["path"], program.home() / ".cache/pip");
  const auto suggestions = asJson({"suggest", "--min-size", "450000"});
  ASSERT_EQ(suggestions.size(), 2U);
  EXPECT_EQ(suggestions[0]["id"], "devcache");
  EXPECT_EQ(suggestions[1]["locations"][0]["path"], program.home() / "app/node_modules");
  const auto worktrees = asJson({"worktrees", "--min-size", "1000"});
  ASSERT_EQ(worktrees.size(), 1U);
  EXPECT_EQ(worktrees[0]["isOrphaned"], true);
  EXPECT_EQ(worktrees[0]["branch"], nullptr);
  EXPECT_THAT(program.run({"worktrees", "--min-size", "1000"}).out,
              AllOf(HasSubstr("stale  Repository is gone"), HasSubstr("~/orphan\n")));

  // The page says the same as each of its parts.
  const auto all = asJson({"report"});
  for (const char* part : {"growth", "trash", "backups", "suggest", "caches", "huggingface", "worktrees"}) {
    EXPECT_EQ(all[part], asJson({part})) << part;
  }
  EXPECT_EQ(all["folders"][0]["path"], program.home() / "orphan");
}

TEST_F(ReportTest, saysWhatGrewSinceAnEarlierScanOfTheSameFolder) {
  write("Movies/a", 100);
  scan();
  makeScansOlder(std::chrono::days{2});
  // The nearest to a day before, but of another folder.
  ASSERT_EQ(program.run({"scan", "--min-size", "1000", program.home() / "Movies"}).exitCode, 0);
  makeScansOlder(std::chrono::days{1});
  write("Movies/b", 700);
  write("Movies/a", 800);
  scan();
  const auto answer = asJson({"growth", "--min-size", "600000"});
  EXPECT_EQ(answer["from"]["root"], program.home().path());
  ASSERT_EQ(answer["growth"].size(), 1U);
  EXPECT_EQ(answer["growth"][0]["path"], program.home() / "Movies");
  EXPECT_EQ(answer["growth"][0]["delta"], 1'400'832);
  EXPECT_THAT(program.run({"growth", "--min-size", "600000"}).out,
              HasSubstr("+1.4 MB  of 1.5 MB  ~/Movies/\n"));
  EXPECT_THAT(program.run({"growth"}).out, HasSubstr("Nothing grew by more than 100 MB.\n"));
  EXPECT_EQ(program.run({"growth", "--since", "1999"}).exitCode, 1);

  makeScansOlder(std::chrono::days{1});
  fs::remove(program.home() / "Movies/b");
  scan();
  const auto shrinkage = asJson({"growth", "--min-size", "600000"})["shrinkage"];
  ASSERT_EQ(shrinkage.size(), 1U);
  EXPECT_EQ(shrinkage[0]["path"], program.home() / "Movies/b");
  EXPECT_EQ(shrinkage[0]["isGone"], true);
  EXPECT_THAT(
      program.run({"growth", "--min-size", "600000"}).out,
      HasSubstr("Nothing grew by more than 600 KB.\nShrunk or gone\n  \u2212700 KB  gone  ~/Movies/b\n"));

  std::vector<std::string> dates;
  for (const auto& entry : program.scans().entries())
    dates.push_back(
        std::to_string(std::chrono::floor<std::chrono::seconds>(entry.date).time_since_epoch().count()));
  ASSERT_EQ(dates.size(), 3U);
  EXPECT_THAT(program.run({"growth", "--since", dates[2], "--until", dates[1], "--min-size", "600000"}).out,
              AllOf(HasSubstr(" until 20"), HasSubstr("~/Movies/\n  +700 KB  of 803 KB    … a\n")));
  EXPECT_THAT(program.run({"growth", "--since", dates[1], "--until", dates[2]}).err,
              HasSubstr("is later than the one to compare with it"));
}

TEST_F(ReportTest, asksOllamaThroughTheSearchPath) {
  if (fs::exists("/usr/local/bin/ollama")) GTEST_SKIP() << "a real one comes first";
  const std::string tool = program.home() / ".local/bin/ollama";
  support::writeProgram(tool,
                        "[ \"$*\" = list ] || exit 2\n"
                        "printf 'NAME  ID  SIZE  MODIFIED\\nllama3:8b  abc  4.7 GB  3 weeks ago\\n'");
  EXPECT_EQ(program.run({"ollama"}).out, "  4.7 GB  llama3:8b  3 weeks ago\n");
  EXPECT_EQ(asJson({"ollama"})["models"][0]["size"], 4'700'000'000);
  support::writeProgram(tool, "echo 'Error: could not connect to ollama app' >&2; exit 1");
  EXPECT_EQ(program.run({"ollama"}).out, "Open Ollama to see your models.\n");
  support::writeProgram(tool, "echo 'broken\a' >&2; exit 1");
  EXPECT_EQ(program.run({"ollama"}).out, "Couldn't read Ollama's models: broken\ufffd\n");
}

}  // namespace
}  // namespace spacemint::ctl
