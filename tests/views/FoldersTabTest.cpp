// The tab with the folders, and the actions of a row.

#include "views/ShownTabs.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;

class FoldersTabTest : public ShownTabs {
 protected:
  // Two folders with files, a file, the Trash, and small items that are not listed.
  ShownView& showFolders() {
    addFile(".Trash/gone.zip", 300 * MB);
    storeHome(morning - 1h,
              {support::folder(
                   "Films", {support::folder("Old", {file("first.mov", 2 * GB)}), file("holiday.mov", GB)}),
               support::folder("Papers", {file("thesis.pdf", 400 * MB)}, {.unlisted = MB}),
               support::folder(".Trash", {file("gone.zip", 300 * MB)}), file("disk.img", 200 * MB)});
    return show(Tab::folders);
  }
  QString focusedRow() {
    for (const QQuickItem* item = view->window().activeFocusItem(); item != nullptr;
         item = item->parentItem()) {
      if (item->inherits("QQuickFocusScope") && item->property("rowId").isValid()) {
        return item->property("title").toString();
      }
    }
    return {};
  }
  QStringList menuEntries() {
    QStringList texts;
    for (const QQuickItem* entry : view->find({}, "QQuickMenuItem")) {
      texts << entry->property("text").toString();
    }
    return texts;
  }
};

TEST_F(FoldersTabTest, goesIntoAFolderAndBackByMouse) {
  showFolders();
  EXPECT_THAT(rows(), ElementsAre("Films", "Papers", ".Trash", "disk.img"));
  EXPECT_FALSE(view->find(QStringLiteral("Home folder")).isEmpty());
  EXPECT_EQ(QAccessible::queryAccessibleInterface(list())->role(), QAccessible::List);
  click(row("Papers"));
  EXPECT_THAT(rows(), ElementsAre("thesis.pdf", "Other small items"));
  click("Home folder");
  EXPECT_THAT(rows(), ElementsAre("Films", "Papers", ".Trash", "disk.img"));
  EXPECT_EQ(list()->property("currentIndex").toInt(), 1) << "the folder that was left is the current row";
}

TEST_F(FoldersTabTest, showsWhatTheScanCouldNotReadOrLeftOut) {
  Coverage coverage;
  coverage.unread = {.folders = 1, .paths = {inHome("Films/locked/inside")}};
  coverage.leftOut = {{inHome("Films/copies/monday"), LeftOut::Kind::snapshot, morning - 26h},
                      {inHome("nas"), LeftOut::Kind::remote}};
  storeHome(morning - 1h, {support::folder("Films", {file("holiday.mov", GB)})}, 120 * GB, coverage);
  show(Tab::folders);
  EXPECT_THAT(rows(), ElementsAre("Films", "~/nas"));
  EXPECT_FALSE(view->find(QStringLiteral("at least 1 GB")).isEmpty());
  click(row("Films"));
  EXPECT_THAT(rows(), ElementsAre("holiday.mov", "~/Films/copies/monday"));
  EXPECT_FALSE(view->find(QStringLiteral("Snapshot from 1 day ago, not scanned")).isEmpty());
  EXPECT_FALSE(view->find(QStringLiteral("at least 1 GB")).isEmpty());
}

TEST_F(FoldersTabTest, aDoubleClickGoesDownOneFolderOnly) {
  showFolders();
  view->doubleClick(row("Films"));
  settle();
  EXPECT_EQ(model->folderPath(), inHome("Films"));
}

TEST_F(FoldersTabTest, goesIntoAFolderAndBackByKeyboard) {
  showFolders();
  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Return);
  EXPECT_THAT(rows(), ElementsAre("Old", "holiday.mov"));
  EXPECT_EQ(focusedRow(), QStringLiteral("Old"));
  press(Qt::Key_Down);
  EXPECT_EQ(focusedRow(), QStringLiteral("holiday.mov"));
  press(Qt::Key_Return);
  EXPECT_EQ(model->folderPath(), inHome("Films")) << "a file opens nothing";
  press(Qt::Key_Home);
  press(Qt::Key_Return);
  EXPECT_THAT(rows(), ElementsAre("first.mov"));
  press(Qt::Key_Backspace);
  press(Qt::Key_Left, Qt::AltModifier);
  EXPECT_THAT(rows(), ElementsAre("Films", "Papers", ".Trash", "disk.img"));
  EXPECT_EQ(focusedRow(), QStringLiteral("Films"));
  press(Qt::Key_Backspace);
  EXPECT_THAT(rows(), ElementsAre("Films", "Papers", ".Trash", "disk.img"));
  press(Qt::Key_End);
  EXPECT_EQ(focusedRow(), QStringLiteral("disk.img"));
}

