// From the question to the message: what is asked, what the button does, and what is said of it.

#include "support/Files.h"
#include "support/ModelFixture.h"
#include "support/OwnMounts.h"
#include "support/TreeBuilder.h"

#include <filesystem>

namespace spacemint {
namespace {

using namespace support;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
namespace fs = std::filesystem;

class CleanupsTest : public ModelFixture {
 protected:
  void SetUp() override {
    addFile("junk/a", 40 * MB);
    addFile("keep", 30 * MB);
    makeModel();
  }
  void haveScan() {
    startModel();
    model->scan();
    desktop.settle();
    ASSERT_EQ(sizeInScan("junk"), 40 * MB);
  }
  // "wt" of the repository "shop", which has the file "a".
  std::optional<GitWorktree> makeWorktree() {
    startModel();
    const std::string git = " && git -c init.defaultBranch=main -c user.name=a -c user.email=a@b.c ";
    const std::string command = "mkdir " + inHome("shop") + " && cd " + inHome("shop") + git +
                                "init -q && echo a > a" + git + "add a" + git + "commit -qm a" + git +
                                "worktree add -q ../wt 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return GitWorktrees::inspect(inHome("wt"), GB);
  }
  const Confirmation& asked() const { return *model->confirmations().current(); }

  // Runs a clean-up that ends as it is told, and says what is said of it.
  std::string outcomeOf(CleanupJob::Failure failure, Bytes freed, std::optional<Bytes> estimate = {},
                        const std::string& id = "x") {
    Messages messages;
    VolumeWatch volume{desktop.desktop()};
    ScanHistory history{store, desktop.tasks, desktop.clock, messages};
    Remeasure remeasure{history, desktop.tasks, 0};
    CleanupRuns runs{
        {.volume = volume, .remeasure = remeasure, .messages = messages}, desktop.desktop(), "en_US"};
    runs.perform({.id = id, .label = "Cleaned it", .estimate = estimate, .work = [&] {
                    if (desktop.volume.current) desktop.volume.current->free += freed;
                    return QtFuture::makeReadyFuture(failure);
                  }});
    EXPECT_TRUE(runs.isRunning(id));
    desktop.advance(1s);
    EXPECT_FALSE(runs.isRunning(id));
    const auto& action = messages.action();
    return messages.message().value_or("") + (action ? " [" + action->title + "]" : "");
  }

  DevTools::FoundCleanup cache(std::string_view id, std::string_view name, Bytes size = 60 * MB) const {
    const auto* target = std::ranges::find(cleanupTargets, id, &CleanupTarget::id);
    return {.target = target, .path = inHome(name), .size = size};
  }
};

TEST_F(CleanupsTest, saysHowItEnded) {
  EXPECT_EQ(outcomeOf({}, 50'000'001), "Cleaned it and freed 50 MB.");
  EXPECT_EQ(outcomeOf({}, -5 * GB, 3 * GB), "Cleaned it, about 3 GB. It can take a moment to show as free.");
  EXPECT_EQ(outcomeOf(CleanupFailure::other("it is busy"), 9 * GB), "That didn't work: it is busy");
  EXPECT_EQ(outcomeOf(CleanupFailure::needsFullDiskAccess(), 0),
            "Spacemint needs Full Disk Access to do this. [Open Settings]");
  EXPECT_THAT(
      outcomeOf(CleanupFailure::needsFullDiskAccess(), 0, {}, "trash"),
      testing::AllOf(StartsWith("Some items, like hidden ones"), testing::EndsWith(" [Open Settings]")));
  desktop.volume.current.reset();
  EXPECT_EQ(outcomeOf(CleanupFailure::other("no volume"), 0), "That didn't work: no volume");
}

TEST_F(CleanupsTest, asksBeforeItDestroys) {
  struct Case {
    std::function<void()> ask;
    std::vector<std::string> texts;
  };
  const DeviceBackup backup{
      .path = inHome("b"), .name = "Ann's phone", .lastBackup = morning - 48h, .size = 3 * GB};
  const Case cases[]{
      {[&] { model->confirmTrash({.path = inHome("old.zip"), .size = 2 * GB}); },
       {"Move to Trash?", "old.zip · 2 GB", "~/old.zip",
        "You can put it back from the Trash until you empty it.", "Move to Trash"}},
      {[&] { model->confirmEmptyTrash(); },
       {"Empty the Trash?", "Everything in the Trash", "-",
        "Deletes everything for good, including hidden items.", "Empty Trash"}},
      {[&] { model->confirmDeleteBackup(backup); },
       {"Delete this backup?", "Ann's phone · 3 GB", "Last backed up 2 days ago",
        "You won't be able to restore Ann's phone from it anymore. Other backups stay.", "Delete backup"}},
      {[&] { model->confirmCleanup(cache("thumbnails", ".cache/thumbnails", GB)); },
       {"Clean up Thumbnails?", "Thumbnails · 1 GB", "-",
        "Permanently deletes everything inside ~/.cache/thumbnails. Recreated as you browse", "Clean up"}},
  };
  QUuid last;
  for (const Case& c : cases) {
    c.ask();
    const Confirmation& shown = asked();
    EXPECT_THAT(
        (std::vector{shown.title, shown.subject, shown.detail.value_or("-"), shown.note, shown.actionTitle}),
        testing::ElementsAreArray(c.texts));
    EXPECT_NE(shown.id, last);
    last = shown.id;
  }
  model->dismissConfirmation();
  EXPECT_FALSE(model->confirmations().current());
  model->performConfirmation(last);
  EXPECT_THAT(model->cleanups().running(), IsEmpty()) << "what was dismissed does nothing";
}

TEST_F(CleanupsTest, deletesWhatWasShownAndNothingElse) {
  haveScan();
  model->confirmDelete(inHome("junk"), "junk", 40 * MB, "");
  fs::rename(inHome("junk"), inHome("moved"));
  addFile("junk/precious", 40 * MB);
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists("junk/precious"));
  EXPECT_THAT(message(), StartsWith("That didn't work: "));

