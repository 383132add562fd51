// The tabs with findings: what grew and can be freed, and the disk space of developers' tools.

#include "views/ShownTabs.h"

#include <QAccessible>

#include <filesystem>
#include <fstream>

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
  EXPECT_TRUE(shows("Start Docker to see what can be cleaned up."));
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

using testing::SizeIs;

using OverviewTabTest = ShownTabs;

TEST_F(OverviewTabTest, withoutAnEarlierScanSaysWhatWillBeHere) {
  storeHome(morning - 1h, {file("letters", 300 * MB)});
  show(Tab::overview);
  EXPECT_TRUE(shows("After the next scan, this shows where new space went."));
  EXPECT_TRUE(shows("Nothing obvious to clean up."));
  EXPECT_THAT(rows(), IsEmpty());
  EXPECT_TRUE(view->find(QStringLiteral("Compared with the scan of")).isEmpty());
}

TEST_F(OverviewTabTest, withNothingGrownSaysSo) {
  storeGrowth(0);
  show(Tab::overview);
  EXPECT_TRUE(shows("Nothing grew by more than 100 MB."));
  EXPECT_TRUE(shows("Free space dropped by 40 GB, from 140 GB to 100 GB")) << "the free space of now";
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(OverviewTabTest, anEarlierScanThatCannotBeReadIsToBeReplacedByAnother) {
  storeGrowth(2);
  std::ofstream{store.entries().back().path} << "{";
  show(Tab::overview);
  EXPECT_TRUE(shows("The earlier scan couldn't be read. Pick another one above."));
  EXPECT_THAT(ui->overview()->baselines(), SizeIs(1));
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(OverviewTabTest, ofMoreThanFiveGrownFoldersTheRestIsShownOnDemand) {
  storeGrowth(6);
  show(Tab::overview);
  EXPECT_THAT(rows(), ElementsAre("Home folder", "Folder 1", "Folder 2", "Folder 3", "Folder 4", "Folder 5"));
  click("Show all 6");
  EXPECT_THAT(rows(), ElementsAre("Home folder", "Folder 1", "Folder 2", "Folder 3", "Folder 4", "Folder 5",
                                  "Folder 6"));
  click("Show less");
  EXPECT_THAT(rows(), SizeIs(6));
  view.reset();
  storeGrowth(5);
  show(Tab::overview);
  EXPECT_THAT(rows(), SizeIs(6));
  EXPECT_TRUE(view->find(QStringLiteral("Show all 5")).isEmpty());
}

TEST_F(OverviewTabTest, whatGrowsNowIsThereWhileItGrows) {
  storeHome(morning - 1h, {file("letters", 300 * MB)});
  show(Tab::overview);
  EXPECT_FALSE(shows("Growing now"));
  growFile("Videos", "film.mkv", 9, 3 * MB);
  view->settle();
  EXPECT_TRUE(shows("Growing now"));
  EXPECT_THAT(rows(), ElementsAre("film.mkv"));
  EXPECT_THAT(subtitle("film.mkv"), "1.5\u00a0MB/s · ~/Videos");
  desktop.advance(12s);
  view->settle();
  EXPECT_THAT(subtitle("film.mkv"), testing::StartsWith("Stopped after less than a minute · "));
  desktop.advance(40s);
  view->settle();
  EXPECT_THAT(rows(), IsEmpty());
  EXPECT_FALSE(shows("Growing now"));
}

TEST_F(OverviewTabTest, whatChangedIsATree) {
  storeChanges();
  addFile("Music/left", MB);
  show(Tab::overview, {460, 900});
  // A folder with nothing but one change is in its row.
  EXPECT_THAT(rows(), ElementsAre("Home folder", "vm / disk.img", "code", "Shrunk or gone"));
  EXPECT_EQ(row("vm / disk.img")->property("tag").toString(), QStringLiteral("new"));
  EXPECT_EQ(row("code")->property("sizeText").toString().replace(QChar::Nbsp, u' '),
            QStringLiteral("+4.4 GB"));
  EXPECT_NEAR(row("code")->property("fraction").toDouble(), 4.4 / 16.4, 0.01) << "of all that came";
  click(row("code"));
  EXPECT_THAT(rows(), ElementsAre("Home folder", "vm / disk.img", "code", "shop / target / app",
                                  "site / node_modules / pack", "notes / all", "Shrunk or gone"));
  click(row("code"));
  row("Shrunk or gone")->forceActiveFocus();
  press(Qt::Key_Right);
  EXPECT_THAT(rows(),
              ElementsAre("Home folder", "vm / disk.img", "code", "Shrunk or gone", "film.mkv", "Music"));
  EXPECT_TRUE(shows("gone · ~/Downloads/film.mkv"));
  EXPECT_TRUE(shows("2 GB left · ~/Music"));
  click(row("film.mkv"), Qt::RightButton);
  EXPECT_TRUE(view->find(QStringLiteral("Copy Path")).isEmpty()) << "there is nothing to show any more";
  row("code")->forceActiveFocus();
  press(Qt::Key_Return);
  EXPECT_EQ(model->folderPath(), inHome("code"));
}

TEST_F(OverviewTabTest, theMenuOfAGrownFolderIsThatFoldersAlsoAfterAllAreShown) {
  storeGrowth(7);
  show(Tab::overview);
  click(row("Folder 2"), Qt::RightButton);
  press(Qt::Key_Escape);
  click("Show all 7");
  click(row("Folder 3"), Qt::RightButton);
  click("Copy Path");
  click(row("Folder 3"), Qt::RightButton);
  click("Move to Trash…");
  EXPECT_THAT(asked(), ElementsAre("Move to Trash?", testing::StartsWith("Folder 3 · ")));
}

TEST_F(OverviewTabTest, anotherScanToCompareWithIsChosen) {
  storeGrowth(1);
  storeHome(morning - 30h, {file("letters", 300 * MB)}, 121 * GB);
  show(Tab::overview);
  QQuickItem* picker = view->get(QStringLiteral("Compared with the scan of"));
  EXPECT_EQ(picker->property("count").toInt(), 2);
  const int before = picker->property("currentIndex").toInt();
  picker->forceActiveFocus();
  press(before == 0 ? Qt::Key_Down : Qt::Key_Up);
  EXPECT_EQ(picker->property("currentIndex").toInt(), 1 - before);
  EXPECT_TRUE(shows(before == 0 ? "Free space dropped by 40 GB, from 140 GB to 100 GB"
                                : "Free space dropped by 21 GB, from 121 GB to 100 GB"));
}

TEST_F(OverviewTabTest, whatIsNotInFilesIsShownWhereItMattersAndOnDemand) {
  const Coverage coverage{
      .places = {{.place = {.mountPoint = home, .root = "/", .fileSystem = "ext4"}, .size = 300 * MB}}};
  volumeFacts =
      VolumeFacts{.volume = {.pool = 1, .fileSystem = "ext4", .places = {{.mountPoint = home, .root = "/"}}},
                  .space = {.total = 100 * GB, .used = 310 * MB, .free = 100 * GB - 310 * MB},
                  .ownBytes = 0};
  storeHome(morning - 1h, {file("letters", 300 * MB)}, 120 * GB, coverage);
  show(Tab::overview, {460, 1200});
  EXPECT_FALSE(shows("Not in files"));
  click("Show what is not in files");
  EXPECT_TRUE(shows("100 GB = 307 MB in files + 10.2 MB not in files + 99.7 GB free."));
  view.reset();
  ui.reset();

  volumeFacts->space.used += 4 * GB;
  volumeFacts->space.free -= 4 * GB;
  volumeFacts->deleted.files = {{.size = 4 * GB, .pool = 1, .path = "/log", .programs = {{7, "postgres"}}}};
  show(Tab::overview, {460, 1200});
  EXPECT_TRUE(shows("Not in files"));
  EXPECT_FALSE(shows("postgres"));
  const auto role = [&](const char* row) { return QAccessible::queryAccessibleInterface(get(row))->role(); };
  EXPECT_EQ(role("Deleted, but still open, 4 GB"), QAccessible::Button);
  EXPECT_EQ(role("Unexplained, 10.2 MB"), QAccessible::StaticText) << "a click on it would do nothing";
  click(get("Deleted, but still open, 4 GB"));
  EXPECT_TRUE(shows("postgres"));
  // A panel that opens shows what has changed since.
  volumeFacts->deleted.files.front().programs.front().name = "journald";
  desktop.advance(61s);
  model->panelWillShow();
  settle();
  EXPECT_TRUE(shows("journald"));
}

TEST_F(OverviewTabTest, aSuggestionUnfoldsByMouseAndKeyboard) {
  storeHome(morning - 1h, {support::folder("Downloads", {file("film.iso", 900 * MB)}),
                           support::folder("code", {nested("shop/node_modules", {file("a", 600 * MB)}),
                                                    nested("site/node_modules", {file("b", 500 * MB)})})});
  show(Tab::overview);
  EXPECT_THAT(rows(), IsEmpty());
  QQuickItem* modules = get("node_modules, 1.1 GB");
  click(modules);
  EXPECT_THAT(rows(), ElementsAre("node_modules", "node_modules"));
  EXPECT_EQ(view->find({}, "ItemRow").at(1)->property("subtitle").toString(),
            QStringLiteral("~/code/site/node_modules"));
  click(modules);
  EXPECT_THAT(rows(), IsEmpty());
  modules->childItems().first()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Return);
  EXPECT_THAT(rows(), SizeIs(2));
  press(Qt::Key_Tab);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("code/site/node_modules"));
}

