// From the question to the message: what is asked, what the button does, and what is said of it.

#include "support/Files.h"
#include "support/ModelFixture.h"

#include <filesystem>

namespace spacemint {
namespace {

using namespace support;
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
    model->scans().scan();
    desktop.settle();
    ASSERT_EQ(sizeInScan("keep"), 30 * MB);
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
  void askToDelete(const std::string& name) {
    model->cleanups().ask(DeleteRequest{.path = inHome(name), .name = name, .size = 40 * MB, .note = ""});
  }
  const CleanupPlan& asked() const { return model->cleanups().confirmation()->plan; }

  DevTools::FoundCleanup cache(std::string_view id, std::string_view name, Bytes size = 60 * MB) const {
    const auto* target = std::ranges::find(cleanupTargets, id, &CleanupTarget::id);
    return {.target = target, .path = inHome(name), .size = size};
  }
};

TEST_F(CleanupsTest, asksBeforeItDestroys) {
  struct Case {
    std::function<void()> ask;
    std::vector<std::string> texts;
  };
  const DeviceBackup backup{
      .path = inHome("b"), .name = "Ann's phone", .lastBackup = morning - 48h, .size = 3 * GB};
  const Case cases[]{
      {[&] {
         model->cleanups().ask(TrashRequest{inHome("old.zip"), 2 * GB});
       },
       {"Move to Trash?", "old.zip · 2 GB", "~/old.zip",
        "You can put it back from the Trash until you empty it.", "Move to Trash"}},
      {[&] { model->confirmEmptyTrash(); },
       {"Empty the Trash?", "Everything in the Trash", "-",
        "Deletes everything for good, including hidden items.", "Empty Trash"}},
      {[&] { model->cleanups().ask(backup); },
       {"Delete this backup?", "Ann's phone · 3 GB", "Last backed up 2 days ago",
        "You won't be able to restore Ann's phone from it anymore. Other backups stay.", "Delete backup"}},
      {[&] { model->cleanups().ask(cache("thumbnails", ".cache/thumbnails", GB)); },
       {"Clean up Thumbnails?", "Thumbnails · 1 GB", "-",
        "Permanently deletes everything inside ~/.cache/thumbnails. Recreated as you browse", "Clean up"}},
  };
  QUuid last;
  for (const Case& c : cases) {
    c.ask();
    const CleanupPlan& shown = asked();
    EXPECT_THAT(
        (std::vector{shown.title, shown.subject, shown.detail.value_or("-"), shown.note, shown.button}),
        testing::ElementsAreArray(c.texts));
    EXPECT_NE(model->cleanups().confirmation()->id, last);
    last = model->cleanups().confirmation()->id;
  }
  model->cleanups().dismiss();
  EXPECT_FALSE(model->cleanups().confirmation());
  model->cleanups().confirm(last);
  EXPECT_FALSE(model->cleanups().isRunning("thumbnails")) << "what was dismissed does nothing";
}

TEST_F(CleanupsTest, deletesWhatWasShownAndNothingElse) {
  haveScan();
  askToDelete("junk");
  fs::rename(inHome("junk"), inHome("moved"));
  addFile("junk/precious", 40 * MB);
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists("junk/precious"));
  EXPECT_THAT(message(), StartsWith("That didn't work: "));

  askToDelete("later");
  addFile("later/precious", 40 * MB);
  confirm();
  desktop.advance(2s);
  EXPECT_TRUE(exists("later/precious")) << "it was not there when it was asked about";

