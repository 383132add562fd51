// The pictures and the large window: by mouse, by wheel and by keyboard.

#include "views/ShownTabs.h"

#include <QAccessible>
#include <QWheelEvent>

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

TEST_F(PicturesTest, theLineOfFreeSpaceChoosesTheScanThatIsComparedWith) {
  const auto record = FreeSpaceRecord::ofVolume(folder / "state", disk);
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
