// Worktrees as git itself makes them, and folders that only pretend.

#include "core/analysis/GitWorktrees.h"

#include "core/scan/DiskScanner.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using GitWorktrees::inspect;
using support::file;
using support::folder;
using testing::ElementsAre;

// A repository "main" with one commit.
class GitWorktreesTest : public testing::Test {
 protected:
  GitWorktreesTest() {
    git({"init", "-q", "-b", "trunk", at / "main"});
    git({"-C", at / "main", "commit", "-q", "--allow-empty", "-m", "first"});
  }

  void git(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"git", "-c", "user.name=Ann", "-c", "user.email=ann@example.org",
                                         "-c", "protocol.file.allow=always"});
    const bool done = support::succeedsInChild([&] {
      setenv("GIT_CONFIG_GLOBAL", "/dev/null", 1);
      dup2(open("/dev/null", O_WRONLY), 2);
      std::vector<char*> words;
      for (std::string& argument : arguments) words.push_back(argument.data());
      words.push_back(nullptr);
      execvp("git", words.data());
      return false;
    });
    ASSERT_TRUE(done) << testing::PrintToString(arguments);
  }

  std::string worktree(const std::string& name, const std::string& branch = "feature") const {
    git({"-C", at / "main", "worktree", "add", "-q", "-b", branch, at / name});
    return at / name;
  }

  std::string write(const std::string& name, const std::string& text) const {
    fs::create_directories(fs::path(at / name).parent_path());
    std::ofstream(at / name) << text;
    return at / name;
  }

  support::TemporaryFolder at;
};