TEST_F(FoldersTabTest, aFolderWithoutListedChildrenSaysWhy) {
  storeHome(morning - 1h, {support::folder("Mail", {}, {.unlisted = 90 * MB, .unlistedFiles = 20'000})});
  show(Tab::folders);
  click(row("Mail"));
  EXPECT_THAT(rows(), ElementsAre("Only small items, each under 20 MB"));
}

TEST_F(FoldersTabTest, buttonsAppearUnderThePointerAndAskBeforeTheyRemove) {
  showFolders();
  EXPECT_TRUE(view->find(QStringLiteral("Move to Trash…")).isEmpty());
  pressOnRow("Films", "Move to Trash…");
  EXPECT_THAT(asked(), ElementsAre("Move to Trash?", "Films · 3 GB"));
  EXPECT_EQ(model->folderPath(), std::nullopt) << "the row itself was not clicked";
  model->cleanups().dismiss();
  settle();
  view->hover(row("Papers"));
  // The buttons above it belong to the folder that is shown.
  click(view->find(QStringLiteral("Show in File Manager"), "QQuickAbstractButton").last());
  EXPECT_THAT(desktop.opener.revealed, ElementsAre(inHome("Papers")));
  click(row(".Trash"));
  pressOnRow("gone.zip", "Delete permanently…");
  EXPECT_THAT(asked(), ElementsAre("Delete permanently?", testing::StartsWith("gone.zip · 307")));
  EXPECT_TRUE(view->find(QStringLiteral("Move to Trash…")).isEmpty());
}

TEST_F(FoldersTabTest, marksSeveralByMouseAndByKeyboardAndAsksOnce) {
  showFolders();
  const auto mark = [&](const char* title, Qt::KeyboardModifier modifier) {
    view->click(row(title), Qt::LeftButton, modifier);
    settle();
  };
  const ItemRows& items = *ui->folders()->content();
  mark("Films", Qt::ControlModifier);
  mark("Papers", Qt::ControlModifier);
  EXPECT_EQ(model->folderPath(), std::nullopt) << "a folder that is marked is not opened";
  EXPECT_EQ(items.markedText().replace(QChar::Nbsp, u' '), QStringLiteral("2 selected · 3.4 GB"));
  mark("Papers", Qt::ControlModifier);
  mark("disk.img", Qt::ShiftModifier);
  EXPECT_EQ(items.markedCount(), 3) << "from the last one that was marked or not";
  press(Qt::Key_Escape);
  EXPECT_EQ(items.markedCount(), 0);
  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Home);
  press(Qt::Key_Down, Qt::ShiftModifier);
  press(Qt::Key_End);
  press(Qt::Key_Space);
  EXPECT_EQ(items.markedCount(), 3);
  // The sum has each byte once, also in a tree with a folder and what is in it.
  ItemRows& tree = *ui->explorer()->rows();
  ui->explorer()->setShowsRows(true);
  tree.markAll();
  const QString sum = tree.markedText().section(u'·', 1);
  ui->explorer()->turnRow(0, true);
  tree.markAll();
  EXPECT_GT(tree.markedCount(), 4);
  EXPECT_EQ(tree.markedText().section(u'·', 1), sum);
  click("Remove…");
  EXPECT_THAT(asked(), ElementsAre("Move 3 items to the Trash?", "3 items · 3.6 GB"));
  EXPECT_TRUE(view->shows(QStringLiteral("Papers · 411 MB")));
}

TEST_F(FoldersTabTest, leavesAFolderOutOfScansAndTakesThatBack) {
  showFolders();
  const auto before = *model->history().snapshot();
  click(row("Films"), Qt::RightButton);
  click("Leave Out of Scans");
  EXPECT_THAT(rows(), ElementsAre("Papers", ".Trash", "disk.img", "Left out of scans"));
  EXPECT_EQ(row("Left out of scans")->property("sizeText").toString().replace(QChar::Nbsp, u' '),
            QStringLiteral("3 GB"));
  EXPECT_THAT(model->prefs().excludes(), ElementsAre(inHome("Films")));
  EXPECT_EQ(model->history().snapshot()->coverage.excludes, model->prefs().excludes());
  click("Undo");
  EXPECT_EQ(*model->history().snapshot(), before);
  EXPECT_THAT(model->prefs().excludes(), IsEmpty());
}

TEST_F(FoldersTabTest, sortsByTheNumberOfFiles) {
  storeHome(morning - 1h, {support::folder("Mail", {}, {.unlisted = 90 * MB, .unlistedFiles = 20'000}),
                           support::folder("Films", {file("a", GB)}, {.unlistedFiles = 9})});
  show(Tab::folders);
  EXPECT_THAT(rows(), ElementsAre("Films", "Mail"));
  ui->folders()->setOrder(1);
  settle();
  EXPECT_THAT(rows(), ElementsAre("Mail", "Films"));
  EXPECT_EQ(row("Films")->property("sizeText").toString(), QStringLiteral("10 files"));
  EXPECT_EQ(ui->folders()->rowOf(0), 1) << "pictures keep the order of the sizes";
  // The window has its list beside a map.
  ui->explorer()->setShowsRows(true);
  ui->explorer()->setOrder(1);
  model->leaveOut(inHome("Films/a"));
  settle();
  const ItemRows& list = *ui->explorer()->rows();
  const auto text = [&](int i, int role) { return list.data(list.index(i), role).toString(); };
  EXPECT_EQ(text(0, ItemRows::TitleRole), QStringLiteral("Mail"));
  EXPECT_EQ(text(1, ItemRows::SizeTextRole), QStringLiteral("9 files"));
  EXPECT_EQ(text(2, ItemRows::TitleRole), QStringLiteral("Left out of scans"));
}

TEST_F(FoldersTabTest, whatIsTooSmallToBeListedHasNoButtonsAndNoMenu) {
  showFolders();
  click(row("Papers"));
  view->hover(row("Other small items"));
  settle();
  const double top = row("Other small items")->mapToScene({}).y();
  for (const QQuickItem* any : view->find(QStringLiteral("Show in File Manager"), "QQuickAbstractButton")) {
    EXPECT_LT(any->mapToScene({0, any->height()}).y(), top);
  }
  click(row("Other small items"), Qt::RightButton);
  EXPECT_THAT(menuEntries(), IsEmpty());
}

TEST_F(FoldersTabTest, theMenuOpensByMouseAndByEitherKey) {
  showFolders();
  const QStringList all{QStringLiteral("Show in File Manager"), QStringLiteral("Show in Folders"),
                        QStringLiteral("Copy Path"), QStringLiteral("Leave Out of Scans"),
                        QStringLiteral("Move to Trash…")};
  click(row("Films"), Qt::RightButton);
  EXPECT_EQ(menuEntries(), all);
  press(Qt::Key_Escape);
  EXPECT_THAT(menuEntries(), IsEmpty());
  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Down);
  press(Qt::Key_Menu);
  EXPECT_EQ(menuEntries(), all);
  press(Qt::Key_Escape);
  press(Qt::Key_F10, Qt::ShiftModifier);
  EXPECT_EQ(menuEntries(), all);
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), inHome("Papers"));
  press(Qt::Key_Menu);
  for (int i = 0; i < 5; ++i) press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_THAT(asked(), ElementsAre("Move to Trash?", "Papers · 411 MB"));
}

TEST_F(FoldersTabTest, theButtonsOfARowAreReachedByTheKeyboard) {
  showFolders();
  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  press(Qt::Key_Return);
  EXPECT_THAT(asked(), ElementsAre("Move to Trash?", "Films · 3 GB"));
}

TEST_F(FoldersTabTest, namesAreShownAsTheyAreAndShortenedInTheMiddle) {
  const std::string name = "the film of a holiday " + std::string(120, 'o') + " that nobody watches.mov";
  storeHome(morning - 1h, {file(name, 4 * GB), file("عطلة الصيف.mov", 3 * GB), file("<b>bold", 2 * GB),
                           file("two\nlines", GB), file("exe.\u202Egnp", 900 * MB)});
  show(Tab::folders);
  EXPECT_THAT(rows(), ElementsAre(name, "عطلة الصيف.mov", "<b>bold", "two\uFFFDlines", "exe.\uFFFDgnp"));
  const QQuickItem* first = view->find({}, "ItemRow").value(0);
  ASSERT_TRUE(first);
  const double height = first->height();
  const double right = first->mapToScene({first->width(), 0}).x();
  for (QQuickItem* item : view->find({}, "ItemRow")) EXPECT_EQ(item->height(), height);
  int texts = 0;
  for (const QQuickItem* text : view->find({}, "QQuickText")) {
    const QString shown = text->property("text").toString();
    if (!shown.contains(QStringLiteral("film")) && !shown.startsWith(QStringLiteral("عطلة")) &&
        !shown.startsWith(QLatin1Char('<'))) {
      continue;
    }
    ++texts;
    EXPECT_EQ(text->property("textFormat").toInt(), Qt::PlainText);
    EXPECT_EQ(text->property("elide").toInt(), Qt::ElideMiddle);
    EXPECT_EQ(text->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft);
    EXPECT_EQ(text->property("truncated").toBool(), shown.contains(QStringLiteral("film")));
    EXPECT_LT(text->mapToScene({text->width(), 0}).x(), right);
  }
  EXPECT_EQ(texts, 3);
}

TEST_F(FoldersTabTest, rowsThatAreGoneAreNotFound) {
  std::vector<Node> many = numbered("file ", 300, GB);
  many.push_back(support::folder("Small", {file("one", 30 * MB)}));
  storeHome(morning - 1h, std::move(many));
  show(Tab::folders);
  press(Qt::Key_Tab);
  list()->forceActiveFocus(Qt::TabFocusReason);
  for (int i = 0; i < 4; ++i) press(Qt::Key_PageDown);
  for (int i = 0; i < 4; ++i) press(Qt::Key_PageUp);
  EXPECT_EQ(rows().front(), "file 1");
  EXPECT_LT(rows().size(), 30U);
  model->setFolderPath(inHome("Small"));
  settle();
  EXPECT_THAT(rows(), ElementsAre("one"));
}

using FilesTabTest = ShownTabs;

TEST_F(FilesTabTest, listsTheLargestFirstEachWithItsFolder) {
  addFile(".local/share/Trash/files/old/gone.iso", 40 * MB);
  storeHome(morning - 1h, {nested("Movies/Old", {file("first.mov", 2 * GB)}), file("disk.img", 3 * GB),
                           nested(".local/share/Trash/files/old", {file("gone.iso", 40 * MB)})});
  show(Tab::files);
  EXPECT_THAT(rows(), ElementsAre("disk.img", "first.mov", "gone.iso"));
  EXPECT_EQ(subtitle("gone.iso"), "In the Trash");
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

TEST_F(FilesTabTest, findsByWordsKindAndAge) {
  Node old = file("old.mov", 500 * MB);
  old.modified = morning - 24h * 400;
  storeHome(morning - 1h, {nested("Movies/Old", {file("first.mov", 2 * GB), old}), file("disk.img", 3 * GB)});
  show(Tab::files);
  Files& files = *ui->files();
  const auto find = [&](const char* words) {
    files.setWords(QString::fromUtf8(words));
    settle();
  };
  find("old");
  EXPECT_THAT(rows(), ElementsAre("Old", "old.mov"));
  EXPECT_EQ(files.status(), QStringLiteral("2 found"));
  click(row("Old"));
  EXPECT_EQ(model->folderPath(), inHome("Movies/Old"));
  model->setTab(Tab::files);
  find("older:x");
  EXPECT_TRUE(shows("“older:x” is not understood, or said twice"));
  EXPECT_THAT(rows(), ElementsAre("Old", "old.mov")) << "the last results stay";
  find("");
  EXPECT_EQ(files.kinds(), (QStringList{QStringLiteral("Disk images"), QStringLiteral("Video")}));
  click(view->find({}, "KindButton").value(1, view->root()));
  EXPECT_EQ(files.words(), QStringLiteral("type:video"));
  EXPECT_THAT(rows(), ElementsAre("first.mov", "old.mov"));
  files.chooseAge(3);
  settle();
  EXPECT_EQ(files.words(), QStringLiteral("type:video older:1y"));
  EXPECT_THAT(rows(), ElementsAre("old.mov"));
  EXPECT_EQ(subtitle("old.mov"), "1 year ago · ~/Movies/Old");
  click(view->find({}, "KindButton").value(1, view->root()));
  EXPECT_EQ(files.words(), QStringLiteral("older:1y"));
}

TEST_F(FilesTabTest, withoutLargeFilesSaysSo) {
  storeHome(morning - 1h, {support::folder("Mail", {}, {.unlisted = 90 * MB})});
  show(Tab::files);
  EXPECT_TRUE(shows("No files over 20 MB."));
  EXPECT_THAT(rows(), IsEmpty());
}

}  // namespace
}  // namespace spacemint
