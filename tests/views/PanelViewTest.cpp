// The page around the tabs: the question, the settings, the keyboard.

#include "views/ShownTabs.h"

#include <QAccessible>

#include <set>

namespace spacemint {
namespace {

using support::GB;
using support::MB;
using support::morning;

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
      [&] { view->click(view->get(QStringLiteral("Cancel"))); },
      [&] { view->press(Qt::Key_Escape); },
      [&] {
        QTest::mouseClick(&view->window(), Qt::LeftButton, {}, {10, 10});
      },
      [&] { model->cleanups().dismiss(); },
  };
  for (const auto& dismiss : ways) {
    ask();
    view->settle();
    ASSERT_TRUE(view->shows(QStringLiteral("Delete permanently?")));
    dismiss();
    settle();
    EXPECT_FALSE(isAsked());
    EXPECT_FALSE(view->shows(QStringLiteral("Delete permanently?")));
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
    view->get(QStringLiteral("Look"), "QQuickAbstractButton")->forceActiveFocus(Qt::TabFocusReason);
    view->hold(key);
    desktop.settle();
    EXPECT_TRUE(isAsked());
    EXPECT_TRUE(exists("old.zip"));
    view->press(Qt::Key_Escape);
    EXPECT_FALSE(isAsked());
  }
}

TEST_F(PanelViewTest, keyboardGoesBackToWhatItWasAt) {
  showButtonThatAsks();
  QQuickItem* button = view->get(QStringLiteral("Look"), "QQuickAbstractButton");
  button->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Space);
  ASSERT_TRUE(isAsked());
  EXPECT_EQ(view->window().activeFocusItem(), view->get(QStringLiteral("Cancel")));
  view->press(Qt::Key_Escape);
  EXPECT_EQ(view->window().activeFocusItem(), button);
  EXPECT_TRUE(button->property("visualFocus").toBool());
}

TEST_F(PanelViewTest, keyboardIsAtCancelAfterAClickAndComesBackWhenItsItemIsGone) {
  showButtonThatAsks();
  view->click(view->get(QStringLiteral("Look"), "QQuickAbstractButton"));
  const QQuickItem* cancel = view->get(QStringLiteral("Cancel"));
  EXPECT_EQ(view->window().activeFocusItem(), cancel);
  EXPECT_FALSE(cancel->property("visualFocus").toBool());
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

TEST_F(PanelViewTest, whatLiesBehindAQuestionCannotBeReached) {
  showQuestion();
  for (int i = 0; i < 6; ++i) {
    view->press(Qt::Key_Tab);
    const QQuickItem* focused = view->window().activeFocusItem();
    ASSERT_TRUE(focused);
    EXPECT_TRUE(focused->inherits("QQuickAbstractButton"));
    EXPECT_FALSE(focused->property("text").toString() == QStringLiteral("Scan now"));
  }
  EXPECT_FALSE(view->get(QStringLiteral("Scan now"))->isEnabled());
}

TEST_F(PanelViewTest, keyboardIsOnThePageThatIsShown) {
  storeScan(morning);
  show();
  QQuickItem* gear = view->get(QStringLiteral("Settings"));
  gear->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Return);
  ASSERT_TRUE(model->showingSettings());
  view->press(Qt::Key_Tab);
  EXPECT_EQ(view->window().activeFocusItem(), view->get(QStringLiteral("Back")));
  view->press(Qt::Key_Return);
  ASSERT_FALSE(model->showingSettings());
  EXPECT_EQ(view->window().activeFocusItem(), gear);
}

TEST_F(PanelViewTest, loginSwitchShowsWhatTheSystemSays) {
  storeScan(morning);
  show();
  model->setShowingSettings(true);
  view->settle();
  const QString error = QStringLiteral("Couldn't change this. Make sure Spacemint is in Applications.");
  const auto flip = [&] { view->click(view->get(QStringLiteral("Open at login"))); };
  const auto isChecked = [&] {
    return view->get(QStringLiteral("Open at login"))->property("checked").toBool();
  };
  desktop.loginItem.failure = Error{.message = "not here"};
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
  const std::string footnote = "Runs quietly in the background while your Mac is idle.";
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
  view->click(view->get(QStringLiteral("Turned off · Open Settings")));
  view->click(view->get(QStringLiteral("Turn on")));
  EXPECT_THAT(desktop.opener.pages, testing::ElementsAre(Opener::SettingsPage::notifications,
                                                         Opener::SettingsPage::fullDiskAccess));
  view->get(QStringLiteral("Quit Spacemint"))->forceActiveFocus();
  view->press(Qt::Key_Space);
  EXPECT_TRUE(hasQuit);
}

TEST_F(PanelViewTest, whatTheKeyboardReachesHasARoleANameAndARing) {
  hasAccess = false;
  show();
  // Goes around once with the tab key, over at least this many items.
  const auto goAround = [&](const char* page, std::size_t stations) {
    view->settle();
    std::set<const QQuickItem*> seen;
    for (;;) {
      view->press(Qt::Key_Tab);
      QQuickItem* item = view->window().activeFocusItem();
      ASSERT_TRUE(item) << page;
      if (!seen.insert(item).second) break;
      const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
      ASSERT_TRUE(accessible) << page << ": " << item->metaObject()->className();
      const auto name = accessible->text(QAccessible::Name).toStdString();
      EXPECT_NE(name, "") << page << ": " << item->metaObject()->className();
      // An item without a role of its own has the role Client.
      EXPECT_TRUE(name == "Pages" || accessible->role() != QAccessible::Client) << page << ": " << name;
      EXPECT_EQ(view->find({}, "FocusRing").size(), 1) << page << ": " << name;
    }
    EXPECT_GE(seen.size(), stations) << page;
  };
  goAround("welcome", 3);
  model->begin();
  desktop.settle();
  tell("There is an old file.", MessageAction{.title = "Look", .perform = [] {}});
  goAround("tabs", 5);
  model->setShowingSettings(true);
  goAround("settings", 10);
  ask();
  goAround("question", 2);
}

}  // namespace
}  // namespace spacemint