TEST_F(GitWorktreesTest, tellsRepositoryBranchAndLastUse) {
  const std::string path = worktree("feature", "fix/login");
  const auto found = inspect(path, 42);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->path, path);
  EXPECT_EQ(found->name(), "feature");
  EXPECT_EQ(found->size, 42);
  EXPECT_EQ(found->repository, "main");
  EXPECT_EQ(found->repositoryPath, at / "main");
  EXPECT_EQ(found->branch, "fix/login");
  EXPECT_FALSE(found->isOrphaned);
  ASSERT_TRUE(found->lastUsed);

  struct timespec times[2]{{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = 2'000'000'000, .tv_nsec = 0}};
  const std::string administrative = at / "main/.git/worktrees/feature/";
  ASSERT_EQ(utimensat(AT_FDCWD, (administrative + "index").c_str(), times, 0), 0);
  EXPECT_EQ(inspect(path, 42)->lastUsed, dateFromUnixSeconds(2'000'000'000));
  fs::remove(administrative + "index");
  fs::remove(administrative + "HEAD");
  EXPECT_EQ(inspect(path, 42)->lastUsed, std::nullopt);
  EXPECT_EQ(inspect(path, 42)->branch, std::nullopt);
}

TEST_F(GitWorktreesTest, tellsADetachedCommitByItsFirstCharacters) {
  git({"-C", at / "main", "worktree", "add", "-q", "--detach", at / "detached"});
  std::ifstream head(at / "main/.git/worktrees/detached/HEAD");
  std::string commit;
  head >> commit;
  ASSERT_EQ(commit.size(), 40U);
  EXPECT_EQ(inspect(at / "detached", 1)->branch, commit.substr(0, 7));
}

TEST_F(GitWorktreesTest, followsRelativePathsAsNewerVersionsOfGitWriteThem) {
  const std::string path = worktree("feature");
  write("feature/.git", "gitdir: ../main/.git/worktrees/feature\n");
  write("main/.git/worktrees/feature/gitdir", "../../../../feature/.git\n");
  EXPECT_EQ(inspect(path, 1)->repositoryPath, at / "main");
}

TEST_F(GitWorktreesTest, calledThroughALinkIsTheSameWorktree) {
  worktree("feature");
  fs::create_directory_symlink(at.path(), at / "link");
  EXPECT_EQ(inspect(at / "link/feature", 1)->repository, "main");
}

TEST_F(GitWorktreesTest, isAnOrphanOnceItsRepositoryForgotIt) {
  const std::string path = worktree("feature");
  fs::remove_all(at / "main/.git/worktrees/feature");
  const auto found = inspect(path, 42);
  ASSERT_TRUE(found);
  EXPECT_EQ(*found, (GitWorktree{.path = path, .size = 42, .isOrphaned = true}));
  EXPECT_TRUE(found->isOld(dateFromUnixSeconds(0), 30));
}

TEST_F(GitWorktreesTest, isNoOrphanWhereOnlyTheLookIsForbidden) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  const std::string path = worktree("feature");
  fs::permissions(at.path(), fs::perms::all);
  fs::permissions(at / "main", fs::perms::none);
  EXPECT_TRUE(support::succeedsInChild([&] { return support::becomeNobody() && !inspect(path, 1); }));
  fs::permissions(at / "main", fs::perms::owner_all);
  EXPECT_TRUE(inspect(path, 1));
}

TEST_F(GitWorktreesTest, ofABareRepositoryIsNotOneOfThese) {
  git({"clone", "-q", "--bare", at / "main", at / "bare.git"});
  git({"-C", at / "bare.git", "worktree", "add", "-q", "-b", "x", at / "ofBare"});
  EXPECT_FALSE(inspect(at / "ofBare", 1));
}

TEST_F(GitWorktreesTest, isNoSubmodule) {
  git({"-C", at / "main", "submodule", "--quiet", "add", at / "main", "part"});
  ASSERT_TRUE(fs::is_regular_file(at / "main/part/.git"));
  EXPECT_FALSE(inspect(at / "main/part", 1));
}

TEST_F(GitWorktreesTest, isNoCopyOfAnotherOne) {
  const std::string path = worktree("feature");
  fs::copy(path, at / "copy", fs::copy_options::recursive);
  EXPECT_FALSE(inspect(at / "copy", 1));
  EXPECT_TRUE(inspect(path, 1));
  // Nor does a whole repository that was copied own the worktrees of the first.
  fs::copy(at / "main", at / "main2", fs::copy_options::recursive);
  write("liar/.git", "gitdir: " + at / "main2/.git/worktrees/feature");
  EXPECT_FALSE(inspect(at / "liar", 1));
}

TEST_F(GitWorktreesTest, isNothingThatOnlyPretends) {
  const std::string real = worktree("feature");
  const std::string administrative = at / "main/.git/worktrees/feature/";
  const std::string path = at / "pretender";
  fs::create_directory(path);
  const std::pair<const char*, std::string> gitFiles[]{
      {"empty", ""},
      {"no gitdir", "worktree: /x\n"},
      {"empty gitdir", "gitdir:  \t\n"},
      {"too short", "gitdir: /worktrees/x"},
      {"elsewhere", "gitdir: /etc/worktrees/x"},
      {"a submodule's", "gitdir: /home/ann/.git/modules/x"},
      {"not below .git", "gitdir: /home/ann/git/worktrees/x"},
      {"the folder of worktrees", "gitdir: " + at / "main/.git/worktrees"},
      {"huge", "gitdir: " + administrative + std::string(1'000'000, '/')},
      {"a million lines", std::string(1'000'000, '\n') + "gitdir: " + administrative},
  };
  for (const auto& [what, text] : gitFiles) {
    write("pretender/.git", text);
    EXPECT_FALSE(inspect(path, 1)) << what;
  }
  fs::remove(path + "/.git");
  ASSERT_EQ(mkfifo((path + "/.git").c_str(), 0600), 0);
  EXPECT_FALSE(inspect(path, 1));
  fs::remove(path + "/.git");
  fs::create_symlink(".git", path + "/.git");
  EXPECT_FALSE(inspect(path, 1));

  // A worktree whose administrative files are not what they should be.
  for (const char* name : {"gitdir", "commondir"}) {
    const std::string kept = administrative + name + ".kept";
    fs::rename(administrative + name, kept);
    EXPECT_FALSE(inspect(real, 1)) << name << " missing";
    ASSERT_EQ(mkfifo((administrative + name).c_str(), 0600), 0);
    EXPECT_FALSE(inspect(real, 1)) << name << " is a pipe";
    fs::remove(administrative + name);
    fs::create_symlink(name, administrative + name);
    EXPECT_FALSE(inspect(real, 1)) << name << " is a loop";
    fs::remove(administrative + name);
    write("main/.git/worktrees/feature/" + std::string{name}, "/proc/self/root/etc\n");
    EXPECT_FALSE(inspect(real, 1)) << name << " leads outside";
    fs::rename(kept, administrative + name);
    EXPECT_TRUE(inspect(real, 1));
  }
}

TEST_F(GitWorktreesTest, isFoundAmongTenThousandThatAreGoneSinceTheScan) {
  worktree("feature");
  auto scan = DiskScanner::scan({.root = at.path()});
  ASSERT_TRUE(scan);
  for (int i = 0; i < 10'000; ++i) {
    scan->root.children.push_back({.name = std::to_string(i), .isDirectory = true, .isWorktree = true});
  }
  const auto found = GitWorktrees::find({.in = {.root = std::move(scan->root)}});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().path, at / "feature");
}

TEST(GitWorktrees, areLookedForFromTheMinimumUpAndNotInsideEachOther) {
  const auto marked = [](Node node) {
    node.isWorktree = true;
    return node;
  };
  const Node inner = marked(folder("inner", {file("f", 300)}));
  const Snapshot scan{
      .root = folder("/System/Volumes/Data", {marked(folder("a", {file("f", 100)})),
                                              marked(folder("b", {file("f", 99), folder("in", {})})),
                                              folder("c", {marked(folder("d", {inner}))})})};
  std::vector<std::string> asked;
  const auto found =
      GitWorktrees::find({.in = scan, .minimum = 100, .inspect = [&](const std::string& path, Bytes size) {
                            asked.push_back(path);
                            return std::optional{GitWorktree{.path = path, .size = size}};
                          }});
  EXPECT_THAT(asked, ElementsAre("/c/d", "/a"));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found.front().size, 300);
}

