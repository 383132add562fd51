// "spacemintctl clean" as a person runs it: what it shows, what it asks, and what is left on the disk.

#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::Outcome;
using support::Program;
using support::TemporaryFolder;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

// The sentence goes on where other programs free more than a little at the same time.
auto says(const std::string& done) {
  return ContainsRegex(done + "(\\.| and freed )");
}

class CleanTest : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return program.home() / name; }

  // A file that takes so much, without writing it.
  std::string write(const std::string& name, off_t bytes) const {
    EXPECT_TRUE(support::allocateFile(at(name), bytes));
    return at(name);
  }

  void writeTool(const std::string& name, const std::string& text) const {
    support::writeProgram(at(".local/bin/" + name), text);
  }

  // A repository "app" with these worktrees beside it; its path.
  std::string makeRepository(const std::vector<std::string>& worktrees) const {
    const std::string git = "HOME=/ git -c user.name=Ann -c user.email=ann@example.org ";
    const std::string in = " && " + git + "-C " + at("app") + " ";
    std::string command = git + "init -q " + at("app") + in + "commit -q --allow-empty -m first";
    for (const std::string& name : worktrees) command += in + "worktree add -q ../" + name + " 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return at("app");
  }

  void scan() const { ASSERT_EQ(program.run({"scan", "-q", "--min-size", "1000000"}).exitCode, 0); }

  Snapshot stored() const {
    const auto entries = program.scans().entries();
    EXPECT_EQ(entries.size(), 1U);
    return program.scans().load(entries.at(0)).value_or(Snapshot{});
  }

  Outcome clean(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "clean");
    return program.run(arguments);
  }

  Program program{SPACEMINTCTL};
  // What must stay, because it is not in the home folder.
  TemporaryFolder outside;
  const std::string treasure = support::writeText(outside / "treasure");
};

TEST_F(CleanTest, doesNothingWithoutAYes) {
  const std::string file = write("big/file", 2'000'000);
  const Outcome asked = clean({"path", at("big")});
  EXPECT_EQ(asked.exitCode, 1);
  EXPECT_EQ(asked.out, "Delete permanently?\n  2 MB  delete  ~/big\nThis removes it for good.\n");
  EXPECT_THAT(asked.err, HasSubstr("nothing was removed: not confirmed, because there is no terminal"));
  const Outcome dry = clean({"path", at("big"), "--dry-run", "--yes"});
  EXPECT_EQ(dry.exitCode, 0);
  EXPECT_EQ(dry.out, asked.out);
  const auto plan = Json::parse(clean({"path", at("big"), "--dry-run", "--json"}).out);
  EXPECT_EQ(plan["steps"][0]["action"], "delete");
  EXPECT_EQ(plan["steps"][0]["path"], at("big"));
  EXPECT_GE(plan["steps"][0]["size"], 2'000'000);
  if (Program::canHaveTerminal()) {
    for (const char* answer : {"", "n", "Yes, no", "x"}) {
      const Outcome refused = program.runOnTerminal({"clean", "path", at("big")}, answer);
      EXPECT_EQ(refused.exitCode, 1);
      EXPECT_THAT(refused.err, AllOf(HasSubstr("delete  ~/big"), HasSubstr("nothing was removed")));
    }
  }
  EXPECT_TRUE(fs::exists(file));
}

TEST_F(CleanTest, deletesAfterAYes) {
  if (!Program::canHaveTerminal()) GTEST_SKIP() << "no terminal to be had here";
  write("big/file", 2'000'000);
  const Outcome outcome = program.runOnTerminal({"clean", "path", at("big")}, "y");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, AllOf(says("Deleted big"), HasSubstr("Free space ")));
  EXPECT_FALSE(fs::exists(at("big")));
}

