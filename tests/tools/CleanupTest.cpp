// The clean-up engine against real files, git and tools: what was shown goes, or nothing goes and the reason
// is said. Both programs call this engine, so its attacks are tried here only.

#include "Spacemint/tools/ToolRuns.h"
#include "core/cleanup/CleanupText.h"
#include "support/Files.h"
#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cstdlib>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::readText;
using support::TemporaryFolder;
using support::writeText;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Everything below a folder: names, kinds, modes, links and contents.
std::string listing(const std::string& folder) {
  std::vector<std::string> rows;
  for (const auto& entry : fs::recursive_directory_iterator{folder}) {
    struct stat status {};
    lstat(entry.path().c_str(), &status);
    std::string row = entry.path().string() + " " + std::to_string(status.st_mode) + " ";
    if (S_ISREG(status.st_mode)) row += std::to_string(status.st_nlink) + " " + readText(entry.path());
    if (S_ISLNK(status.st_mode)) row += fs::read_symlink(entry.path()).string();
    rows.push_back(row);
  }
  std::ranges::sort(rows);
  std::string text;
  for (const std::string& row : rows) text += row + '\n';
  return text;
}

class CleanupTest : public testing::Test {
 protected:
  CleanupTest() {
    makeHome();
    writeText(outside / "treasure");
    writeText(outside / "junk/treasure");
    ToolRuns{Shell{std::vector{folder / "bin"}}}.serve(context);
  }

  void makeHome() const {
    fs::remove_all(home);
    for (const char* name : {"Documents/letter", "junk/file", "way/junk/file", "cache/file"}) {
      writeText(at(name));
    }
    for (const char* name : {"files/old", "info/old.trashinfo", "expunged/1"}) {
      writeText(trash.folder + "/" + name);
    }
  }

  std::string at(std::string_view name) const { return home + "/" + std::string{name}; }

  // A tool that writes its arguments down, and does `script`.
  void addTool(const std::string& name, const std::string& script) const {
    support::writeProgram(folder / ("bin/" + name), "echo \"$@\" >> " + (folder / "said") + "\n" + script);
  }
  std::string said() const { return readText(folder / "said"); }

  static DevTools::FoundCleanup cache(std::string_view id, const std::string& path) {
    return {&*std::ranges::find(cleanupTargets, id, &CleanupTarget::id), path, 60'000'000};
  }

  void git(const std::string& command) const {
    const std::string line = "cd " + home +
                             " && git -c init.defaultBranch=main -c user.name=a -c user.email=a@b.c " +
                             command + " >/dev/null 2>&1";
    ASSERT_EQ(std::system(line.c_str()), 0) << line;
  }
  // The worktree "wt" of the repository "shop", which has one file.
  GitWorktree makeWorktree() const {
    git("init shop");
    writeText(at("shop/a"));
    git("-C shop add a");
    git("-C shop commit -m a");
    git("-C shop worktree add ../wt");
    return *GitWorktrees::inspect(at("wt"), 0);
  }

  CleanupPlan plan(const CleanupRequest& request) const {
    auto planned = planCleanup(request, context, Date{});
    EXPECT_TRUE(planned) << planned.error().message;
    return planned.value_or(CleanupPlan{});
  }
  std::string refusal(const CleanupRequest& request) const {
    const auto planned = planCleanup(request, context, Date{});
    return planned ? "" : planned.error().message;
  }
  // Carries a plan out and returns what is said of it.
  std::string outcome(const CleanupPlan& planned) const {
    return CleanupText::outcome(planned, Cleanup::carryOut(planned, context), context);
  }

  static bool bind(const std::string& from, const std::string& to) {
    fs::create_directories(to);
    return mount(from.c_str(), to.c_str(), nullptr, MS_BIND, nullptr) == 0;
  }

