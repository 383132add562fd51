// What the tools print and what they might print; git worktrees as git makes them, and folders that only
// pretend.

#include "core/analysis/DockerUsage.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/OllamaModels.h"
#include "core/analysis/SizeText.h"
#include "core/analysis/ToolState.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace spacemint::DevTools {
namespace {

using support::file;
using support::folder;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SizeText, isReadWithDecimalAndBinaryUnits) {
  const std::pair<const char*, std::optional<Bytes>> cases[]{
      {"1.5GiB", 1'610'612'736},
      {"512", 512},
      {"12 kB", 12'000},
      {" 4.7 GB ", 4'700'000'000},
      {"800MB (66%)", 800'000'000},
      {"0B", 0},
      {"2tb", 2'000'000'000'000},
      {"1KiB", 1'024},
      {"3MiBx", std::nullopt},
      {".5 KB", 500},
      {"1e3B", 1'000},
      {"+7B", 7},
      {"-5 B", -5},
      {"0.5", 1},
      {"3 PB", std::nullopt},
      {"1 TiB", std::nullopt},
      {"GB", std::nullopt},
      {"", std::nullopt},
      {"-", std::nullopt},
      {"inf", std::nullopt},
      {"nan B", std::nullopt},
      {"9223372036854775807", std::nullopt},  // rounds to 2^63
      {"9300000 TB", std::nullopt},
      {"1e400", std::nullopt},
  };
  for (const auto& [text, bytes] : cases) EXPECT_EQ(parseSize(text), bytes) << text;
}

TEST(DockerUsage, isReadLineByLine) {
  const char* output =
      R"~({"Active":"3","Reclaimable":"1.1GB (26%)","Size":"4.2GB","TotalCount":"12","Type":"Images"}

not JSON
[1]
{"Active":0,"Reclaimable":"0B","Size":"0B","TotalCount":"0","Type":"Containers"}
{"Active":"+1","Reclaimable":"-","Size":"3 PB","TotalCount":"N/A","Type":"Local Volumes","More":1}
{"Active":"0","Reclaimable":"-9000000 TB","Size":"-1B","TotalCount":"0","Type":"Build Cache"})~";
  const auto usage = parseDockerDF(output);
  EXPECT_THAT(usage,
              ElementsAre(DockerUsage{"Images", 12, 3, 4'200'000'000, 1'100'000'000},
                          DockerUsage{"Local Volumes", 0, 1, 0, 0}, DockerUsage{"Build Cache", 0, 0, 0, 0}));
  EXPECT_FALSE(usage[0].isVolumes());
  EXPECT_TRUE(usage[1].isVolumes());
  EXPECT_THAT(parseDockerDF(""), IsEmpty());
}

TEST(DockerUsage, tellsASilentServiceFromAnError) {
  for (const char* text :
       {"Cannot connect to the Docker daemon at unix:///var/run/docker.sock. Is the docker "
        "daemon running?",
        "dial tcp 127.0.0.1:2375: connect: Connection Refused", "DAEMON IS NOT RUNNING",
        "failed to connect to the docker API at unix:///var/run/docker.sock",
        "error: No such file or directory (os error 2)"}) {
    EXPECT_TRUE(isConnectionError(text)) << text;
  }
  for (const char* text : {"", "permission denied while trying to reach the Docker daemon socket"}) {
    EXPECT_FALSE(isConnectionError(text)) << text;
  }
}

TEST(OllamaModels, areReadFromTheirColumns) {
  EXPECT_THAT(parseOllamaList("NAME                ID              SIZE      MODIFIED       \n"
                              "llama3.2:latest     a80c4f17acd5    2.0 GB    3 weeks ago    \n"
                              "\n"
                              "qwen2.5:0.5b        a8b0c5157701    397 MB    About an hour ago\n"
                              "cloud:latest        569662207105    -         2 days ago\n"
                              "odd:latest          a8b0c5157702    -4 GB     2 days ago\n"
                              "short line\n"
                              "mistral:7b          f974a74358d6    4.1 GB    5 months ago"),
              ElementsAre(OllamaModel{"mistral:7b", 4'100'000'000, "5 months ago"},
                          OllamaModel{"llama3.2:latest", 2'000'000'000, "3 weeks ago"},
                          OllamaModel{"qwen2.5:0.5b", 397'000'000, "About an hour ago"}));
  EXPECT_THAT(parseOllamaList("NAME  ID  SIZE  MODIFIED\n"), IsEmpty());
  EXPECT_THAT(parseOllamaList(""), IsEmpty());
}

TEST(HuggingFace, readsTheNamesOfTheHubsFolders) {
  const std::pair<const char*, std::optional<HuggingFaceRepository>> cases[]{
      {"models--meta-llama--Llama-3-8B", {{"meta-llama/Llama-3-8B", "Model"}}},
      {"models--gpt2", {{"gpt2", "Model"}}},
      {"datasets--a--b--c", {{"a/b/c", "Dataset"}}},
      {"spaces--a--b", {{"a/b", "Space"}}},
      {"models--", {{"", "Model"}}},
      {"models", std::nullopt},
      {"weights--a", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [name, repository] : cases) EXPECT_EQ(parseHuggingFaceFolder(name), repository) << name;
  const HuggingFaceItem deep{.repo = "a/b/c", .kind = "Dataset", .path = "/x"};
  EXPECT_EQ(deep.name(), "c");
  EXPECT_EQ(deep.owner(), "a/b");
  const HuggingFaceItem plain{.repo = "gpt2", .kind = "Model", .path = "/x"};
  EXPECT_EQ(plain.name(), "gpt2");
  EXPECT_EQ(plain.owner(), std::nullopt);
}

TEST(HuggingFace, listsRepositoriesAndOtherFoldersOfTheCache) {
  const Node cache =
      folder("huggingface",
             {folder("hub", {folder("models--gpt2", {file("b", 50)}), folder(".locks", {file("b", 90)}),
                             folder("odd", {file("b", 20)}), file("version.txt", 10)}),
              folder("xet", {file("b", 30)}), file("token", 1)});
  const Snapshot scan{.root = folder("/home/ann", {folder(".cache", {cache})})};
  const std::string at = "/home/ann/.cache/huggingface/";
  EXPECT_THAT(huggingFace({.in = scan, .home = "/home/ann"}),
              ElementsAre(HuggingFaceItem{"gpt2", "Model", at + "hub/models--gpt2", 50},
                          HuggingFaceItem{"xet", "Cache folder", at + "xet", 30},
                          HuggingFaceItem{"hub/odd", "Cache folder", at + "hub/odd", 20}));
  EXPECT_THAT(huggingFace({.in = scan, .home = "/home/bob"}), IsEmpty());
  // The hub can lie apart from the rest.
  const Snapshot moved{.root =
                           folder("/home/ann", {folder("hub", {folder("models--gpt2", {file("b", 50)})})})};
  const auto environment = [](const std::string& name) {
    return name == "HF_HUB_CACHE" ? std::optional<std::string>{"/home/ann/hub"} : std::nullopt;
  };
  EXPECT_THAT(huggingFace({.in = moved, .home = "/home/ann", .environment = environment}),
              ElementsAre(HuggingFaceItem{"gpt2", "Model", "/home/ann/hub/models--gpt2", 50}));
}

TEST(ToolState, followsFromTheAnswer) {
  using Kind = ToolState<std::string>::Kind;
  const auto parse = [](std::string_view text) { return std::string{text}; };
  const auto state = [&](std::optional<ToolAnswer> answer) { return toolState(answer, parse); };
  EXPECT_EQ(state(std::nullopt).kind, Kind::notInstalled);
  EXPECT_EQ(state(ToolAnswer{.output = "rows"}), (ToolState<std::string>{Kind::ready, "rows", ""}));
  EXPECT_EQ(state(ToolAnswer{.status = 1, .error = "Cannot connect to the Docker daemon"}).kind,
            Kind::notRunning);
  EXPECT_EQ(state(ToolAnswer{.output = "rows", .timedOut = true}).kind, Kind::notRunning);
  EXPECT_EQ(state(ToolAnswer{.status = 1, .error = "warning\npermission denied \t\n\n"}),
            (ToolState<std::string>{Kind::failed, "", "permission denied"}));
}

TEST(ToolState, namesTheLastLineThatSaysSomething) {
  EXPECT_EQ(lastLine("\n\n a word  \n \t\n"), "a word");
  EXPECT_EQ(lastLine(""), "Unknown error");
  EXPECT_EQ(lastLine(" \n"), "Unknown error");
}

namespace fs = std::filesystem;
using GitWorktrees::inspect;

// A repository "main" with one commit.
class GitWorktreesTest : public testing::Test {
 protected:
  GitWorktreesTest() {
    git({"init", "-q", "-b", "trunk", at / "main"});
    git({"-C", at / "main", "commit", "-q", "--allow-empty", "-m", "first"});
  }

  void git(const std::vector<std::string>& arguments) const {
    std::string command =
        "GIT_CONFIG_GLOBAL=/dev/null git -c user.name=Ann -c user.email=ann@example.org -c "
        "protocol.file.allow=always";
    for (const std::string& argument : arguments) command += " '" + argument + "'";
    ASSERT_EQ(std::system((command + " 2>/dev/null").c_str()), 0) << command;
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
}  // namespace spacemint::DevTools