TEST_F(OverviewTabTest, aSuggestionOfOneFolderLeadsThere) {
  storeHome(morning - 1h, {support::folder("Downloads", {file("film.iso", 900 * MB)})});
  show(Tab::overview);
  click(get("Downloads, 922 MB"));
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("Downloads"));
}

TEST_F(OverviewTabTest, theTrashIsEmptiedOnlyAfterAQuestion) {
  addFile(".Trash/film", 1'200 * MB);
  storeHome(morning - 1h, {support::folder(".Trash", {file("film", 1'200 * MB)})});
  show(Tab::overview);
  EXPECT_TRUE(shows("1.2 GB is sitting in the Trash"));
  EXPECT_TRUE(shows("It takes space until you empty it."));
  click("Show contents");
  EXPECT_THAT(desktop.opener.revealed, ElementsAre(inHome(".Trash")));
  click("Empty Trash");
  EXPECT_THAT(asked(), ElementsAre("Empty the Trash?", testing::_));
  EXPECT_TRUE(exists(".Trash/film"));
  desktop.tasks.hold(Tasks::Priority::alone);
  confirm();
  settle();
  EXPECT_FALSE(button("Emptying…")->isEnabled());
  EXPECT_TRUE(exists(".Trash/film"));
}

TEST_F(OverviewTabTest, aSmallTrashIsASuggestionWithAButton) {
  addFile(".Trash/film", 600 * MB);
  storeHome(morning - 1h, {support::folder(".Trash", {file("film", 600 * MB)})});
  show(Tab::overview);
  click("Empty Trash");
  EXPECT_THAT(asked(), ElementsAre("Empty the Trash?", testing::_));
  EXPECT_THAT(rows(), IsEmpty()) << "the button does not unfold the suggestion";
  model->cleanups().dismiss();
  settle();
  click(get("Trash, 614 MB"));
  EXPECT_THAT(rows(), ElementsAre(".Trash"));
}

TEST_F(OverviewTabTest, anOldBackupIsDeletedOnlyAfterAQuestion) {
  addBackup("2020-01-01T00:00:00Z");
  storeHome(morning - 1h, {backupTree(30 * GB)});
  show(Tab::overview);
  EXPECT_TRUE(shows("30 GB in an old backup of Ann's phone"));
  EXPECT_TRUE(shows("Last backed up 6 years ago. Newer backups aren't affected."));
  click("Show in File Manager");
  EXPECT_THAT(desktop.opener.revealed, SizeIs(1));
  click("Delete backup");
  EXPECT_THAT(asked(), ElementsAre("Delete this backup?", "Ann's phone · 30 GB"));
  EXPECT_TRUE(exists("Library/Application Support/MobileSync/Backup/phone"));
}

TEST_F(OverviewTabTest, missingAccessHasACard) {
  storeHome(morning - 1h, {file("letters", 300 * MB)});
  hasAccess = false;
  show(Tab::overview);
  EXPECT_TRUE(shows("File access is limited"));
  EXPECT_FALSE(shows("Nothing obvious to clean up."));
  click("Open Settings");
  EXPECT_THAT(desktop.opener.pages, ElementsAre(Opener::SettingsPage::fullDiskAccess));
}

}  // namespace
}  // namespace spacemint