  TemporaryFolder folder;
  TemporaryFolder outside;
  const std::string home = folder / "home";
  const TrashPlace trash = trashPlace(nullptr, home, home + "/.local/share");
  const std::unique_ptr<TrashCan> trashCan = hostTrash();
  CleanupContext context{.guard = DeletionGuard{home, {home + "/Dokumente"}},
                         .data = home + "/.local/share",
                         .locale = "en_US",
                         .trash = trashCan.get(),
                         .freeBytes = [] { return std::nullopt; }};
};

TEST_F(CleanupTest, refusesToPlanWhatTheGuardRefuses) {
  fs::create_directory_symlink(outside.path(), at("link"));
  fs::create_directories(at("Dokumente"));
  fs::create_directory_symlink(at("Documents"), at("uv"));
  const auto remove = [&](const std::string& path) {
    return CleanupRequest{DeleteRequest{path, "x", 0, ""}};
  };
  const std::pair<CleanupRequest, std::string> cases[]{
      {remove(at("Documents")), "~/Documents is a protected folder"},
      {remove(at("/./Documents/.")), "~//./Documents/. is a protected folder"},
      {remove(at("Dokumente/")), "~/Dokumente/ is a protected folder"},
      {remove(at("junk/../Documents")), "~/junk/../Documents isn't a plain absolute path"},
      {remove(at("link")), "~/link is a symbolic link"},
      {remove(outside / "junk"), outside / "junk is outside your home folder"},
      {TrashRequest{home, 0}, "~ is a protected folder"},
      {DeviceBackup{.path = at("Documents")}, "~/Documents is a protected folder"},
      {GitWorktree{.path = at("Documents")}, "~/Documents is a protected folder"},
      // A variable may have moved a cache anywhere, and a link may lead there.
      {cache("gradle", at("Documents")), "~/Documents is a protected folder"},
      {cache("gradle", outside.path()), outside.path() + " is outside your home folder"},
      {cache("uv", at("Documents")), "~/Documents is a protected folder"},
      {cache("uv", at("uv")), "~/Documents is a protected folder"},
      {cache("uv", at("a,b")), "~/a,b has a name that `uv` does not take"},
  };
  for (const auto& [request, message] : cases) EXPECT_EQ(refusal(request), message);
  EXPECT_EQ(plan(cache("uv", outside.path())).steps.size(), 1U) << "a tool's own cache may lie elsewhere";
}

// What happens between the question and the answer.
struct Attack {
  const char* name;
  std::function<CleanupRequest()> request;
  std::function<void()> meddle;
  const char* message;
};