  model->confirmDelete(inHome("later"), "later", 40 * MB, "");
  addFile("later/precious", 40 * MB);
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists("later/precious")) << "it was not there when it was asked about";

  model->confirmDelete(inHome("junk"), "junk", 40 * MB, "");
  confirm();
  desktop.advance(2s);
  EXPECT_FALSE(exists("junk"));
  EXPECT_EQ(sizeInScan("junk"), 0);
  EXPECT_EQ(message(), "Deleted junk.");
  EXPECT_EQ(store.load(store.entries().front())->nodeAt(inHome("junk")), nullptr);
}

TEST_F(CleanupsTest, runsOfOneIdDoNotOverlap) {
  addProgram("docker", "echo run >> " + inHome("log"));
  startModel();
  model->confirmDockerPrune();
  const auto press = asked().perform;
  press();
  press();
  desktop.advance(20s);
  EXPECT_EQ(readText(inHome("log")), "run\nrun\n") << "one prune and one question after it";
  EXPECT_EQ(message(), "Cleaned up Docker.");
}

TEST_F(CleanupsTest, runsToolsAndTellsWhatTheySaid) {
  addProgram("docker",
             R"sh(case "$1" in
  system) if [ "$2" = df ]; then
      echo '{"Type":"Images","TotalCount":"3","Active":"1","Size":"5GB","Reclaimable":"3GB (60%)"}'
      echo '{"Type":"Build Cache","TotalCount":"9","Active":"0","Size":"1GB","Reclaimable":"1GB"}'
      echo '{"Type":"Local Volumes","TotalCount":"2","Active":"1","Size":"4GB","Reclaimable":"2GB (50%)"}'
    fi ;;
  volume) echo first >&2; echo "  the volume is in use  " >&2; exit 1 ;;
esac)sh");
  startModel();
  model->dev().refresh();
  desktop.settle();
  model->confirmDockerPrune();
  EXPECT_EQ(asked().subject, "About 4 GB of unused data");
  EXPECT_EQ(asked().note,
            "Runs `docker system prune -a`. Removes stopped containers, unused images and build cache. Keeps "
            "volumes.");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "Cleaned up Docker, about 4 GB. It can take a moment to show as free.");
  model->confirmDockerVolumesPrune();
  EXPECT_EQ(asked().subject, "About 2 GB in volumes no container uses");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "That didn't work: the volume is in use");
  model->confirmOllamaRemove({.name = "llama3:8b", .size = GB, .modified = ""});
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "That didn't work: couldn't find `ollama`.");
}

TEST_F(CleanupsTest, asksToolsOnlyNowAndThen) {
  addProgram("ollama", "echo run >> " + inHome("log") + "; echo NAME ID SIZE MODIFIED");
  const auto runs = [&] { return readText(inHome("log")).size() / 4; };
  startModel();
  model->dev().refreshIfNeeded();
  EXPECT_EQ(model->dev().docker().kind, DeveloperTools::Docker::Kind::checking);
  desktop.settle();
  EXPECT_EQ(model->dev().docker().kind, DeveloperTools::Docker::Kind::notInstalled);
  EXPECT_EQ(model->dev().ollama().kind, DeveloperTools::Ollama::Kind::ready);
  desktop.advance(119s);
  model->dev().refreshIfNeeded();
  desktop.settle();
  EXPECT_EQ(runs(), 1U);
  desktop.advance(1s);
  model->dev().refreshIfNeeded();
  EXPECT_EQ(model->dev().ollama().kind, DeveloperTools::Ollama::Kind::ready) << "the answer stays";
  desktop.settle();
  EXPECT_EQ(runs(), 2U);
}

