// What developers' tools keep, and how it is cleaned up.

#include "views/ShownTabs.h"

#include <QAccessible>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

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

TEST_F(DeveloperTabTest, dockerIsCleanedUpOnlyAfterAQuestion) {
  addProgram("docker", prints(dockerUsage()));
  storeLittle();
  showDeveloper();
  EXPECT_EQ(row("Unused images")->property("subtitle").toString(), QStringLiteral("3 of 12 in use"));
  EXPECT_TRUE(shows("Removes stopped containers, unused images and build cache. Keeps volumes."));
  click("Clean up");
  EXPECT_THAT(asked(), ElementsAre(StartsWith("Clean up Docker"), testing::_));
  model->cleanups().dismiss();
  settle();
  click("Remove");
  EXPECT_THAT(asked(), ElementsAre(testing::HasSubstr("volumes"), testing::_));
}

TEST_F(DeveloperTabTest, ollamasModelsAreRemovedOnlyAfterAQuestion) {
  addProgram("ollama", prints(ollamaList()));
  storeLittle();
  showDeveloper();
  EXPECT_THAT(rows(), ElementsAre("mistral:7b", "llama3.2:latest"));
  click(view->find(QStringLiteral("Remove"), "QQuickAbstractButton").at(1));
  EXPECT_THAT(asked(), ElementsAre("Remove this model?", "llama3.2:latest · 2 GB"));
}

TEST_F(DeveloperTabTest, cachesAreCleanedUpOnlyAfterAQuestion) {
  addFile(".cache/pip/wheel", 60 * MB);
  storeHome(morning - 1h, {nested(".cache/pip", {file("wheel", 2 * GB)})});
  showDeveloper();
  EXPECT_THAT(rows(), ElementsAre("pip cache"));
  click("Clean up");
  EXPECT_THAT(asked(), ElementsAre("Clean up pip cache?", "pip cache · 2 GB"));
  EXPECT_TRUE(exists(".cache/pip/wheel"));
}

TEST_F(DeveloperTabTest, modelsOfHuggingFaceAreDeletedOnlyAfterAQuestion) {
  storeHome(
      morning - 1h,
      {nested(".cache/huggingface",
              {support::folder("hub", {support::folder("models--openai--whisper", {file("a", 3 * GB)})}),
               support::folder("xet", {file("b", GB)})})});
  showDeveloper();
  EXPECT_THAT(rows(), ElementsAre("whisper", "Other cached files"));
  EXPECT_EQ(row("whisper")->property("subtitle").toString(), QStringLiteral("Model · openai"));
  click("Delete");
  EXPECT_THAT(asked(), ElementsAre("Delete permanently?", "openai/whisper · 3 GB"));
  EXPECT_EQ(model->cleanups().confirmation()->plan.note, "It downloads again when needed.");
}

TEST_F(DeveloperTabTest, worktreesInUseAreShownOnDemand) {
  addWorktree("old", morning - std::chrono::days{60});
  addWorktree("orphan", {});
  addWorktree("new", morning - std::chrono::days{2});
  storeHome(morning - 1h,
            {worktreeTree("old", 2 * GB), worktreeTree("orphan", GB), worktreeTree("new", 500 * MB)});
  showDeveloper();
  EXPECT_THAT(rows(), ElementsAre("old", "orphan"));
  EXPECT_EQ(row("old")->property("subtitle").toString(), QStringLiteral("used 2 months ago"));
  EXPECT_EQ(row("orphan")->property("subtitle").toString(), QStringLiteral("Repository is gone"));
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

TEST_F(DeveloperTabTest, buttonsSayWhatTheyAreFor) {
  storeHome(morning - 1h, {nested(".cache/pip", {file("wheel", 2 * GB)})});
  showDeveloper();
  const auto* cleanUp = QAccessible::queryAccessibleInterface(button("Clean up"));
  EXPECT_EQ(cleanUp->role(), QAccessible::Button);
  EXPECT_EQ(cleanUp->text(QAccessible::Description), QStringLiteral("pip cache"));
  const auto* title = QAccessible::queryAccessibleInterface(
      view->get(QStringLiteral("Leftover caches and build files"), "SectionLabel"));
  EXPECT_EQ(title->role(), QAccessible::Heading);
}

}  // namespace
}  // namespace spacemint