TEST_F(CleanupTest, leavesAloneWhatTookAnItemsPlaceWhileTheQuestionStood) {
  addTool("uv", "rm -rf \"$UV_CACHE_DIR\"/*");
  const auto replace = [&](const std::string& name) {
    fs::rename(at(name), at(name) + " moved");
    writeText(at(name) + "/precious");
  };
  const auto linkOutside = [&](const std::string& name) {
    fs::rename(at(name), at(name) + " moved");
    fs::create_directory_symlink(outside.path(), at(name));
  };
  const auto remove = [&](const char* name) {
    return [&, name] { return CleanupRequest{DeleteRequest{at(name), "junk", 0, ""}}; };
  };
  const auto emptyTrash = [&] { return CleanupRequest{EmptyTrashRequest{trash}}; };
  const auto removeWorktree = [&] { return CleanupRequest{makeWorktree()}; };
  const Attack attacks[]{
      {"another folder", remove("junk"), [&] { replace("junk"); }, "~/junk is no longer what it was"},
      {"a link", remove("junk"), [&] { linkOutside("junk"); }, "~/junk is a symbolic link"},
      {"a link on the way", remove("way/junk"), [&] { linkOutside("way"); },
       "has a symbolic link on the way"},
      {"gone", remove("junk"), [&] { fs::rename(at("junk"), at("kept")); }, "~/junk does not exist"},
      {"an item where there was none", remove("later"), [&] { writeText(at("later")); },
       "~/later is no longer what it was"},
      {"another Trash", emptyTrash, [&] { replace(".local/share/Trash/files"); }, "is no longer what it was"},
      {"a linked Trash", emptyTrash, [&] { linkOutside(".local/share/Trash/files"); }, "is a symbolic link"},
      {"another item to keep",
       [&] {
         return CleanupRequest{TrashRequest{at("junk"), 0}};
       },
       [&] { replace("junk"); }, "~/junk is no longer what it was"},
      {"another cache", [&] { return CleanupRequest{cache("gradle", at("junk"))}; }, [&] { replace("junk"); },
       "~/junk is no longer what it was"},
      {"a tool's cache that leads elsewhere", [&] { return CleanupRequest{cache("uv", at("uv"))}; },
       [&] {
         fs::remove(at("uv"));
         fs::create_directory_symlink(outside.path(), at("uv"));
       },
       "~/uv is no longer what it was"},
      {"a new file in a worktree", removeWorktree, [&] { writeText(at("wt/new")); },
       "has changes that were not shown"},
      {"another worktree", removeWorktree,
       [&] {
         fs::rename(at("wt"), at("away"));
         git("-C shop worktree add -f ../wt HEAD");
       },
       "is no longer what it was"},
      {"a repository in a worktree", removeWorktree,
       [&] {
         writeText(at("wt/.gitignore"), "*");
         git("init wt/lib");
       },
       "has changes that were not shown"},
  };
  for (const Attack& attack : attacks) {
    makeHome();
    fs::create_directory_symlink(at("cache"), at("uv"));
    const CleanupPlan planned = plan(attack.request());
    attack.meddle();
    const std::string before = listing(folder.path()) + listing(outside.path());
    EXPECT_THAT(outcome(planned), HasSubstr(attack.message)) << attack.name;
    EXPECT_EQ(listing(folder.path()) + listing(outside.path()), before) << attack.name;
  }
  EXPECT_EQ(said(), "") << "no tool was run";
}

