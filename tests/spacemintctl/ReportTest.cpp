// The three questions as a person asks them in a terminal, of a home folder with all kinds of things in it.

#include "support/Files.h"
#include "support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace spacemint {
namespace {

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

TEST_F(ReportTest, saysWhereToBeginWithoutAScan) {
  for (const char* command : {"report", "growth", "suggest"}) {
    const Outcome outcome = program.run({command});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, HasSubstr("no scan in the history yet"));
  }
}

}  // namespace
}  // namespace spacemint
