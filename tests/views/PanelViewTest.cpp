// The page around the tabs: the question, the settings, the keyboard.

#include "views/ShownTabs.h"

#include <set>

namespace spacemint {
namespace {

using namespace support;

class PanelViewTest : public ShownTabs {
 protected:
  void ask() {
    model->cleanups().ask(DeleteRequest{inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good."});
  }

  void showQuestion() {
    addFile("old.zip", 30 * MB);
    storeScan(morning);
    show();
    ask();
    settle();
  }

  // A message with a button that asks the question.
  void showButtonThatAsks() {
    addFile("old.zip", 30 * MB);
    storeScan(morning);
    show();
    tell("There is an old file.", MessageAction{.title = "Look", .perform = [this] { ask(); }});
  }

  // The timers and the endless animations that run: each wakes the processor.
  QList<QObject*> running() {
    // Pages that were left are deleted later.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QList<QObject*> found = view->root()->findChildren<QObject*>();
    found.removeIf([](const QObject* object) {
      const bool isEndless =
          object->inherits("QQuickAbstractAnimation") && object->property("loops").toInt() < 0;
      return !(isEndless || object->inherits("QQmlTimer")) || !object->property("running").toBool();
    });
    return found;
  }
};

TEST_F(PanelViewTest, questionIsDismissedByCancelEscapeBackdropAndHiding) {
  showQuestion();
  const std::array<std::function<void()>, 4> ways{
      [&] { view->click(get("Cancel")); },
      [&] { view->press(Qt::Key_Escape); },
      [&] {
        QTest::mouseClick(&view->window(), Qt::LeftButton, {}, {10, 10});
      },
      [&] { model->cleanups().dismiss(); },
  };
  for (const auto& dismiss : ways) {
    ask();
    view->settle();
    ASSERT_TRUE(shows("Delete permanently?"));
    dismiss();
    settle();
    EXPECT_FALSE(isAsked());
    EXPECT_FALSE(shows("Delete permanently?"));
    EXPECT_TRUE(exists("old.zip"));
  }
}

TEST_F(PanelViewTest, returnDoesWhatIsAskedUnlessCancelWasReachedByTheKeyboard) {
  showQuestion();
  view->press(Qt::Key_Tab);
  view->press(Qt::Key_Tab);
  view->press(Qt::Key_Return);
  desktop.settle();
  EXPECT_FALSE(isAsked());
  EXPECT_TRUE(exists("old.zip"));
  ask();
  view->settle();
  view->press(Qt::Key_Return);
  desktop.settle();
  EXPECT_FALSE(exists("old.zip"));
}

TEST_F(PanelViewTest, keyThatIsHeldDoesNotAnswerWhatItAsked) {
  showButtonThatAsks();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
    button("Look")->forceActiveFocus(Qt::TabFocusReason);
    view->hold(key);
    desktop.settle();
    EXPECT_TRUE(isAsked());
    EXPECT_TRUE(exists("old.zip"));
    view->press(Qt::Key_Escape);
    EXPECT_FALSE(isAsked());
  }
}

TEST_F(PanelViewTest, keyboardGoesToCancelAndBackToWhatItWasAt) {
  showButtonThatAsks();
  QQuickItem* look = button("Look");
  look->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Space);
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(view->window().activeFocusItem(), get("Cancel"));
  view->press(Qt::Key_Escape);
  EXPECT_EQ(view->window().activeFocusItem(), look);
  EXPECT_TRUE(look->property("visualFocus").toBool());