TEST_F(CleanTest, deletesSeveralAndNamesWhatStays) {
  write("a/file", 2'000'000);
  write("a/inner/file", 2'000'000);
  write("b", 2'000'000);
  write("Documents/file", 10);
  const Outcome outcome =
      program.run({"clean", "path", "--yes", at("a"), at("a/inner"), at("b"), at("Documents")});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(
      outcome.out,
      AllOf(HasSubstr("Delete 2 items permanently?"), HasSubstr("delete  ~/a\n"), HasSubstr("delete  ~/b\n"),
            HasSubstr("Left out: ~/Documents is a protected folder"), HasSubstr("Deleted a.\nDeleted b.\n")));
  EXPECT_FALSE(fs::exists(at("a")) || fs::exists(at("b")));
  EXPECT_TRUE(fs::exists(at("Documents/file")));
}

TEST_F(CleanTest, changesTheStoredScanToWhatIsThereNow) {
  write("keep/file", 3'000'000);
  write("big/file", 2'000'000);
  write("big/other", 2'000'000);
  scan();
  const Bytes before = stored().root.size;
  const Outcome outcome = clean({"path", at("big/file"), "--yes", "--json"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  const auto result = Json::parse(outcome.out);
  EXPECT_EQ(result["steps"][0]["done"], true);
  EXPECT_TRUE(result["freed"].is_number() && result["free"].is_number());
  EXPECT_EQ(stored().nodeAt(at("big/file")), nullptr);
  EXPECT_EQ(clean({"path", at("big"), "-y"}).exitCode, 0);
  EXPECT_EQ(stored().nodeAt(at("big")), nullptr);
  EXPECT_LT(stored().root.size, before - 4'000'000 + 100'000);
  EXPECT_NE(stored().nodeAt(at("keep/file")), nullptr);
}

TEST_F(CleanTest, refusesWhatTheGuardRefuses) {
  fs::create_directories(at("Documents"));
  fs::create_directories(at("Bilder"));
  support::writeText(at(".config/user-dirs.dirs"), "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
  fs::create_directory_symlink(outside.path(), at("link"));
  const std::pair<std::string, std::string> cases[]{
      {at("Documents"), "~/Documents is a protected folder"},
      {at("/Documents/."), "~/Documents is a protected folder"},
      {at("Bilder"), "~/Bilder is a protected folder"},
      {at("x/../Documents"), "~/x/../Documents isn't a plain absolute path"},
      {at("link"), "~/link is a symbolic link"},
      {at("link/treasure"), "~/link/treasure has a symbolic link on the way to it"},
      {treasure, treasure + " is outside your home folder"},
      {at("missing"), "missing does not exist"},
      {"", "isn't a plain absolute path"},
  };
  for (const auto& [path, reason] : cases) {
    const Outcome outcome = clean({"path", path, "--yes"});
    EXPECT_EQ(outcome.exitCode, 1) << path;
    EXPECT_THAT(outcome.err, HasSubstr(reason)) << path;
  }
  EXPECT_TRUE(fs::exists(at("Documents")));
  EXPECT_TRUE(fs::exists(treasure));
}

TEST_F(CleanTest, judgesAgainAfterTheAnswer) {
  if (!support::canMount() || !Program::canHaveTerminal())
    GTEST_SKIP() << "no mounts or no terminal to be had here";
  makeRepository({"fix"});
  fs::create_directory(at("fix/place"));
  EXPECT_TRUE(support::succeedsInChild([&] {
    if (!support::enterOwnMounts()) return false;
    const auto mountNow = [&] {
      mount(outside.path().c_str(), at("fix/place").c_str(), nullptr, MS_BIND, nullptr);
    };
    const Outcome outcome = program.runOnTerminal({"clean", "worktree", at("fix")}, "y", mountNow);
    return outcome.exitCode == 1 &&
           outcome.err.contains("~/fix has something else mounted in it, at ~/fix/place.");
  }));
  EXPECT_TRUE(fs::exists(treasure));
  // Spelled through another folder, it is still what the scan knows.
  write("x/file", 2'000'000);
  scan();
  EXPECT_THAT(clean({"path", at("x/."), "-y"}).out, says("Deleted x"));
  EXPECT_EQ(stored().nodeAt(at("x")), nullptr);
}

TEST_F(CleanTest, saysWhyAndWhatIsGoneInTheTerminalAndInJson) {
  fs::permissions(program.home().path(), fs::perms::all);
  write("item/locked/file", 10);
  constexpr auto mode =
      fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec;
  fs::permissions(at("item/locked"), mode);
  const Outcome outcome = program.runAsNobody({"clean", "path", at("item"), "--yes", "--json"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.err,
              HasSubstr("That didn't work: ~/item/locked/file lies in a folder that belongs to root"));
  const auto step = Json::parse(outcome.out)["steps"][0];
  EXPECT_EQ(step["failure"]["kind"], "needsFullDiskAccess");
  EXPECT_EQ(step["failure"]["path"], at("item/locked/file"));
  EXPECT_EQ(step["removed"]["items"], 0);
  EXPECT_EQ(fs::status(at("item/locked")).permissions(), mode);
  fs::permissions(at("item/locked"), fs::perms::owner_all);
}

TEST_F(CleanTest, emptiesTheTrashOfTheDesktop) {
  EXPECT_EQ(clean({"trash", "-y"}).out, "There is no Trash.\n");
  write(".local/share/Trash/files/old/thing", 2'000'000);
  write(".local/share/Trash/files/.hidden", 10);
  write(".local/share/Trash/info/old.trashinfo", 10);
  write(".local/share/Trash/expunged/1", 10);
  scan();
  EXPECT_NE(stored().nodeAt(at(".local/share/Trash")), nullptr);
  EXPECT_THAT(clean({"trash"}).out,
              AllOf(HasSubstr("Empty the Trash?\n"), HasSubstr("empty  ~/.local/share/Trash/files\n"),
                    HasSubstr("  old\n"), HasSubstr("empty  ~/.local/share/Trash/expunged\n")));
  const Outcome outcome = clean({"trash", "-y"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_THAT(outcome.out, says("Emptied the Trash"));
  for (const char* folder : {"files", "info", "expunged"}) {
    EXPECT_TRUE(fs::is_empty(at(".local/share/Trash/") + folder)) << folder;
  }
  EXPECT_EQ(stored().nodeAt(at(".local/share/Trash")), nullptr);
}

TEST_F(CleanTest, cleansCachesByTheirToolsOrByEmptyingThem) {
  write(".npm/_cacache/data", 60'000'000);
  write(".gradle/caches/jar", 60'000'000);
  write(".cargo/registry/cache/crate", 2'000'000);
  writeTool("npm", "echo \"$@\" >$HOME/said; rm -r $HOME/.npm/_cacache/*");
  scan();
  const Outcome shown = clean({"caches", "--dry-run"});
  EXPECT_THAT(shown.out,
              AllOf(HasSubstr("Clean up 2 caches?"), HasSubstr("empty  ~/.gradle/caches"),
                    HasSubstr("run    npm_config_cache=" + at(".npm") +
                              " npm cache clean --force  for ~/.npm/_cacache"),
                    HasSubstr("\nGradle caches: Permanently deletes everything inside ~/.gradle/caches. "),
                    HasSubstr("\nnpm cache: Runs `npm cache clean --force`. Downloaded again on demand\n"),
                    Not(HasSubstr("cargo"))));
  const Outcome outcome = clean({"caches", "-y"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Cleaned npm cache.\n"), HasSubstr("Cleaned Gradle caches.\n")));
  EXPECT_EQ(support::readText(at("said")), "cache clean --force\n");
  EXPECT_TRUE(fs::is_empty(at(".gradle/caches")));
  EXPECT_EQ(stored().nodeAt(at(".npm/_cacache")), nullptr);
  EXPECT_EQ(clean({"caches", "-y"}).out, "No cache is large enough to be worth cleaning.\n");
  // One that is named may be small.
  EXPECT_EQ(clean({"caches", "cargo", "-y"}).exitCode, 0);
  EXPECT_TRUE(fs::is_empty(at(".cargo/registry/cache")));
}

TEST_F(CleanTest, saysWhyACacheCannotBeCleaned) {
  EXPECT_THAT(clean({"caches", "npm", "-y"}).err, HasSubstr("no scan in the history yet"));
  write(".npm/_cacache/data", 2'000'000);
  writeTool("npm", "echo first >&2; echo no network >&2; exit 1");
  scan();
  EXPECT_THAT(clean({"caches", "npn", "-y"}).err, HasSubstr("no cache has the id \"npn\""));
  EXPECT_THAT(clean({"caches", "cargo", "-y"}).err, HasSubstr("cargo: not in the newest scan"));
  const Outcome failed = clean({"caches", "npm", "-y"});
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_EQ(failed.err, "spacemintctl: That didn't work: no network\n");
}

TEST_F(CleanTest, emptiesNoCacheThatBecameALink) {
  write(".gradle/caches/jar", 60'000'000);
  scan();
  fs::remove_all(at(".gradle/caches"));
  fs::create_directory_symlink(outside.path(), at(".gradle/caches"));
  const Outcome named = clean({"caches", "gradle", "-y"});
  EXPECT_EQ(named.exitCode, 1);
  EXPECT_THAT(named.err, HasSubstr("~/.gradle/caches is a symbolic link"));
  const Outcome all = clean({"caches", "-y"});
  EXPECT_THAT(all.err, HasSubstr("left out: Gradle caches: ~/.gradle/caches is a symbolic link"));
  EXPECT_TRUE(fs::exists(treasure));
}

TEST_F(CleanTest, deletesOneBackupAndNoOther) {
  const std::string backups = "Library/Application Support/MobileSync/Backup/";
  write(backups + "one/data", 2'000'000);
  write(backups + "two/data", 2'000'000);
  scan();
  EXPECT_THAT(clean({"backup", at("Library"), "-y"}).err, HasSubstr("no backup of the newest scan"));
  const Outcome outcome = clean({"backup", at(backups + "one"), "-y"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Delete this backup?"), HasSubstr("Other backups stay."),
                                 says("Deleted the backup of Unknown device")));
  EXPECT_FALSE(fs::exists(at(backups + "one")));
  EXPECT_TRUE(fs::exists(at(backups + "two")));
}

TEST_F(CleanTest, removesAWorktreeByGitAndAnOrphanByItself) {
  const std::string repository = makeRepository({"fix", "old"});
  std::ofstream(at("fix/new file"));
  const Outcome shown = clean({"worktree", at("fix"), "--dry-run"});
  EXPECT_THAT(shown.out,
              AllOf(HasSubstr("run  /usr/bin/git -c core.fsmonitor=false -c core.hooksPath=/dev/null -C " +
                              repository + " worktree remove --force " + at("fix") + "  for ~/fix\n"),
                    HasSubstr("It has 1 uncommitted change, which will be lost.")));
  EXPECT_EQ(clean({"worktree", at("fix/"), "-y"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(at("fix")) || fs::exists(repository + "/.git/worktrees/fix"));
  fs::remove_all(repository);
  const Outcome orphan = clean({"worktree", at("old"), "-y"});
  EXPECT_EQ(orphan.exitCode, 0) << orphan.err;
  EXPECT_THAT(orphan.out, AllOf(HasSubstr("delete  ~/old\n"), says("Removed old")));
  EXPECT_FALSE(fs::exists(at("old")));
  fs::create_directories(at("plain"));
  EXPECT_THAT(clean({"worktree", at("plain"), "-y"}).err, HasSubstr("not a git worktree"));
}

}  // namespace
}  // namespace spacemint