TEST_F(CleanupTest, endsBeforeItEmptiesWhatIsMountedWhileTheQuestionStood) {
  if (!support::canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  addTool("uv", "rm -rf \"$UV_CACHE_DIR\"/*");
  writeText(at("uv/file"));
  const std::pair<CleanupRequest, std::string> cases[]{
      {DeleteRequest{at("junk"), "junk", 0, ""}, at("junk/place")},
      {cache("gradle", at("junk")), at("junk/place")},
      {cache("uv", at("uv")), at("uv/place")},
      {makeWorktree(), at("wt/place")},
      {EmptyTrashRequest{trash}, trash.folder + "/files/place"},
  };
  for (const auto& [request, place] : cases) {
    EXPECT_TRUE(support::succeedsInChild([&] {
      if (!support::enterOwnMounts()) return false;
      const CleanupPlan planned = plan(request);
      if (!bind(outside.path(), place)) return false;
      const std::string reason = "has something else mounted in it";
      // A worktree is not even searched, and a tool is not offered.
      const bool isRefused = !planned.steps.front().runsCommand() || refusal(request).contains(reason);
      return isRefused && outcome(planned).contains(reason);
    })) << place;
    EXPECT_EQ(readText(outside / "treasure"), "text") << place;
    EXPECT_EQ(readText(outside / "junk/treasure"), "text") << place;
  }
  EXPECT_EQ(said(), "");
  EXPECT_TRUE(fs::exists(at("wt/a")));
}

TEST_F(CleanupTest, removesWhatWasShownAndCountsIt) {
  fs::create_hard_link(outside / "treasure", at("junk/same"));
  fs::create_hard_link(at("junk/file"), at("junk/twin"));
  fs::create_directory_symlink(outside.path(), at("junk/link"));
  writeText(at("junk/\xff name\n"));
  const std::string before = listing(outside / "junk") + readText(outside / "treasure");
  const CleanupPlan planned = plan(DeleteRequest{at("junk"), "junk", 0, ""});
  const CleanupReport report = Cleanup::carryOut(planned, context);
  EXPECT_EQ(CleanupText::outcome(planned, report, context), "Deleted junk.");
  EXPECT_FALSE(fs::exists(at("junk")));
  EXPECT_EQ(report.removed().items, 6);
  struct stat status {};
  stat((outside / "treasure").c_str(), &status);
  // The file, its twin and the odd name take a block each; half of the treasure's counts here.
  EXPECT_EQ(report.removed().bytes, status.st_blocks * 512 * 5 / 2);
  EXPECT_EQ(listing(outside / "junk") + readText(outside / "treasure"), before);
}

TEST_F(CleanupTest, emptiesTheTrashInOrderAndKeepsWhatIsNeededToRestoreTheRest) {
  writeText(trash.folder + "/files/locked/file");
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_TRUE(support::succeedsInChild([&] {
    for (const auto& entry : fs::recursive_directory_iterator{home}) {
      if (lchown(entry.path().c_str(), 65534, 65534) != 0 && geteuid() == 0) return false;
    }
    fs::permissions(home, fs::perms::all);
    if (!support::becomeNobody()) return false;
    fs::permissions(trash.folder + "/files/locked", fs::perms::owner_read | fs::perms::owner_exec);
    const CleanupPlan planned = plan(EmptyTrashRequest{trash});
    const CleanupReport report = Cleanup::carryOut(planned, context);
    fs::permissions(trash.folder + "/files/locked", fs::perms::owner_all);
    const std::string text = CleanupText::outcome(planned, report, context);
    return text.starts_with(
               "That didn't work: ~/.local/share/Trash/files/locked/file lies in a folder that has "
               "insufficient permissions (mode 500)") &&
           report.steps.size() == 1 && fs::exists(trash.folder + "/info/old.trashinfo") &&
           fs::exists(trash.folder + "/expunged/1") &&
           text.ends_with("gone already.") != fs::exists(trash.folder + "/files/old");
  }));
  EXPECT_EQ(outcome(plan(EmptyTrashRequest{trash})), "Emptied the Trash.");
  for (const char* name : {"/files", "/info", "/expunged"}) EXPECT_TRUE(fs::is_empty(trash.folder + name));
}

TEST_F(CleanupTest, aToolCleansTheVeryFolderThatWasShown) {
  // Each tool would clean another folder by its own settings.
  const struct {
    const char* id;
    const char* tool;
    const char* path;
    const char* variable;
    const char* value;
  } cases[]{{"uv", "uv", "caches/uv", "UV_CACHE_DIR", "caches/uv"},
            {"npm", "npm", "caches/npm/_cacache", "npm_config_cache", "caches/npm"},
            {"gomod", "go", "gopath/pkg/mod", "GOMODCACHE", "gopath/pkg/mod"},
            {"pnpm-xdg", "pnpm", "store", "npm_config_store_dir", "store"}};
  setenv("XDG_CACHE_HOME", outside.path().c_str(), 1);
  setenv("NPM_CONFIG_CACHE", outside.path().c_str(), 1);
  for (const auto& c : cases) {
    addTool(c.tool, "/usr/bin/env | /bin/grep -i " + std::string{c.variable} + "= >> " + (folder / "said"));
    writeText(at(c.path) + "/file");
    EXPECT_THAT(outcome(plan(cache(c.id, at(c.path)))), StartsWith("Cleaned ")) << c.id;
    EXPECT_THAT(said(), testing::EndsWith("\n" + std::string{c.variable} + "=" + at(c.value) + "\n")) << c.id;
  }
  unsetenv("XDG_CACHE_HOME");
  unsetenv("NPM_CONFIG_CACHE");
}

TEST_F(CleanupTest, gitLosesOnlyTheChangesThatWereCounted) {
  const GitWorktree worktree = makeWorktree();
  const auto warning = [&] { return plan(worktree).warning; };
  EXPECT_EQ(plan(worktree).note, "Runs `git worktree remove`. The branch and its commits stay in shop.");
  EXPECT_EQ(warning(), "");
  // What the environment says of another repository never reaches git.
  setenv("GIT_DIR", at("shop/.git").c_str(), 1);
  setenv("GIT_WORK_TREE", at("Documents").c_str(), 1);
  EXPECT_EQ(warning(), "");
  unsetenv("GIT_DIR");
  unsetenv("GIT_WORK_TREE");
  // A repository's filters are programs, and counting starts none.
  git("-C shop config filter.x.clean 'touch " + at("filtered") + "; cat'");
  git("-C shop config filter.x.required true");
  writeText(at("shop/.git/info/attributes"), "* filter=x");
  writeText(at("wt/a"), "other");
  EXPECT_EQ(warning(), "It has 1 uncommitted change, which will be lost.");
  EXPECT_FALSE(fs::exists(at("filtered")));
  fs::remove(at("shop/.git/info/attributes"));
  // Other worktrees and repositories in it go with it, also where git ignores them.
  git("-C shop worktree add ../wt/inner");
  writeText(at("wt/inner/new"));
  writeText(at("shop/.git/info/exclude"), "lib");
  git("init wt/lib");
  EXPECT_EQ(warning(),
            "It has 2 uncommitted changes, which will be lost. It contains the worktree inner (1 uncommitted "
            "change), the repository lib (0 uncommitted changes), which will be lost too.");
  EXPECT_EQ(outcome(plan(worktree)), "Removed wt.");
  EXPECT_FALSE(fs::exists(at("wt")));
  EXPECT_TRUE(fs::exists(at("shop/a")));
}

TEST_F(CleanupTest, aLockedWorktreeStaysAndAnOrphanIsDeleted) {
  const GitWorktree worktree = makeWorktree();
  git("-C shop worktree lock --reason 'on a stick' ../wt");
  EXPECT_EQ(outcome(plan(worktree)),
            "That didn't work: fatal: cannot remove a locked working tree, lock reason: on a stick");
  fs::remove_all(at("shop"));
  const CleanupPlan planned = plan(*GitWorktrees::inspect(at("wt"), 0));
  EXPECT_EQ(planned.note, "Its repository no longer knows about it, so the folder is simply deleted.");
  EXPECT_EQ(outcome(planned), "Removed wt.");
}

TEST_F(CleanupTest, stopsAtTheNextEntryAndSaysWhatIsLeft) {
  for (int i = 0; i < 100; ++i) writeText(at("many/" + std::to_string(i)));
  CleanupPlan planned = plan(DeleteRequest{at("many"), "many", 900'000, ""});
  const CleanupReport report =
      Cleanup::carryOut(planned, context, [](const Removed& soFar) { return soFar.items < 10; });
  EXPECT_EQ(report.removed().items, 10);
  EXPECT_EQ(support::namesIn(at("many")).size(), 90U);
  EXPECT_THAT(CleanupText::outcome(planned, report, context), StartsWith("Stopped. 10 items ("));
  EXPECT_THAT(CleanupText::outcome(planned, report, context), testing::EndsWith(" are left."));
  // A tool is stopped too.
  addTool("uv", "exec /bin/sleep 600");
  writeText(at("uv/file"));
  planned = plan(cache("uv", at("uv")));
  int asked = 0;
  EXPECT_THAT(
      CleanupText::outcome(
          planned, Cleanup::carryOut(planned, context, [&](const Removed&) { return ++asked < 3; }), context),
      StartsWith("Stopped. "));
}

TEST_F(CleanupTest, plansThatTouchEachOtherDoNotRunAtOnce) {
  const auto touch = [](const std::string& one, const std::string& other) {
    return Cleanup::touchEachOther({.id = "a", .title = "", .steps = {{.path = one}}},
                                   {.id = "b", .title = "", .steps = {{.path = other}}});
  };
  fs::create_directory_symlink(at("way"), at("link"));
  EXPECT_TRUE(touch(at("way"), at("way/junk")));
  EXPECT_TRUE(touch(at("way/junk"), at("way")));
  EXPECT_TRUE(touch(at("link/junk"), at("way/junk/file")));
  EXPECT_FALSE(touch(at("way"), at("way2")));
  EXPECT_FALSE(touch("", at("way"))) << "a tool without a known folder";
}

}  // namespace
}  // namespace spacemint
