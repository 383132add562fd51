// The tab with the disk space of developers' tools.

#include "views/ShownTabs.h"

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;

class DeveloperTabTest : public ShownTabs {
 protected:
  ShownView& showDeveloper() { return show(Tab::developer, {460, 1400}); }
  void storeLittle() { storeHome(morning - 1h, {file("letters", 300 * MB)}); }
};

TEST_F(DeveloperTabTest, withNothingKeptEachSectionSaysSoOrIsNotThere) {
  storeLittle();
  showDeveloper();
  EXPECT_TRUE(shows("No package or build caches over 50 MB."));
  EXPECT_TRUE(shows("No worktrees untouched for a month."));
  EXPECT_THAT(rows(), IsEmpty());
  for (const char* title : {"Local Ollama models", "Cached Hugging Face models", "Unused Docker data"}) {
    EXPECT_FALSE(shows(title));
  }
}

TEST_F(DeveloperTabTest, theToolsAreAskedWhenTheTabIsSeenForTheFirstTime) {
  addProgram("docker", "echo run >> " + inHome("log") + "; " + prints(dockerUsage()));
  storeLittle();
  show(Tab::overview, {460, 1400});
  EXPECT_FALSE(exists("log"));
  desktop.tasks.hold(Tasks::Priority::userInitiated);
  desktop.tasks.hold(Tasks::Priority::utility);
  model->setTab(Tab::developer);
  settle();
  EXPECT_TRUE(shows("Checking Docker…"));
  EXPECT_FALSE(view->find(QStringLiteral("Working")).isEmpty());
  desktop.tasks.release(Tasks::Priority::userInitiated);
  desktop.tasks.release(Tasks::Priority::utility);
  settle();
  EXPECT_FALSE(shows("Checking Docker…"));
  EXPECT_THAT(rows(),
              ElementsAre("Unused images", "Stopped containers", "Local Volumes", "Unused build cache"));
}

TEST_F(DeveloperTabTest, toolsThatDoNotAnswerHaveATextInThePlaceOfRows) {
  addProgram("docker", "echo 'Cannot connect to the Docker daemon' >&2; exit 1");
  addProgram("ollama", "echo 'the disk is on <b>fire</b>' >&2; exit 1");
  storeLittle();
  showDeveloper();
  EXPECT_TRUE(shows("Start Docker or OrbStack to see what can be cleaned up."));
  const auto failures = view->find({}, "StatusCard");
  EXPECT_TRUE(std::ranges::any_of(failures, [](const QQuickItem* card) {
    return card->property("text").toString().contains(QStringLiteral("the disk is on <b>fire</b>"));
  }));
}

TEST_F(DeveloperTabTest, everyButtonAsksBeforeItRemoves) {
  addProgram("docker", prints(dockerUsage()));
  addProgram("ollama", prints(ollamaList()));
  addFile(".cache/pip/wheel", 60 * MB);
  storeHome(
      morning - 1h,
      {nested(".cache", {support::folder("pip", {file("wheel", 2 * GB)}),
                         support::folder("huggingface",
                                         {support::folder("hub", {support::folder("models--openai--whisper",
                                                                                  {file("a", 3 * GB)})}),
                                          support::folder("xet", {file("b", GB)})})})});
  show(Tab::developer, {460, 1700});
  EXPECT_THAT(rows(),
              ElementsAre("pip cache", "mistral:7b", "llama3.2:latest", "whisper", "Other cached files",
                          "Unused images", "Stopped containers", "Local Volumes", "Unused build cache"));
  EXPECT_EQ(subtitle("Unused images"), "3 of 12 in use");
  EXPECT_EQ(subtitle("whisper"), "Model · openai");
  EXPECT_TRUE(shows("Removes stopped containers, unused images and build cache. Keeps volumes."));
  const struct {
    const char* button;
    int index;
    const char* title;
    const char* subject;
  } cases[]{{"Clean up", 0, "Clean up pip cache?", "pip cache · 2 GB"},
            {"Clean up", 1, "Clean up Docker?", "About 3.7 GB of unused data"},
            {"Remove", 1, "Remove this model?", "llama3.2:latest · 2 GB"},
            {"Remove", 2, "Remove unused volumes?", "About 6.5 GB in volumes no container uses"},
            {"Delete", 0, "Delete permanently?", "openai/whisper · 3 GB"}};
  for (const auto& [name, index, title, subject] : cases) {
    click(view->find(QString::fromUtf8(name), "QQuickAbstractButton").at(index));
    EXPECT_THAT(asked(), ElementsAre(title, subject));
    model->cleanups().dismiss();
    settle();
  }
  EXPECT_TRUE(exists(".cache/pip/wheel"));
}

TEST_F(DeveloperTabTest, worktreesOfOneNameAreToldApartByTheirPlace) {
  addWorktree("one/feature", morning - std::chrono::days{60});
  addWorktree("two/feature", morning - std::chrono::days{60});
  addWorktree("fix", morning - std::chrono::days{60});
  storeHome(morning - 1h,
            {support::folder("one", {worktreeTree("feature", 3 * GB)}),
             support::folder("two", {worktreeTree("feature", 2 * GB)}), worktreeTree("fix", GB)});
  showDeveloper();
  std::vector<std::string> subtitles;
  for (const QQuickItem* row : view->find({}, "ItemRow")) {
    subtitles.push_back(row->property("subtitle").toString().toStdString());
  }
  EXPECT_THAT(subtitles, ElementsAre("used 2 months ago · ~/one/feature", "used 2 months ago · ~/two/feature",
                                     "used 2 months ago"));
}

TEST_F(DeveloperTabTest, worktreesInUseAreShownOnDemand) {
  addWorktree("old", morning - std::chrono::days{60});
  addWorktree("orphan", {});
  addWorktree("new", morning - std::chrono::days{2});
  storeHome(morning - 1h,
            {worktreeTree("old", 2 * GB), worktreeTree("orphan", GB), worktreeTree("new", 500 * MB)});
  showDeveloper();
  EXPECT_THAT(rows(), ElementsAre("old", "orphan"));
  EXPECT_EQ(subtitle("old"), "used 2 months ago");
  EXPECT_EQ(subtitle("orphan"), "Repository is gone");
  click("Show 1 active worktree");
  EXPECT_THAT(rows(), ElementsAre("old", "orphan", "new"));
  click(view->find(QStringLiteral("Remove"), "QQuickAbstractButton").at(2));
  settle();
  EXPECT_THAT(asked(), ElementsAre("Remove this worktree?", "new · 512 MB"));
  EXPECT_TRUE(exists("new/.git"));
  model->cleanups().dismiss();
  settle();
  click("Hide active worktrees");
  EXPECT_THAT(rows(), ElementsAre("old", "orphan"));
}

TEST_F(DeveloperTabTest, aRowIsBusyWhileItIsCleaned) {
  addFile(".cache/thumbnails/one", 60 * MB);
  storeHome(morning - 1h, {nested(".cache/thumbnails", {file("one", 100 * MB)})});
  showDeveloper();
  click("Clean up");
  desktop.tasks.hold(Tasks::Priority::alone);
  confirm();
  settle();
  EXPECT_FALSE(button("Clean up")->isEnabled());
  EXPECT_FALSE(view->find(QStringLiteral("Working")).isEmpty());
  EXPECT_TRUE(exists(".cache/thumbnails/one"));
  desktop.tasks.release(Tasks::Priority::alone);
  desktop.advance(2s);
  settle();
  EXPECT_TRUE(view->find(QStringLiteral("Working")).isEmpty());
}

}  // namespace
}  // namespace spacemint
