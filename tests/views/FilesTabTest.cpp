// The tab with the largest files.

#include "views/ShownTabs.h"

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;

using FilesTabTest = ShownTabs;

TEST_F(FilesTabTest, listsTheLargestFirstEachWithItsFolder) {
  storeHome(morning - 1h, {nested("Movies/Old", {file("first.mov", 2 * GB)}), file("disk.img", 3 * GB)});
  show(Tab::files);
  EXPECT_THAT(rows(), ElementsAre("disk.img", "first.mov"));
  EXPECT_EQ(row("disk.img")->property("subtitle").toString(), QStringLiteral("~"));
  EXPECT_EQ(row("first.mov")->property("subtitle").toString(), QStringLiteral("~/Movies/Old"));
  click(row("disk.img"));
  EXPECT_EQ(model->tab(), Tab::files) << "a file opens nothing";
  click(row("first.mov"), Qt::RightButton);
  click("Show in Folders");
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("Movies/Old"));
  EXPECT_THAT(rows(), ElementsAre("first.mov"));
}

TEST_F(FilesTabTest, withoutLargeFilesSaysSo) {
  storeHome(morning - 1h, {support::folder("Mail", {}, {.unlisted = 90 * MB})});
  show(Tab::files);
  EXPECT_TRUE(shows("No files over 20 MB."));
  EXPECT_THAT(rows(), IsEmpty());
}

}  // namespace
}  // namespace spacemint
