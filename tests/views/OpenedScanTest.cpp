// A scan from a file, which is only looked at, in place of the scan of this computer.

#include "core/history/NcduFormat.h"
#include "support/Files.h"
#include "views/ShownTabs.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

#include <sys/stat.h>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::HasSubstr;

class OpenedScanTest : public ShownTabs {
 protected:
  // The home folder has the same path on the other computer.
  std::string writeExport() {
    const Snapshot scan{
        .date = morning - 50h,
        .root = support::folder(home, {support::folder("db", {file("table", 7 * GB)}), file("log", GB)})};
    return writeText(folder / "usage.json", NcduFormat::encode(scan, "db1", "1"));
  }
  void open(const std::string& path) {
    model->open(path);
    settle();
  }
  void drop(const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter{{200, 300}, Qt::CopyAction, &data, Qt::LeftButton, {}};
    QCoreApplication::sendEvent(&view->window(), &enter);
    QDropEvent dropped{{200, 300}, Qt::CopyAction, &data, Qt::LeftButton, {}};
    QCoreApplication::sendEvent(&view->window(), &dropped);
    settle();
  }
  QStringList tabs() { return ui->page()->tabTitles(); }
};

TEST_F(OpenedScanTest, isOnlyLookedAt) {
  addFile("log", 40 * MB);
  storeHome(morning - 1h, {file("log", 40 * MB)});
  for (const QSize size : {QSize{460, 700}, QSize{800, 700}, QSize{1100, 700}}) {
    show(Tab::overview, size);
    view->root()->setProperty("windowed", true);
    settle();
    open(writeExport());
    EXPECT_TRUE(shows("Scan of db1, 2 days ago"));
    EXPECT_TRUE(shows((home + ": 8 GB in 2 files").c_str()));
    EXPECT_EQ(tabs(), (QStringList{QStringLiteral("Folders"), QStringLiteral("Large files")}));
    EXPECT_FALSE(shows("Scan now"));
    EXPECT_THAT(rows(), ElementsAre("db", "log")) << size.width();
    // The file exists here as well, so that only the source of the scan forbids these.
    auto* list = size.width() < 720 ? ui->folders()->content() : ui->explorer()->rows();
    const int log = list->rowIdAt(1);
    EXPECT_FALSE(list->data(list->index(1), ItemRows::CanTrashRole).toBool());
    list->remove(log);
    list->toggleMark(log);
    list->removeMarked();
    list->leaveOut(log);
    list->reveal(log);
    EXPECT_FALSE(isAsked());
    EXPECT_TRUE(model->prefs().excludes().empty());
    EXPECT_THAT(desktop.opener.revealed, testing::IsEmpty());
    view->hover(row("log"));
    click(row("log"), Qt::RightButton);
    EXPECT_EQ(view->find({}, "QQuickMenuItem").size(), 2) << "show in folders, copy the path";
    press(Qt::Key_Escape);
    // What happens on this computer meanwhile does not show.
    model->scans().scan();
    settle();
    EXPECT_THAT(rows(), ElementsAre("db", "log"));
    click("Back to this computer");
    EXPECT_EQ(tabs().size(), 4);
    EXPECT_EQ(rows().front(), "log");
    EXPECT_TRUE(
        ui->folders()->content()->data(ui->folders()->content()->index(0), ItemRows::CanTrashRole).toBool());
    view.reset();
    ui.reset();
  }
}

TEST_F(OpenedScanTest, leadsBackWhereItHasNoTab) {
  storeScan(morning - 1h);
  show(Tab::files);
  const std::string stored = model->history().entries().front().path;
  model->setFileSearch("older:soon");  // not understood, so the rows of before stay
  ASSERT_EQ(ui->files()->largest()->count(), 1);
  drop(stored);
  EXPECT_EQ(ui->files()->largest()->count(), 0) << "but not those of another scan";
  EXPECT_TRUE(shows(("Scan in " + stored.substr(stored.rfind('/') + 1) + ", 1 hour ago").c_str()));
  ui->page()->showWhatToFree();
  settle();
  EXPECT_TRUE(model->shown().isOfHere());
  EXPECT_EQ(model->tab(), Tab::overview);
  // A folder is of this computer.
  open(stored);
  open(home);
  EXPECT_TRUE(model->shown().isOfHere());
}

TEST_F(OpenedScanTest, saysWhyAFileIsRefused) {
  storeScan(morning - 1h);
  show(Tab::folders);
  open(writeExport());
  std::filesystem::resize_file(writeText(folder / "huge"), ShownScan::largestFile + 1);
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  const std::pair<std::string, std::string> cases[]{
      {folder / "none", "No such file"},
      {folder / "pipe", "Invalid argument"},
      {folder / "huge", "huge is larger than 1 GB"},
      {writeText(folder / "text", "no scan"), "text: not an export of disk usage: no JSON at byte"},
      {writeText(folder / "object", "{}"), "object: "},
      {writeText(folder / "cut", readText(folder / "usage.json").substr(0, 90)), "cut: not an export"}};
  for (const auto& [path, text] : cases) {
    open(path);
    EXPECT_THAT(message(), HasSubstr(text));
    EXPECT_THAT(rows(), ElementsAre("db", "log")) << "the scan before stays";
  }
}

}  // namespace
}  // namespace spacemint