  askToDelete("junk");
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
  model->cleanups().ask(DockerPruneRequest{});
  const CleanupPlan plan = asked();
  model->cleanups().perform(plan);
  model->cleanups().perform(plan);
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
  model->cleanups().ask(DockerPruneRequest{false, model->dev().dockerReclaimable()});
  EXPECT_EQ(asked().subject, "About 4 GB of unused data");
  EXPECT_EQ(asked().note,
            "Runs `docker system prune -a`. Removes stopped containers, unused images and build cache. Keeps "
            "volumes.");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "Cleaned up Docker, about 4 GB. It can take a moment to show as free.");
  model->cleanups().ask(DockerPruneRequest{true, model->dev().dockerVolumesReclaimable()});
  EXPECT_EQ(asked().subject, "About 2 GB in volumes no container uses");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "That didn't work: the volume is in use");
  model->cleanups().ask(DevTools::OllamaModel{.name = "llama3:8b", .size = GB, .modified = ""});
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
  desktop.clock.setDate(morning + 48h);
  model->dev().refreshIfNeeded();
  desktop.settle();
  EXPECT_EQ(runs(), 1U) << "a clock that is set forwards makes no answer older";
  desktop.clock.setDate(morning - 48h);
  desktop.advance(1s);
  model->dev().refreshIfNeeded();
  EXPECT_EQ(model->dev().ollama().kind, DeveloperTools::Ollama::Kind::ready) << "the answer stays";
  desktop.settle();
  EXPECT_EQ(runs(), 2U);
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
  const auto scanWithTrash = [&](Bytes size) {
    storeHome(morning, {support::folder(".Trash", {file("x", size)})});
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
       "Some items, like hidden ones, are still in the Trash. Some folders are closed to Spacemint."},
      {"echo 'no such service' >&2; exit 1", GB, "That didn't work: no such service"}};
  scanWithTrash(GB);
  model->confirmEmptyTrash();
  confirm();
  desktop.advance(4s);
  EXPECT_EQ(message(), "That didn't work: couldn't find `gio`.");
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
  model->cleanups().ask(TrashRequest{inHome("old.zip"), 50 * MB});
  confirm();
  desktop.settle();
  EXPECT_FALSE(exists("old.zip"));
  EXPECT_TRUE(fs::exists(desktop.trash.folder / "old.zip"));
  EXPECT_EQ(message(), "Moved “old.zip” to the Trash. Empty it to free 51.2 MB.");
  EXPECT_EQ(sizeInScan("old.zip"), 0);

  model->cleanups().ask(TrashRequest{inHome("old.zip"), 50 * MB});
  confirm();
  desktop.settle();
  EXPECT_THAT(message(), StartsWith("Couldn't move “old.zip” to the Trash: "));

  fs::create_directories(inHome("Documents"));
  model->cleanups().ask(TrashRequest{inHome("Documents"), 50 * MB});
  EXPECT_FALSE(model->cleanups().confirmation()) << "refused before anything is asked";
  EXPECT_EQ(message(), "Spacemint won't move ~/Documents: it is a protected folder.");
  EXPECT_TRUE(exists("Documents"));
}

TEST_F(CleanupsTest, movesSeveralWithOneQuestionAndKeepsWhatMayNotGo) {
  SeveralRequest request;
  const auto select = [&](const std::string& name) {
    request.items.emplace_back(TrashRequest{inHome(name), 40 * MB});
  };
  for (const std::string name : {"one", "two", "three", "four", "folder/five", "folder/six"}) {
    addFile(name, MB);
    select(name);
  }
  fs::create_directory(inHome("Documents"));
  fs::create_directory(inHome(".ssh"));
  fs::create_symlink(inHome("keep"), inHome("link"));
  for (const std::string name : {"Documents", ".ssh", "link"}) select(name);
  select("junk");
  select("junk/a");  // goes with its folder
  haveScan();
  model->cleanups().ask(request);
  EXPECT_EQ(asked().title, "Move 7 items to the Trash?");
  EXPECT_EQ(asked().subject, "7 items · 287 MB");
  EXPECT_THAT(asked().items, testing::Contains("junk · 41 MB"));
  EXPECT_THAT(asked().note,
              testing::EndsWith("3 other selected items stay: ~/Documents is a protected folder."));
  fs::remove(inHome("two"));  // while the question is shown
  EXPECT_FALSE(model->cleanups().isRunning(inHome("junk")));
  confirm();
  EXPECT_TRUE(model->cleanups().isRunning(inHome("junk")));
  desktop.advance(2s);
  EXPECT_THAT(message(), StartsWith("Moved 6 items to the Trash.\n"));
  EXPECT_THAT(message(), testing::HasSubstr("Couldn't move “two” to the Trash: "));
  EXPECT_THAT(message(), testing::EndsWith("~/.ssh is a protected folder.\n1 more item stays."));
  for (const char* name : {"Documents", ".ssh", "keep"}) EXPECT_TRUE(exists(name)) << name;
  EXPECT_TRUE(fs::is_symlink(inHome("link")));
  for (const char* name : {"one", "three", "four", "folder/five", "folder/six", "junk"}) {
    EXPECT_FALSE(exists(name)) << name;
  }
  EXPECT_EQ(sizeInScan("junk"), 0);
}

