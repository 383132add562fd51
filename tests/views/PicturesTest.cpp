// The pictures and the large window: by mouse, by wheel and by keyboard.

#include "views/ShownTabs.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QWheelEvent>

#include <map>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;

class PicturesTest : public ShownTabs {
 protected:
  static Node films(Bytes old) {
    return support::folder("Films",
                           {support::folder("Old", {file("first.mov", old)}), file("holiday.mov", 3 * GB)});
  }
  void showWindow(QSize size, Tab tab = Tab::folders) {
    storeHome(morning - 49h, {films(4 * GB), file("disk.img", 2 * GB)}, 130 * GB);
    storeHome(morning - 25h, {films(4 * GB), file("disk.img", 2 * GB)}, 125 * GB);
    storeHome(morning - 1h, {films(6 * GB), file("disk.img", 2 * GB)}, 120 * GB);
    show(tab, size);
    view->root()->setProperty("windowed", true);
    settle();
  }
  bool has(const char* type) { return !view->find({}, type).isEmpty(); }
  QQuickItem* only(const char* type) { return view->find({}, type).value(0, view->root()); }
  // A place in a picture, in shares of its sides.
  QPoint placeIn(const QQuickItem* item, double x, double y) {
    return item->mapToScene({x * item->width(), y * item->height()}).toPoint();
  }
  void clickAt(QPoint place, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(&view->window(), button, {}, place);
    settle();
  }
  void doubleClickAt(QPoint place) {
    QTest::mouseDClick(&view->window(), Qt::LeftButton, {}, place);
    settle();
  }
  void wheelAt(QPoint place, int turn) {
    QWheelEvent wheel{QPointF{place},
                      view->window().mapToGlobal(QPointF{place}),
                      {},
                      {0, turn},
                      Qt::NoButton,
                      {},
                      Qt::NoScrollPhase,
                      false};
    QCoreApplication::sendEvent(&view->window(), &wheel);
    settle();
  }
  std::string selected() { return ui->explorer()->aboutName().toStdString(); }
  std::string described(QQuickItem* item) {
    return QAccessible::queryAccessibleInterface(item)->text(QAccessible::Description).toStdString();
  }
};

TEST_F(PicturesTest, theWindowHasALayoutForEachWidthInTheSizeOfItsText) {
  showWindow({719, 700});
  const auto layout = [&](int width, double textScale) {
    view->theme().setTextScale(textScale);
    view->window().resize(width, 700);
    settle();
    return std::tuple{has("ExplorerView"), has("SideBar"), has("spacemint::Icicle")};
  };
  EXPECT_EQ(layout(719, 1), (std::tuple{false, false, true}));
  EXPECT_EQ(layout(720, 1), (std::tuple{true, false, false}));
  EXPECT_EQ(layout(959, 1), (std::tuple{true, false, false}));
  EXPECT_EQ(layout(960, 1), (std::tuple{true, true, false}));
  EXPECT_EQ(layout(960, 1.4), (std::tuple{false, false, true}));
  EXPECT_EQ(layout(1440, 2), (std::tuple{true, false, false}));
}

TEST_F(PicturesTest, listAndMapShareTheSelectionTheFolderAndTheMenu) {
  showWindow({1080, 720});
  EXPECT_THAT(rows(), ElementsAre("Films", "disk.img"));
  const QQuickItem* map = only("spacemint::TreeMap");
  // The largest file is at the upper left, in two frames.
  const QPoint first = placeIn(map, 0.1, 0.3);
  clickAt(first);
  EXPECT_EQ(selected(), "first.mov");
  EXPECT_THAT(rows(), ElementsAre("Films", "Old", "first.mov", "holiday.mov", "disk.img"));
  EXPECT_TRUE(row("first.mov")->property("isSelected").toBool());
  EXPECT_THAT(described(only("spacemint::TreeMap")), testing::HasSubstr("first.mov, 6\u00a0GB"));
  click(row("disk.img"));
  EXPECT_EQ(selected(), "disk.img");
  const QPointF frame = only("spacemint::TreeMap")->property("selectedFrame").toRectF().topLeft();
  EXPECT_GT(frame.x() + frame.y(), map->width() / 2) << "the smaller one is at the end";

  clickAt(first, Qt::RightButton);
  EXPECT_FALSE(view->find(QStringLiteral("Copy Path"), "QQuickMenuItem").isEmpty());
  press(Qt::Key_Escape);
  view->hover(row("Old"));
  EXPECT_EQ(selected(), "Old") << "what is under the pointer comes first";

  view->doubleClick(row("Old"));
  settle();
  EXPECT_EQ(model->folderPath(), inHome("Films/Old"));
  EXPECT_EQ(ui->explorer()->crumbs(),
            (QStringList{QStringLiteral("Home folder"), QStringLiteral("Films"), QStringLiteral("Old")}));
  click("Films");
  EXPECT_EQ(model->folderPath(), inHome("Films"));
}