TEST_F(CleanupsTest, emptiesACacheThroughTheGuard) {
  addFile(".cache/thumbnails/large/a", 60 * MB);
  haveScan();
  model->confirmCleanup(cache("thumbnails", ".cache/thumbnails"));
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists(".cache/thumbnails"));
  EXPECT_FALSE(exists(".cache/thumbnails/large"));
  EXPECT_EQ(message(), "Cleaned Thumbnails.");

  // A variable may say that any folder is a cache.
  addFile("Documents/letter", MB);
  model->confirmCleanup(cache("thumbnails", "Documents"));
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists("Documents/letter"));
  EXPECT_THAT(message(), StartsWith("Spacemint didn't delete anything: ~/Documents "));
}

TEST_F(CleanupsTest, emptiesTheTrash) {
  addFile(".local/share/Trash/files/.hidden", 40 * MB);
  addFile(".local/share/Trash/info/.hidden.trashinfo", 1);
  haveScan();
  model->confirmEmptyTrash();
  EXPECT_THAT(asked().subject, StartsWith("Everything in the Trash · 41 MB"));
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists(".local/share/Trash/files"));
  EXPECT_FALSE(exists(".local/share/Trash/files/.hidden"));
  EXPECT_FALSE(exists(".local/share/Trash/info/.hidden.trashinfo"));
  EXPECT_EQ(message(), "Emptied the Trash.");
  EXPECT_EQ(sizeInScan(".local/share/Trash"), 0);
}

TEST_F(CleanupsTest, hasTheFileManagerEmptyATrashItMayNotLookInto) {
  hasAccess = false;
  storeScan(morning);
  const auto scanWithTrash = [&](Bytes size) {
    Snapshot scan{.date = morning, .root = support::folder(home, {file("old", GB)}), .minNodeSize = 20 * MB};
    scan.root = support::folder(home, {support::folder(".Trash", {file("x", size)})});
    ASSERT_TRUE(store.save(scan));
    startModel();
  };
  struct Case {
    const char* script;
    Bytes size;
    const char* message;
  };
  const Case cases[]{
      {"exit 0", 500 * MB, "Emptied the Trash."},
      {"exit 0", 5 * GB,
       "Some items, like hidden ones, are still in the Trash. Turn on Full Disk Access so Spacemint can "
       "remove "
       "them."},
      {"echo 'Not Authorized to send' >&2; exit 1", GB,
       "Allow Spacemint to control Finder so it can empty the Trash."},
      {"echo 'error -1743' >&2; exit 1", GB, "Allow Spacemint to control Finder so it can empty the Trash."},
      {"echo 'no such service' >&2; exit 1", GB, "That didn't work: no such service"}};
  scanWithTrash(GB);
  model->confirmEmptyTrash();
  confirm();
  desktop.advance(4s);
  EXPECT_EQ(message(), "That didn't work: couldn't reach Finder.");
  for (const Case& c : cases) {
    addProgram("gio", c.script);
    scanWithTrash(c.size);
    model->confirmEmptyTrash();
    confirm();
    desktop.advance(4s);
    EXPECT_EQ(message(), c.message) << c.script;
    ASSERT_EQ(model->messages().action().has_value(), message().find("Spacemint") != std::string::npos);
  }
}

TEST_F(CleanupsTest, movesAFileToTheTrash) {
  addFile("old.zip", 50 * MB);
  haveScan();
  model->confirmTrash({.path = inHome("old.zip"), .size = 50 * MB});
  confirm();
  desktop.settle();
  EXPECT_FALSE(exists("old.zip"));
  EXPECT_TRUE(fs::exists(desktop.trash.folder / "old.zip"));
  EXPECT_EQ(message(), "Moved “old.zip” to the Trash. Empty it to free 51.2 MB.");
  EXPECT_EQ(sizeInScan("old.zip"), 0);

  model->confirmTrash({.path = inHome("old.zip"), .size = 50 * MB});
  confirm();
  desktop.settle();
  EXPECT_THAT(message(), StartsWith("Couldn't move “old.zip” to the Trash: "));

  fs::create_directories(inHome("Documents"));
  model->confirmTrash({.path = inHome("Documents"), .size = 50 * MB});
  confirm();
  desktop.settle();
  EXPECT_THAT(message(), StartsWith("Spacemint won't move ~/Documents: it "));
  EXPECT_TRUE(exists("Documents"));
}

TEST_F(CleanupsTest, followsTheTrashThatOthersFill) {
  haveScan();
  addFile(".local/share/Trash/files/a", 45 * MB);
  model->panelWillShow();
  desktop.settle();
  EXPECT_GE(sizeInScan(".local/share/Trash"), 45 * MB) << "no folder on the way was large enough to be known";
  desktop.advance(1s);
  model->scan();
  desktop.settle();
  addFile(".local/share/Trash/files/b", 45 * MB);
  model->panelWillShow();
  desktop.settle();
  EXPECT_GE(sizeInScan(".local/share/Trash"), 90 * MB);
  EXPECT_THAT(model->cleanups().running(), IsEmpty());
}

