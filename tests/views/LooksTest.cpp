// How the pages look: nothing is cut off, marked twice, pushed aside or in two languages.

#include "support/Files.h"
#include "views/ShownTabs.h"

#include <QAccessible>

#include <map>

namespace spacemint {
namespace {

using namespace support;
using testing::ElementsAre;
using testing::IsEmpty;

class LooksTest : public ShownTabs {
 protected:
  // A folder that is longer than the window, with a folder as its last item and a file in that.
  void showLongFolder() {
    std::vector<Node> items = numbered("file ", 40, GB);
    items.push_back(support::folder("Last", numbered("photo ", 40, 22 * MB, 0)));
    storeHome(morning - 1h, std::move(items));
    show(Tab::folders);
  }

  std::vector<std::string> litRows() {
    std::vector<std::string> lit;
    for (const QQuickItem* row : view->find({}, "ItemRow")) {
      if (row->property("isLit").toBool()) lit.push_back(row->property("title").toString().toStdString());
    }
    return lit;
  }

  // Whether all of the item is inside of the part of the list that is visible.
  bool isInView(const QQuickItem* item, const QQuickItem* list) {
    const double top = item->mapToItem(list, QPointF{}).y();
    return top >= 0 && top + item->height() <= list->height();
  }

  QQuickItem* label(const std::string& text) {
    for (QQuickItem* item : view->find({}, "QQuickText")) {
      if (item->property("text").toString() == QString::fromStdString(text)) return item;
    }
    ADD_FAILURE() << "no label says " << text;
    return view->root();
  }
};

TEST_F(LooksTest, theEdgeOfTheCardIsInViewAtTheBeginningOfAList) {
  showLongFolder();
  // The distance of the first row from the top of the list, where the edge of the card is.
  const auto edge = [&] { return view->find({}, "ItemRow").first()->mapToItem(list(), QPointF{}).y(); };
  const double before = edge();
  EXPECT_GE(before, 4);
  press(Qt::Key_Tab);
  list()->forceActiveFocus(Qt::TabFocusReason);
  press(Qt::Key_End);
  press(Qt::Key_Return);
  ASSERT_EQ(model->folderPath(), inHome("Last"));
  EXPECT_EQ(edge(), before);
  press(Qt::Key_End);
  press(Qt::Key_Home);
  EXPECT_EQ(edge(), before) << "after the key Home";
}

TEST_F(LooksTest, oneRowIsLitTheOneOfTheDeviceThatWasUsedLast) {
  storeHome(morning - 1h, {file("one", 3 * GB), file("two", 2 * GB), file("three", GB)});
  show(Tab::folders);
  view->hover(row("one"));
  click(row("one"));
  EXPECT_THAT(litRows(), ElementsAre("one"));
  view->hover(row("two"));
  EXPECT_THAT(litRows(), ElementsAre("two"));
  EXPECT_EQ(view->find(QStringLiteral("Move to Trash…"), "QQuickAbstractButton").size(), 1);
  press(Qt::Key_End);
  EXPECT_THAT(litRows(), ElementsAre("three"));
  view->hover(row("one"));
  EXPECT_THAT(litRows(), ElementsAre("one"));
}

TEST_F(LooksTest, whatTheGuardRefusesIsNotOffered) {
  addWorktree("Documents", morning - std::chrono::days{60});
  std::vector<Node> before;
  std::vector<Node> after;
  Bytes grown = 32 * GB;
  for (const char* name : {"Documents", "Downloads", ".cache", "code"}) {
    before.push_back(support::folder(name, {}, {.unlisted = 50 * MB, .unlistedFiles = 9}));
    after.push_back(support::folder(name, {}, {.unlisted = 50 * MB + grown, .unlistedFiles = 9}));
    grown = std::min(grown / 2, 3 * GB);
  }
  after.front().isWorktree = true;
  storeHome(morning - 75h, std::move(before), 140 * GB);
  storeHome(morning - 1h, std::move(after));
  const auto offered = [&](Tab tab) {
    model->setTab(tab);
    settle();
    std::vector<std::string> titles;
    for (QQuickItem* each : view->find({}, "ItemRow")) {
      view->hover(each);
      const std::string title = each->property("title").toString().toStdString();
      const bool hasButton =
          !view->find(QStringLiteral("Move to Trash…"), "QQuickAbstractButton").isEmpty() ||
          !each->property("buttonTitle").toString().isEmpty();
      click(each, Qt::RightButton);
      const bool hasEntry = !view->find(QStringLiteral("Move to Trash…"), "QQuickMenuItem").isEmpty();
      press(Qt::Key_Escape);
      EXPECT_TRUE(tab == Tab::developer || hasEntry == hasButton) << title;
      if (hasButton) titles.push_back(title);
    }
    return titles;
  };
  show();
  EXPECT_EQ(rows().size(), 5U);
  EXPECT_THAT(offered(Tab::overview), ElementsAre("code"));
  EXPECT_THAT(offered(Tab::folders), ElementsAre("code"));
  EXPECT_THAT(offered(Tab::developer), IsEmpty()) << "a worktree that is the Documents folder";
  // In a scan of the whole disk the home folder itself is an item.
  const UiHost host{
      .model = *model, .desktop = desktop.desktop(), .home = home, .locale = locale, .quit = {}};
  ItemRows list{host};
  for (const std::string& path :
       {home, inHome("Documents"), inHome(".Trash"), std::string{"/"}, std::string{folder.path()}}) {
    list.assign({{.id = path, .path = path, .canTrash = true}});
    EXPECT_FALSE(list.data(list.index(0), ItemRows::CanTrashRole).toBool()) << path;
    list.remove(list.data(list.index(0), ItemRows::RowIdRole).toInt());
    EXPECT_FALSE(isAsked()) << path;
  }
}

TEST_F(LooksTest, theRowOfTheKeyboardStaysInViewWhenABannerComes) {
  showLongFolder();
  list()->forceActiveFocus(Qt::TabFocusReason);
  while (isInView(list()->property("currentItem").value<QQuickItem*>(), list()) &&
         list()->property("contentY").toDouble() <= 0) {
    press(Qt::Key_Down);
  }
  const QQuickItem* current = list()->property("currentItem").value<QQuickItem*>();
  ASSERT_TRUE(isInView(current, list()));
  tell("Moved “old.zip” to the Trash. Empty it to free 140 MB. This message is longer than one line.");
  EXPECT_TRUE(isInView(current, list()));
}

TEST_F(LooksTest, theButtonOfTheKeyboardStaysInViewWhenABannerComes) {
  storeGrowth(9);
  show(Tab::overview, {460, 480});
  QQuickItem* page = view->find({}, "ScrollColumn").first();
  for (int i = 0; i < 20 && !button("Show all 9")->hasActiveFocus(); ++i) press(Qt::Key_Tab);
  ASSERT_TRUE(button("Show all 9")->hasActiveFocus());
  page->setProperty("contentY", button("Show all 9")->mapToItem(page, QPointF{}).y() + scrolled(page) +
                                    button("Show all 9")->height() - page->height());
  ASSERT_TRUE(isInView(button("Show all 9"), page));
  tell("Emptied the Trash.");
  EXPECT_TRUE(isInView(button("Show all 9"), page));
}

TEST_F(LooksTest, headingsAreWholeWithLargeLetters) {
  storeGrowth(2);
  storeScan(morning - 99h);
  show(Tab::overview, {460, 900});
  for (const double scale : {1.0, 1.5, 2.0}) {
    view->theme().setTextScale(scale);
    settle();
    const auto headings = view->find({}, "SectionLabel");
    EXPECT_GE(headings.size(), 2);
    for (const QQuickItem* heading : headings) {
      EXPECT_FALSE(heading->property("truncated").toBool())
          << heading->property("text").toString().toStdString() << " at " << scale;
      EXPECT_GE(heading->width(), heading->property("contentWidth").toDouble());
    }
    const QQuickItem* picker = get("Compared with the scan of");
    EXPECT_LE(picker->mapToScene({picker->width(), 0}).x(), view->window().width());
    // The tabs stay in one line, which scrolls to the chosen one.
    for (const Tab tab : {Tab::developer, Tab::overview}) {
      model->setTab(tab);
      settle();
      const QQuickItem* chosen = view->find(QString::fromStdString(titleOf(tab))).value(0, view->root());
      const double left = chosen->mapToScene({}).x();
      EXPECT_GE(left, 16) << titleOf(tab) << " at " << scale;
      EXPECT_LE(left + chosen->width(), 444) << titleOf(tab) << " at " << scale;
      EXPECT_LT(view->find({}, "TabBar").value(0)->height(), 2 * chosen->height());
    }
  }
  view->theme().setTextScale(1);
}

TEST_F(LooksTest, aQuestionFadesThePageOnce) {
  storeGrowth(7);
  show();
  const auto opacities = [&] {
    std::map<const QQuickItem*, double> found;
    for (const QQuickItem* item : view->find({}, "QQuickControl")) found[item] = item->opacity();
    return found;
  };
  const auto before = opacities();
  EXPECT_GT(before.size(), 5U);
  int changes = 0;
  for (const auto& [item, opacity] : before) {
    QObject::connect(item, &QQuickItem::opacityChanged, view.get()->root(), [&] { ++changes; });
  }
  model->cleanups().ask(DeleteRequest{inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good."});
  settle();
  for (const auto& [item, opacity] : before) EXPECT_EQ(item->opacity(), opacity);
  EXPECT_FALSE(button("Scan now")->isEnabled());
  model->cleanups().dismiss();
  settle();
  EXPECT_EQ(changes, 0) << "nothing flickers";
}

TEST_F(LooksTest, figuresStandAtTheEdgeWhereNoRowHasAChevron) {
  storeHome(morning - 1h, {support::folder("Movies", {file("first.mov", 2 * GB)}), file("disk.img", GB)});
  show(Tab::folders);
  const auto gap = [&](const char* title) {
    const QQuickItem* item = row(title);
    double end = 0;
    for (const QQuickItem* text : view->find({}, "QQuickText")) {
      if (item->isAncestorOf(text)) end = std::max(end, text->mapToItem(item, QPointF{text->width(), 0}).x());
    }
    return item->width() - end;
  };
  EXPECT_EQ(gap("Movies"), gap("disk.img")) << "figures are in one column";
  EXPECT_GT(gap("disk.img"), 20);
  click(row("Movies"));
  EXPECT_EQ(gap("first.mov"), 10);
}

TEST_F(LooksTest, namesFromRightToLeftStandAtTheLeftEverywhere) {
  const std::string name = "עברית";
  storeHome(morning - 1h, {support::folder(name, {support::folder("ערב", {file("ספר", 2 * GB)})})});
  show(Tab::folders);
  for (const std::string& each : {name, std::string{"ערב"}}) {
    click(row(each));
    const QQuickItem* title = label(each);
    EXPECT_EQ(title->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft) << each;
  }
  EXPECT_EQ(label(name)->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft) << "the way back";
}

TEST_F(LooksTest, aNameEndsBeforeTheButtonsOfItsRow) {
  const std::string name = "A folder whose name is much longer than any panel could ever be wide.mov";
  storeHome(morning - 1h, {file(name, 2 * GB), file("b", GB)});
  for (const Tab tab : {Tab::folders, Tab::files}) {
    show(tab);
    view->hover(row(name));
    settle();
    const QQuickItem* buttons = view->find({}, "ItemButtons").value(0);
    ASSERT_TRUE(buttons);
    // The row is below the line that says the same name.
    const QQuickItem* shown = view->find(QString{}, "QQuickText").value(0);
    for (const QQuickItem* item : view->find({}, "QQuickText"))
      if (item->property("text").toString() == QString::fromStdString(name)) shown = item;
    EXPECT_TRUE(shown->property("truncated").toBool());
    EXPECT_LE(shown->mapToScene({shown->width(), 0}).x(), buttons->mapToScene({}).x());
    view.reset();
  }
}

TEST_F(LooksTest, aGermanDesktopGetsEnglishSentencesAndGermanNumbers) {
  locale = "de_DE";
  addBackup("2020-01-01T00:00:00Z");
  addWorktree("old", morning - std::chrono::days{60});
  std::vector<Node> items{backupTree(30 * GB), worktreeTree("old", 2'500 * MB)};
  storeHome(morning - 75h, items, 140 * GB);
  storeHome(morning - 2h, items, 121'500 * MB);
  show(Tab::overview, {460, 900});
  EXPECT_TRUE(shows("Scanned 2 hours ago · home folder"));
  EXPECT_TRUE(shows("Last backed up 6 years ago. Newer backups aren't affected."));
  EXPECT_TRUE(shows("Compared with the scan of, 3 days ago · 05:00")) << "there is nothing to choose";
  model->setTab(Tab::developer);
  settle();
  EXPECT_EQ(subtitle("old"), "used 2 months ago");
  EXPECT_EQ(row("old")->property("sizeText").toString(), QStringLiteral("2,6 GB"));
}

const std::map<QAccessible::Role, std::string> controlRoles{
    {QAccessible::Button, "button"},        {QAccessible::CheckBox, "check box"},
    {QAccessible::ComboBox, "combo box"},   {QAccessible::RadioButton, "radio button"},
    {QAccessible::PageTab, "tab"},          {QAccessible::ListItem, "list item"},
    {QAccessible::ProgressBar, "progress"}, {QAccessible::Heading, "heading"},
    {QAccessible::AlertMessage, "alert"},   {QAccessible::Dialog, "dialog"},
    {QAccessible::Slider, "slider"},        {QAccessible::Tree, "tree"},
    {QAccessible::TreeItem, "tree item"},   {QAccessible::Graphic, "picture"},
    {QAccessible::EditableText, "field"},   {QAccessible::PageTabList, "tabs"},
    {QAccessible::Grouping, "group"}};

class ScreenReaderTest : public ShownTabs {
 protected:
  // A line for each visible control: its role, its name, its value or description in brackets, and its state.
  void collect(QAccessibleInterface* from, std::vector<std::string>& lines) {
    if (from->state().invisible) return;
    const auto role = controlRoles.find(from->role());
    if (role != controlRoles.end()) lines.push_back(role->second + ": " + describe(*from));
    for (int i = 0; i < from->childCount(); ++i) collect(from->child(i), lines);
  }

  static std::string describe(QAccessibleInterface& control) {
    const auto text = [&](QAccessible::Text kind) {
      return control.text(kind).replace(QChar::Nbsp, u' ').toStdString();
    };
    const QAccessible::State state = control.state();
    std::string line = text(QAccessible::Name);
    EXPECT_NE(line, "");
    if (const std::string more = text(QAccessible::Description); !more.empty()) line += " (" + more + ")";
    if (state.checkable) line += state.checked ? ", checked" : ", not checked";
    if (state.selected) line += ", selected";
    return line;
  }

  std::string all() {
    std::vector<std::string> lines;
    collect(QAccessible::queryAccessibleInterface(&view->window()), lines);
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }
};

TEST_F(ScreenReaderTest, hearsOfEachTenthOfAScan) {
  view = std::make_unique<ShownView>(QStringLiteral("ProgressBar.qml"), QVariantMap{}, QSize{200, 10});
  std::vector<std::string> said;
  for (int percent = 0; percent <= 100; percent += 7) {
    view->root()->setProperty("fraction", percent / 100.0);
    view->root()->setProperty("text", QString::number(percent));
    QCoreApplication::processEvents();
    for (QQuickItem* item : view->root()->childItems()) {
      QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(item);
      if (spoken == nullptr || spoken->role() != QAccessible::AlertMessage || !item->isVisible()) continue;
      const std::string name = spoken->text(QAccessible::Name).toStdString();
      if (said.empty() || said.back() != name) said.push_back(name);
    }
  }
  EXPECT_THAT(said, ElementsAre("14", "21", "35", "42", "56", "63", "70", "84", "91"));
}

TEST_F(ScreenReaderTest, everyControlHasARoleANameAValueAndAState) {
  std::string table;
  const auto add = [&](const char* page) {
    settle();
    table += "== " + std::string{page} + "\n" + all();
  };
  hasAccess = false;
  show();
  add("welcome");
  view.reset();

  hasAccess = true;
  addFile(".Trash/film", 1'200 * MB);
  addProgram("docker", prints(dockerUsage()));
  addWorktree("new", morning - std::chrono::days{2});
  storeGrowth(1);
  storeHome(morning - 30min, {support::folder(".Trash", {file("film", 1'200 * MB)}),
                              support::folder("Downloads", {file("film.iso", 900 * MB)}),
                              worktreeTree("new", 500 * MB), nested(".cache/pip", {file("wheel", 2 * GB)})});
  show(Tab::overview, {460, 1000});
  add("overview");
  model->setTab(Tab::folders);
  add("folders");
  view->root()->setProperty("windowed", true);
  view->window().resize(1080, 720);
  add("folders in a large window");
  view->window().resize(460, 1000);
  view->root()->setProperty("windowed", false);
  model->setTab(Tab::files);
  add("files");
  model->setTab(Tab::developer);
  add("developer");
  model->open(support::writeText(folder / "scan.json",
                                 R"([1,2,{"host":"db1"},[{"name":"/srv"},{"name":"a","dsize":2000000}]])"));
  add("a scan from a file");
  model->shown().close();
  model->setShowingSettings(true);
  add("settings");
  model->cleanups().ask(DeleteRequest{inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good."});
  add("question");
  // Newer versions of ICU put a narrow space before "AM".
  constexpr std::string_view narrowSpace = "\u202F";
  for (auto at = table.find(narrowSpace); at != std::string::npos; at = table.find(narrowSpace)) {
    table.replace(at, narrowSpace.size(), " ");
  }
  EXPECT_EQ(table, support::readText(SPACEMINT_SCREEN_READER_TABLE));
}

}  // namespace
}  // namespace spacemint
