// The tab with what grew and what can be freed.

#include "views/ShownTabs.h"

#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OverviewTabTest : public ShownTabs {
 protected:
  ShownView& showOverview() { return show(Tab::overview); }
};

TEST_F(OverviewTabTest, withoutAnEarlierScanSaysWhatWillBeHere) {
  storeHome(morning - 1h, {file("letters", 300 * MB)});
  showOverview();
  EXPECT_TRUE(shows("After the next scan, this shows where new space went."));
  EXPECT_TRUE(shows("Nothing obvious to clean up."));
  EXPECT_THAT(rows(), IsEmpty());
  EXPECT_TRUE(view->find(QStringLiteral("Compared with the scan of")).isEmpty());
}

TEST_F(OverviewTabTest, withNothingGrownSaysSo) {
  storeGrowth(0);
  showOverview();
  EXPECT_TRUE(shows("Nothing grew by more than 100 MB."));
  EXPECT_TRUE(shows("Free space dropped by 20 GB, from 140 GB to 120 GB"));
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(OverviewTabTest, anEarlierScanThatCannotBeReadIsToBeReplacedByAnother) {
  storeGrowth(2);
  std::ofstream{store.entries().back().path} << "{";
  showOverview();
  EXPECT_TRUE(shows("The earlier scan couldn't be read. Pick another one above."));
  EXPECT_FALSE(view->find(QStringLiteral("Compared with the scan of")).isEmpty());
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(OverviewTabTest, fiveGrownFoldersAreAllShown) {
  storeGrowth(5);
  showOverview();
  EXPECT_THAT(rows(), ElementsAre("Folder 1", "Folder 2", "Folder 3", "Folder 4", "Folder 5"));
  EXPECT_TRUE(view->find({}, "QuietButtonStyle").isEmpty());
}

TEST_F(OverviewTabTest, ofSixGrownFoldersTheLastIsShownOnDemand) {
  storeGrowth(6);
  showOverview();
  EXPECT_THAT(rows(), ElementsAre("Folder 1", "Folder 2", "Folder 3", "Folder 4", "Folder 5"));
  click("Show all 6");
  EXPECT_THAT(rows(), ElementsAre("Folder 1", "Folder 2", "Folder 3", "Folder 4", "Folder 5", "Folder 6"));
  click("Show less");
  EXPECT_THAT(rows(), SizeIs(5));
  EXPECT_TRUE(shows("Show all 6"));
}

TEST_F(OverviewTabTest, theMenuOfAGrownFolderIsThatFoldersAlsoAfterAllAreShown) {
  storeGrowth(7);
  showOverview();
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
  showOverview();
  QQuickItem* picker = view->get(QStringLiteral("Compared with the scan of"));
  EXPECT_EQ(picker->property("count").toInt(), 2);
  const int before = picker->property("currentIndex").toInt();
  picker->forceActiveFocus();
  press(before == 0 ? Qt::Key_Down : Qt::Key_Up);
  EXPECT_EQ(picker->property("currentIndex").toInt(), 1 - before);
  EXPECT_TRUE(shows(before == 0 ? "Free space dropped by 20 GB, from 140 GB to 120 GB"
                                : "Free space dropped by 1 GB, from 121 GB to 120 GB"));
}

TEST_F(OverviewTabTest, aSuggestionUnfoldsByMouseAndKeyboard) {
  storeHome(morning - 1h, {support::folder("Downloads", {file("film.iso", 900 * MB)}),
                           support::folder("code", {nested("shop/node_modules", {file("a", 600 * MB)}),
                                                    nested("site/node_modules", {file("b", 500 * MB)})})});
  showOverview();
  EXPECT_THAT(rows(), IsEmpty());
  QQuickItem* modules = view->get(QStringLiteral("node_modules, 1.1 GB"), "QQuickAbstractButton");
  click(modules);
  EXPECT_THAT(rows(), ElementsAre("node_modules", "node_modules"));
  EXPECT_EQ(view->find({}, "ItemRow").at(1)->property("subtitle").toString(),
            QStringLiteral("~/code/site/node_modules"));
  click(modules);
  EXPECT_THAT(rows(), IsEmpty());
  modules->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Return);
  EXPECT_THAT(rows(), SizeIs(2));
  press(Qt::Key_Tab);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("code/site/node_modules"));
}

TEST_F(OverviewTabTest, theTrashIsEmptiedOnlyAfterAQuestion) {
  addFile(".Trash/film", 1'200 * MB);
  storeHome(morning - 1h, {support::folder(".Trash", {file("film", 1'200 * MB)})});
  showOverview();
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
  showOverview();
  click("Empty Trash");
  EXPECT_THAT(asked(), ElementsAre("Empty the Trash?", testing::_));
  EXPECT_THAT(rows(), IsEmpty()) << "the button does not unfold the suggestion";
  model->cleanups().dismiss();
  settle();
  click(view->get(QStringLiteral("Trash, 614 MB"), "QQuickAbstractButton"));
  EXPECT_THAT(rows(), ElementsAre(".Trash"));
}

TEST_F(OverviewTabTest, anOldBackupIsDeletedOnlyAfterAQuestion) {
  addBackup("2020-01-01T00:00:00Z");
  storeHome(morning - 1h, {backupTree(30 * GB)});
  showOverview();
  EXPECT_TRUE(shows("30 GB in an old backup of Ann's phone"));
  EXPECT_TRUE(shows("Last backed up 6 years ago. Newer backups aren't affected."));
  click("Show in Finder");
  EXPECT_THAT(desktop.opener.revealed, SizeIs(1));
  click("Delete backup");
  EXPECT_THAT(asked(), ElementsAre("Delete this backup?", "Ann's phone · 30 GB"));
  EXPECT_TRUE(exists("Library/Application Support/MobileSync/Backup/phone"));
}

TEST_F(OverviewTabTest, missingAccessHasACard) {
  storeHome(morning - 1h, {file("letters", 300 * MB)});
  hasAccess = false;
  showOverview();
  EXPECT_TRUE(shows("Full Disk Access is off"));
  EXPECT_FALSE(shows("Nothing obvious to clean up."));
  click("Turn on");
  EXPECT_THAT(desktop.opener.pages, ElementsAre(Opener::SettingsPage::fullDiskAccess));
}

}  // namespace
}  // namespace spacemint