TEST_F(CleanupsTest, removesWorktreesByGit) {
  const auto worktree = makeWorktree();
  ASSERT_TRUE(worktree);
  const auto noteWith = [&](std::initializer_list<const char*> changed) {
    for (const std::string name : changed) writeText(inHome("wt/" + name));
    model->confirmRemoveWorktree(*worktree);
    desktop.settle();
    return asked().note;
  };
  const std::string rest = "Runs `git worktree remove`. The branch and its commits stay in shop.";
  EXPECT_EQ(noteWith({}), rest);
  EXPECT_EQ(noteWith({"b", "c"}), "It has 2 uncommitted changes, which will be lost. " + rest);
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "Removed wt.");
  EXPECT_FALSE(exists("wt"));
  EXPECT_TRUE(exists("shop/a"));

  EXPECT_THAT(noteWith({}), StartsWith("Spacemint couldn't check it for uncommitted changes"));
  confirm();
  desktop.advance(2s);
  EXPECT_THAT(message(), HasSubstr("is not a working tree"));
}

TEST_F(CleanupsTest, letsGitRemoveNoWorktreeInWhichSomethingIsMounted) {
  if (!canMount()) GTEST_SKIP() << "no mount namespace to be had here";
  const auto worktree = makeWorktree();
  ASSERT_TRUE(worktree);
  addFile("outside/treasure", MB);
  fs::create_directory(inHome("wt/place"));
  EXPECT_TRUE(succeedsInChild([&] {
    if (!enterOwnMounts()) return false;
    if (mount(inHome("outside").c_str(), inHome("wt/place").c_str(), nullptr, MS_BIND, nullptr) != 0)
      return false;
    model->confirmRemoveWorktree(*worktree);
    desktop.settle();
    confirm();
    desktop.advance(2s);
    return message() ==
           "Spacemint didn't delete anything: ~/wt has something else mounted in it, at ~/wt/place.";
  }));
  EXPECT_TRUE(exists("outside/treasure"));
}

TEST_F(CleanupsTest, pointsAtTheLargestOldBackup) {
  const std::string place = "Library/Application Support/MobileSync/Backup/";
  struct Backup {
    const char* name;
    Bytes size;
    const char* date;
  };
  const Backup backups[]{{"new", 9 * GB, "2026-02-01T00:00:00Z"},
                         {"small", 2 * GB - 1, "2020-01-01T00:00:00Z"},
                         {"first", 3 * GB, "2025-12-01T00:00:00Z"},
                         {"second", 3 * GB, "2020-01-01T00:00:00Z"},
                         {"smaller", 2 * GB, "2020-01-01T00:00:00Z"}};
  std::vector<Node> nodes;
  for (const Backup& backup : backups) {
    nodes.push_back(support::folder(backup.name, {file("data", backup.size)}));
    writeText(inHome(place + backup.name + "/Info.plist"),
              R"(<?xml version="1.0"?><plist version="1.0"><dict><key>Last Backup Date</key><date>)" +
                  std::string{backup.date} + "</date></dict></plist>");
  }
  Node tree = support::folder("Backup", std::move(nodes));
  for (const char* above : {"MobileSync", "Application Support", "Library"}) {
    tree = support::folder(above, {std::move(tree)});
  }
  ASSERT_TRUE(store.save(
      {.date = morning, .root = support::folder(home, {std::move(tree)}), .minNodeSize = 20 * MB}));
  startModel();
  EXPECT_EQ(model->findings().deviceBackups.size(), 5U);
  ASSERT_TRUE(model->oldBackup());
  EXPECT_EQ(model->oldBackup()->path, inHome(place + "first")) << "of two as large the first of the list";
}

TEST_F(CleanupsTest, followsTheVolumeForAWhile) {
  haveScan();
  model->confirmDelete(inHome("junk"), "junk", 40 * MB, "");
  confirm();
  desktop.advance(2s);
  for (const auto wait : {3s, 5s, 12s}) {
    desktop.volume.current->free += GB;
    desktop.advance(wait);
    EXPECT_EQ(model->volume().status()->free, desktop.volume.current->free);
  }
}

TEST_F(CleanupsTest, aModelThatIsGoneTakesNothingWithIt) {
  haveScan();
  desktop.tasks.hold(Tasks::Priority::background);
  model->scan();
  model->confirmDelete(inHome("junk"), "junk", 40 * MB, "");
  confirm();
  model.reset();
  desktop.tasks.release(Tasks::Priority::background);
  desktop.advance(10s);
}

}  // namespace
}  // namespace spacemint