  // After a click nothing is marked, and what had the focus may be gone when it comes back.
  view->click(look);
  EXPECT_EQ(view->window().activeFocusItem(), get("Cancel"));
  EXPECT_FALSE(get("Cancel")->property("visualFocus").toBool());
  model->messages().clear();
  view->press(Qt::Key_Escape);
  view->press(Qt::Key_Tab);
  const QQuickItem* focused = view->window().activeFocusItem();
  ASSERT_TRUE(focused);
  EXPECT_TRUE(focused->inherits("QQuickControl"));
}

TEST_F(PanelViewTest, nothingRunsWhileThePanelIsHidden) {
  addFile("letter", 30 * MB);
  show();
  view->theme().setReducedMotion(false);
  const auto runsOnlyWhileSeen = [&](const char* state, qsizetype count) {
    EXPECT_EQ(running().size(), count) << state;
    view->window().hide();
    EXPECT_TRUE(running().isEmpty()) << state;
    view->window().showMinimized();
    EXPECT_TRUE(running().isEmpty()) << state;
    view->window().showNormal();
    view->settle();
    EXPECT_EQ(running().size(), count) << state;
  };
  runsOnlyWhileSeen("welcome", 0);
  desktop.tasks.hold(Tasks::Priority::background);
  desktop.tasks.hold(Tasks::Priority::utility);
  model->begin();
  settle();
  runsOnlyWhileSeen("first scan", 2);  // the logo, the time that is left
  desktop.tasks.release(Tasks::Priority::background);
  desktop.tasks.release(Tasks::Priority::utility);
  settle();
  runsOnlyWhileSeen("tabs", 1);  // the age of the scan
}

TEST_F(PanelViewTest, keyboardIsOnThePageThatIsShown) {
  storeScan(morning);
  show();
  QQuickItem* gear = get("Settings");
  gear->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Return);
  ASSERT_TRUE(model->showingSettings());
  EXPECT_EQ(view->window().activeFocusItem(), get("Back"));
  view->press(Qt::Key_Return);
  ASSERT_FALSE(model->showingSettings());
  EXPECT_EQ(view->window().activeFocusItem(), gear);
}

TEST_F(PanelViewTest, loginSwitchShowsWhatTheSystemSays) {
  storeScan(morning);
  show(Tab::overview, {460, 900});
  model->setShowingSettings(true);
  view->settle();
  const QString error = QStringLiteral("Couldn't change this. ~/.config/autostart: Permission denied.");
  const auto flip = [&] { view->click(get("Open at login")); };
  const auto isChecked = [&] { return get("Open at login")->property("checked").toBool(); };
  desktop.loginItem.failure = systemError(inHome(".config/autostart"), EACCES);
  flip();
  EXPECT_TRUE(view->shows(error));
  EXPECT_FALSE(isChecked());
  desktop.loginItem.failure.reset();
  flip();
  EXPECT_TRUE(desktop.loginItem.enabled);
  EXPECT_FALSE(view->shows(error));
  EXPECT_TRUE(isChecked());
  flip();
  EXPECT_FALSE(desktop.loginItem.enabled);
}

TEST_F(PanelViewTest, settingsSayWhyTheLastScanWasFull) {
  addFile("letter", 30 * MB);
  storeScan(morning - std::chrono::hours{1});
  show();
  model->setShowingSettings(true);
  const std::string footnote = "Runs quietly in the background while your computer has nothing else to do.";
  settle();
  EXPECT_TRUE(shows(footnote.c_str())) << "before the first scan of this program";
  struct Case {
    std::uint64_t eventID;
    std::expected<FolderChanges, JournalError> answer;
    const char* expected;
  };
  const Case cases[]{
      {7, {}, "everything was walked, because nothing recorded changes at the last scan."},
      {8, {}, "what had not changed was taken from the scan before."},
      {9, std::unexpected(JournalError::eventsLost),
       "everything was walked, because the recorder lost events."},
  };
  for (const Case& c : cases) {
    journal.id = c.eventID;
    journal.answer = c.answer;
    desktop.advance(std::chrono::seconds{1});
    model->scans().scan();
    settle();
    EXPECT_TRUE(shows((footnote + "\nLast scan: " + c.expected).c_str())) << c.expected;
  }
}

TEST_F(PanelViewTest, rowsOfTheSettingsFollowWhatIsAllowed) {
  storeScan(morning);
  hasAccess = false;
  desktop.notifier.allowed = false;
  show();
  model->panelWillShow();
  desktop.settle();
  model->setShowingSettings(true);
  view->settle();
  view->click(get("Turned off · Open Settings"));
  view->click(get("Open Settings"));
  EXPECT_THAT(desktop.opener.pages, testing::ElementsAre(Opener::SettingsPage::notifications,
                                                         Opener::SettingsPage::fullDiskAccess));
  get("Quit Spacemint")->forceActiveFocus();
  view->press(Qt::Key_Space);
  EXPECT_TRUE(hasQuit);
}

class TabPagesTest : public PanelViewTest {
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

// The role and the name of each item are in screen_reader.txt.
TEST_F(TabPagesTest, everythingIsReachedWithTheTabKeyAndHasARing) {
  // Goes around once with the tab key, over at least this many items. In a row that has the focus, its button
  // may have a ring too.
  std::set<const QQuickItem*> reached;
  const auto goAround = [&](const std::string& page, std::size_t stations, qsizetype mostRings = 1) {
    settle();
    reached.clear();
    for (;;) {
      view->press(Qt::Key_Tab);
      const QQuickItem* focused = view->window().activeFocusItem();
      ASSERT_TRUE(focused) << page;
      if (!reached.insert(focused).second) break;
      const QPointF at = focused->mapToScene({0, 0});
      EXPECT_TRUE(focused->isVisible()) << page;
      EXPECT_LT(at.y(), view->window().height()) << page;
      EXPECT_GT(at.y() + focused->height(), 0) << page;
      const qsizetype rings = view->find({}, "FocusRing").size();
      EXPECT_TRUE(rings >= 1 && rings <= mostRings) << page << ": " << rings;
    }
    EXPECT_GE(reached.size(), stations) << page;
  };
  hasAccess = false;
  show();
  goAround("welcome", 3);
  view.reset();
  for (const Tab tab : allTabs) {
    showLong(tab);
    goAround(std::string{titleOf(tab)}, 3, 2);
    view->root()->setProperty("windowed", true);
    view->window().resize(1080, 720);
    goAround(std::string{titleOf(tab)} + " in a large window", 8, 2);
    view.reset();
  }
  showLong(Tab::overview);
  model->setShowingSettings(true);
  goAround("settings", 10);
  ask();
  goAround("question", 2);
  EXPECT_EQ(reached.size(), 2U) << "what lies behind a question cannot be reached";
}

}  // namespace
}  // namespace spacemint
