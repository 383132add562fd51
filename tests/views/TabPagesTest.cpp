// The tabs together.

#include "views/ShownTabs.h"

#include <QAccessible>

namespace spacemint {
namespace {

using namespace support;

class TabPagesTest : public ShownTabs {
 protected:
  ShownView& showLong(Tab tab) {
    std::vector<Node> children = numbered("file ", 90, GB);
    for (int i = 1; i <= 6; ++i) {
      children.push_back(nested("code" + std::to_string(i) + "/node_modules", {file("a", 600 * MB)}));
    }
    for (const char* name : {"Downloads", ".npm", "snap"}) {
      children.push_back(support::folder(name, {file("b", 700 * MB)}));
    }
    storeGrowth(10);
    storeHome(morning - 30min, std::move(children));
    return show(tab, {460, 480});
  }
};

TEST_F(TabPagesTest, eachTabStaysWhereItWasScrolledTo) {
  showLong(Tab::overview);
  const auto scroll = [&](const char* type) {
    QQuickItem* page = view->find({}, type).value(0);
    EXPECT_NE(page, nullptr) << type;
    page->setProperty("contentY", 120);
    return page;
  };
  struct Page {
    Tab tab;
    const char* type;
    QQuickItem* item = nullptr;
  };
  Page pages[]{{Tab::overview, "ScrollColumn"}, {Tab::folders, "LongList"}, {Tab::files, "LongList"}};
  for (Page& page : pages) {
    model->setTab(page.tab);
    settle();
    page.item = scroll(page.type);
  }
  for (const Page& page : pages) {
    model->setTab(page.tab);
    settle();
    EXPECT_EQ(view->find({}, page.type).value(0), page.item);
    EXPECT_EQ(scrolled(page.item), 120);
  }
}

TEST_F(TabPagesTest, everythingIsReachedWithTheTabKey) {
  for (const Tab tab : allTabs) {
    showLong(tab);
    // Goes around with the tab key until the first item has the focus again.
    std::vector<const QQuickItem*> reached;
    for (int i = 0; i < 60; ++i) {
      view->press(Qt::Key_Tab);
      const QQuickItem* focused = view->window().activeFocusItem();
      ASSERT_TRUE(focused);
      if (!reached.empty() && focused == reached.front()) break;
      EXPECT_EQ(std::ranges::count(reached, focused), 0);
      reached.push_back(focused);
      const QPointF at = focused->mapToScene({0, 0});
      EXPECT_TRUE(focused->isVisible());
      EXPECT_LT(at.y(), view->window().height());
      EXPECT_GT(at.y() + focused->height(), 0);
    }
    EXPECT_GT(reached.size(), 2U) << titleOf(tab);
    EXPECT_LT(reached.size(), 60U);
    view.reset();
  }
}

}  // namespace
}  // namespace spacemint