TEST_F(PicturesTest, wheelDoubleClickAndKeysGoInAndOut) {
  showWindow({1080, 720});
  const QPoint first = placeIn(only("spacemint::TreeMap"), 0.1, 0.3);
  wheelAt(first, 120);
  EXPECT_EQ(model->folderPath(), inHome("Films")) << "one level a turn";
  wheelAt(first, -120);
  EXPECT_EQ(model->folderPath(), home);
  EXPECT_EQ(selected(), "Films");

  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Home);
  press(Qt::Key_Right);
  EXPECT_THAT(rows(), ElementsAre("Films", "Old", "holiday.mov", "disk.img"));
  press(Qt::Key_Right);
  EXPECT_EQ(selected(), "Old");
  press(Qt::Key_Return);
  EXPECT_EQ(model->folderPath(), inHome("Films/Old"));
  press(Qt::Key_Backspace);
  EXPECT_EQ(model->folderPath(), inHome("Films"));

  press(Qt::Key_F, Qt::ControlModifier);
  for (const char key : std::string{".img"}) QTest::keyClick(&view->window(), key);
  settle();
  EXPECT_THAT(rows(), ElementsAre("disk.img"));
  press(Qt::Key_Escape);
  EXPECT_THAT(rows(), ElementsAre("Old", "holiday.mov"));
}

TEST_F(PicturesTest, theIcicleOfThePanelIsReachedByKeysAndLeadsIntoFolders) {
  showWindow({460, 700});
  auto* icicle = only("spacemint::Icicle");
  QStringList blocks;
  for (const QVariant& block : icicle->property("blocks").toList())
    blocks << block.toMap()[QStringLiteral("spoken")].toString().replace(QChar::Nbsp, u' ');
  EXPECT_THAT(blocks, testing::Contains(QStringLiteral("Films, 9 GB, 82 %, grew by 2 GB")));
  icicle->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Down);
  EXPECT_EQ(selected(), "Films");
  EXPECT_TRUE(row("Films")->property("isLit").toBool() || row("Films")->property("isPointedAt").toBool());
  press(Qt::Key_Right);
  EXPECT_EQ(selected(), "disk.img");
  press(Qt::Key_Return);
  EXPECT_EQ(list()->property("currentIndex").toInt(), 1);
  clickAt(placeIn(icicle, 0.2, 0.5));
  EXPECT_EQ(model->folderPath(), inHome("Films"));
  clickAt(placeIn(icicle, 0.5, 0.1));
  EXPECT_EQ(model->folderPath(), home);
}

TEST_F(PicturesTest, rightToLeftThePictureAndItsKeysTurnAround) {
  showWindow({460, 700});
  auto* icicle = only("spacemint::Icicle");
  const auto frame = [&](int i) {
    return icicle->property("blocks").toList().at(i).toMap()[QStringLiteral("frame")].toRectF();
  };
  const QRectF before = frame(2);
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  QMetaObject::invokeMethod(&view->theme(), "followDirection",
                            Q_ARG(QQuickItem*, view->window().contentItem()));
  settle();
  EXPECT_EQ(frame(2), QRectF(icicle->width() - before.right(), before.y(), before.width(), before.height()));
  icicle->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Down);
  press(Qt::Key_Left);
  EXPECT_EQ(selected(), "disk.img");
  clickAt(placeIn(icicle, 0.8, 0.5));
  EXPECT_EQ(model->folderPath(), inHome("Films"));
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(PicturesTest, theArrowKeysMoveTheBorderBetweenListAndMap) {
  showWindow({1080, 700});
  get("Width of the list")->forceActiveFocus(Qt::TabFocusReason);
  const auto widthAfter = [&](Qt::Key key) {
    press(key);
    return only("ExplorerView")->property("listWidth").toInt();
  };
  EXPECT_EQ(widthAfter(Qt::Key_Home), 264);
  EXPECT_EQ(widthAfter(Qt::Key_Right), 280);
  EXPECT_EQ(widthAfter(Qt::Key_End), 480);
  EXPECT_EQ(widthAfter(Qt::Key_Left), 464);
}

TEST_F(PicturesTest, theWayIntoAFolderBeginsAtItsBlockAndTheWayOutEndsThere) {
  showWindow({460, 700});
  auto* icicle = only("spacemint::Icicle");
  // The middle of a row in the block of the first folder, and whether something is painted there.
  const auto isPainted = [&](double row, double progress) {
    icicle->setProperty("move", progress);
    icicle->setProperty("strength", 0);
    settle();
    const QImage image = view->window().grabWindow();
    const QPoint place = placeIn(icicle, 0.4, (row + 0.5) / 3) * image.devicePixelRatio();
    return image.pixelColor(place) != view->theme().canvas();
  };
  clickAt(placeIn(icicle, 0.2, 0.5));
  ASSERT_EQ(model->folderPath(), inHome("Films"));
  EXPECT_TRUE(isPainted(1, 0.001) && !isPainted(0, 0.001)) << "it begins in the second row";
  EXPECT_TRUE(isPainted(0, 0.999) && !isPainted(1, 0.999)) << "and ends in the first";
  icicle->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Backspace);
  ASSERT_EQ(model->folderPath(), home);
  EXPECT_TRUE(isPainted(0, 0.001) && !isPainted(1, 0.001));
  EXPECT_TRUE(isPainted(1, 0.999) && !isPainted(0, 0.999));
  EXPECT_EQ(selected(), "Films") << "the keyboard is at the folder that was left";
}