TEST_F(CleanupsTest, namesWhatGoesAlthoughScansLeaveItOut) {
  model->prefs().setExcludes({"a"});
  haveScan();
  EXPECT_EQ(sizeInScan("junk"), 0);
  model->cleanups().ask(
      SeveralRequest{{TrashRequest{inHome("junk")}, TrashRequest{inHome("keep"), 30 * MB}}});
  EXPECT_EQ(asked().warning,
            "It removes what scans leave out, too: 41 MB in 1 file or folder, as last measured.");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(model->history().snapshot()->coverage.excludedBelow(home).items, 0) << "it is gone";
}

TEST_F(CleanupsTest, followsTheTrashThatOthersFill) {
  haveScan();
  addFile(".local/share/Trash/files/a", 45 * MB);
  model->panelWillShow();
  desktop.settle();
  EXPECT_GE(sizeInScan(".local/share/Trash"), 45 * MB) << "no folder on the way was large enough to be known";
  desktop.advance(1s);
  model->scans().scan();
  desktop.settle();
  addFile(".local/share/Trash/files/b", 45 * MB);
  model->panelWillShow();
  desktop.settle();
  EXPECT_GE(sizeInScan(".local/share/Trash"), 90 * MB);
}

TEST_F(CleanupsTest, asksAboutAWorktreeWhenItsChangesAreCounted) {
  const auto worktree = makeWorktree();
  ASSERT_TRUE(worktree);
  writeText(inHome("wt/b"));
  model->cleanups().ask(*worktree);
  EXPECT_FALSE(model->cleanups().confirmation());
  desktop.settle();
  EXPECT_EQ(asked().warning, "It has 1 uncommitted change, which will be lost.");
  confirm();
  desktop.advance(2s);
  EXPECT_EQ(message(), "Removed wt.");
  EXPECT_FALSE(exists("wt"));
  // An answer that comes late replaces no newer question.
  model->cleanups().ask(*worktree);
  askToDelete("junk");
  desktop.settle();
  EXPECT_EQ(asked().title, "Delete permanently?");
}

TEST_F(CleanupsTest, showsALongRemovalAndStopsIt) {
  haveScan();
  for (int i = 0; i < 100; ++i) addFile("junk/" + std::to_string(i), 4'096);
  askToDelete("junk");
  desktop.tasks.hold(Tasks::Priority::alone);
  confirm();
  askToDelete("keep");
  EXPECT_TRUE(model->cleanups().isRunning(inHome("junk")));
  model->cleanups().ask(DeleteRequest{.path = inHome("junk/1"), .name = "1", .size = 0, .note = ""});
  confirm();
  EXPECT_EQ(message(), "Spacemint didn't delete anything: another clean-up of the same items runs.");
  const auto messageAfter = [&](std::chrono::seconds wait) {
    desktop.advance(wait);
    return message();
  };
  EXPECT_THAT(messageAfter(2s), StartsWith("Spacemint didn't delete anything")) << "another message stays";
  model->messages().clear();
  EXPECT_THAT(messageAfter(1s), StartsWith("Deleting: 0 items, 0 bytes of "));
  model->messages().clear();
  EXPECT_EQ(messageAfter(5s), "") << "the user closed it";
  model->panelWillShow();
  EXPECT_THAT(messageAfter(1s), StartsWith("Deleting: "));
  model->messages().performAction();
  desktop.tasks.release(Tasks::Priority::alone);
  desktop.advance(2s);
  EXPECT_THAT(message(), StartsWith("Stopped. "));
  EXPECT_TRUE(exists("junk/1"));
  EXPECT_FALSE(model->cleanups().isRunning(inHome("junk")));
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
  storeHome(morning, {nested("Library/Application Support/MobileSync/Backup", std::move(nodes))});
  startModel();
  EXPECT_EQ(model->findings().deviceBackups.size(), 5U);
  ASSERT_TRUE(model->oldBackup());
  EXPECT_EQ(model->oldBackup()->path, inHome(place + "first")) << "of two as large the first of the list";
}

TEST_F(CleanupsTest, followsTheVolumeForAWhile) {
  haveScan();
  askToDelete("junk");
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
  model->scans().scan();
  askToDelete("junk");
  confirm();
  model.reset();
  desktop.tasks.release(Tasks::Priority::background);
  desktop.advance(10s);
}

}  // namespace
}  // namespace spacemint