TEST(GitWorktrees, understandGitsFiles) {
  using GitWorktrees::parseBranch;
  using GitWorktrees::parseGitdir;
  EXPECT_EQ(parseGitdir("gitdir: ../main/.git/worktrees/feature\n", "/code/feature"),
            "/code/main/.git/worktrees/feature");
  EXPECT_EQ(parseGitdir("# a comment\ngitdir:\t/abs/./x \n", "/work"), "/abs/./x");
  EXPECT_EQ(parseGitdir(" gitdir: /x", "/work"), std::nullopt);
  EXPECT_EQ(parseBranch("ref: refs/heads/fix/login\n"), "fix/login");
  EXPECT_EQ(parseBranch("ref: refs/remotes/origin/main\n"), std::nullopt);
  EXPECT_EQ(parseBranch("0123456789abcdef\n"), "0123456");
  EXPECT_EQ(parseBranch("012345"), std::nullopt);
}

TEST(GitWorktrees, areOldAfterTheDaysAndNotOnTheDay) {
  const Date used = dateFromUnixSeconds(1'700'000'000);
  const GitWorktree worktree{.path = "/w", .lastUsed = used};
  EXPECT_FALSE(worktree.isOld(used + std::chrono::days{30}, 30));
  EXPECT_TRUE(worktree.isOld(used + std::chrono::days{30} + std::chrono::seconds{1}, 30));
  EXPECT_FALSE((GitWorktree{.path = "/w"}).isOld(used, 30));
}

}  // namespace
}  // namespace spacemint