TEST_F(PicturesTest, theDiskIsTrueToScaleAndUnfoldsWhatIsInNoFile) {
  const Coverage coverage{
      .places = {{.place = {.mountPoint = home, .root = "/", .fileSystem = "ext4"}, .size = 60 * GB}}};
  volumeFacts = VolumeFacts{
      .volume = {.pool = 1, .fileSystem = "ext4", .places = {{.mountPoint = home, .root = "/"}}},
      .space = {.total = 100 * GB, .used = 80 * GB, .free = 20 * GB},
      .ownBytes = 0,
      .deleted = {.files = {{.size = 15 * GB, .pool = 1, .path = "/log", .programs = {{7, "postgres"}}}}}};
  storeHome(morning - 1h, {support::folder("Films", {file("a", 40 * GB)}), file("disk.img", 20 * GB)},
            20 * GB, coverage);
  show(Tab::folders);
  auto* icicle = only("spacemint::Icicle");
  std::map<std::string, QRectF> blocks;
  for (const QVariant& block : icicle->property("blocks").toList()) {
    const QString spoken = block.toMap()[QStringLiteral("spoken")].toString();
    blocks[spoken.section(u',', 0, 0).toStdString()] = block.toMap()[QStringLiteral("frame")].toRectF();
  }
  for (const auto& [part, share] : {std::pair{"In files", 0.6}, {"Not in files", 0.2}, {"Free", 0.2}})
    EXPECT_NEAR(blocks[part].width() / icicle->width(), share, 0.01) << part;
  EXPECT_EQ(blocks["Films"].right() > blocks["In files"].right(), false) << "below the files";
  EXPECT_THAT(rows(), ElementsAre("Films", "disk.img", "Not in files"));
  const auto click = [&](const char* part) {
    const QPointF place = blocks[part].center();
    clickAt(placeIn(icicle, place.x() / icicle->width(), place.y() / icicle->height()));
  };
  click("Free");
  EXPECT_EQ(rows().size(), 3U);
  click("Not in files");
  EXPECT_THAT(rows(),
              ElementsAre("Films", "disk.img", "Not in files", "Deleted, but still open", "Unexplained"));
  press(Qt::Key_Left);
  EXPECT_EQ(rows().size(), 3U);
  view->root()->setProperty("windowed", true);
  view->window().resize(1080, 720);
  settle();
  view->doubleClick(row("Not in files"));
  settle();
  EXPECT_THAT(rows(), testing::Contains("Deleted, but still open")) << "also in the large window";
}

TEST_F(PicturesTest, oneSearchIsForTheFoldersAndTheFiles) {
  showWindow({1080, 720});
  const auto type = [&](const char* words) {
    press(Qt::Key_F, Qt::ControlModifier);
    for (const char key : std::string{words}) QTest::keyClick(&view->window(), key);
    settle();
  };
  type("first");
  EXPECT_THAT(rows(), ElementsAre("first.mov"));
  model->setTab(Tab::files);
  settle();
  EXPECT_EQ(view->find({}, "SearchField").size(), 1);
  EXPECT_THAT(rows(), ElementsAre("first.mov"));
  type(" older:x");
  EXPECT_TRUE(shows("“older:x” is not understood, or said twice"));
  model->setTab(Tab::folders);
  settle();
  EXPECT_TRUE(shows("“older:x” is not understood, or said twice"));
  model->setFolderPath(inHome("Films"));
  settle();
  EXPECT_EQ(model->fileSearch(), "") << "who opens a folder has found it";
  EXPECT_THAT(rows(), ElementsAre("Old", "holiday.mov"));
}

TEST_F(PicturesTest, theLineOfFreeSpaceChoosesTheScanThatIsComparedWith) {
  const auto record = FreeSpaceRecord::ofVolume(folder / "state", home);
  for (const auto& [age, free] : {std::pair{50h, 130 * GB}, {40h, 130 * GB}, {20h, 120 * GB}})
    ASSERT_TRUE(record.add({morning - age, free, 500 * GB}));
  showWindow({460, 700}, Tab::overview);
  auto* line = only("FreeSpaceLine");
  QAccessibleInterface* slider = QAccessible::queryAccessibleInterface(line);
  EXPECT_EQ(slider->role(), QAccessible::Slider);
  EXPECT_EQ(slider->valueInterface()->currentValue().toInt(), 1);
  line->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_Left);
  EXPECT_EQ(model->history().baselineEntry()->date, morning - 49h);
  EXPECT_EQ(slider->valueInterface()->currentValue().toInt(), 0);
  EXPECT_THAT(described(line), testing::HasSubstr("130\u00a0GB free"));
  press(Qt::Key_End);
  clickAt(placeIn(line, 0.01, 0.3));
  EXPECT_EQ(model->history().baselineEntry()->date, morning - 49h);
}

}  // namespace
}  // namespace spacemint
