// The page around the tabs, in a window that nobody sees, over the real model.

#include "Spacemint/views/Ui.h"
#include "support/ModelFixture.h"
#include "support/ShownView.h"
#include "support/Waiting.h"
#include "support/WebServer.h"

#include <QAccessible>
#include <QTest>

#include <set>

namespace spacemint {
namespace {

using support::GB;
using support::MB;
using support::morning;
using support::ShownView;
using namespace std::chrono_literals;

class PanelViewTest : public support::ModelFixture {
 protected:
  std::unique_ptr<ShownView> show() {
    startModel();
    ui = std::make_unique<Ui>(UiHost{.model = *model,
                                     .desktop = desktop.desktop(),
                                     .home = home,
                                     .locale = "en_US",
                                     .quit = [this] { hasQuit = true; },
                                     .loginItem = &desktop.loginItem,
                                     .usage = usage.get(),
                                     .updates = updates.get()});
    auto view = std::make_unique<ShownView>(
        QStringLiteral("PanelView.qml"), QVariantMap{{QStringLiteral("ui"), QVariant::fromValue(ui.get())}},
        QSize{460, 700});
    view->settle();
    return view;
  }
  // With a question about a file of the scan.
  std::unique_ptr<ShownView> showQuestion() {
    addFile("old.zip", 30 * MB);
    storeScan(morning);
    auto view = show();
    model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good.");
    view->settle();
    return view;
  }
  // The model shows messages of what it did itself.
  void tell(std::string text, std::optional<MessageAction> action = {}) {
    const_cast<Messages&>(model->messages()).show(std::move(text), std::move(action));
  }
  // A message whose button asks about a file, as many buttons do.
  std::unique_ptr<ShownView> showButtonThatAsks() {
    addFile("old.zip", 30 * MB);
    storeScan(morning);
    auto view = show();
    tell("There is an old file.", MessageAction{.title = "Look", .perform = [this] {
                                                  model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB,
                                                                       "This removes it for good.");
                                                }});
    view->settle();
    return view;
  }
  // What wakes the processor by itself.
  static QList<QObject*> running(ShownView& view) {
    // Pages that were left are gone.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QList<QObject*> found = view.root()->findChildren<QObject*>();
    found.removeIf([](const QObject* object) {
      // What moves from one place to another ends by itself.
      const bool isEndless =
          object->inherits("QQuickAbstractAnimation") && object->property("loops").toInt() < 0;
      return !(isEndless || object->inherits("QQmlTimer")) || !object->property("running").toBool();
    });
    return found;
  }
  bool isAsked() const { return model->confirmations().current().has_value(); }

  WebClient web{"Spacemint", {}};
  std::unique_ptr<Usage> usage;
  std::unique_ptr<Updates> updates;
  std::unique_ptr<Ui> ui;
  bool hasQuit = false;
};

TEST_F(PanelViewTest, goesFromTheWelcomeOverTheFirstScanToTheTabsAndBackWhenItIsStopped) {
  addFile("letter", 30 * MB);
  const auto view = show();
  ASSERT_TRUE(view->shows(QStringLiteral("Never be surprised by a full disk again.")));
  EXPECT_FALSE(view->shows(QStringLiteral("Scan now")));
  desktop.tasks.hold(Tasks::Priority::background);
  view->press(Qt::Key_Return);
  desktop.settle();
  view->settle();
  ASSERT_TRUE(view->shows(QStringLiteral("Taking stock of your disk…")));
  EXPECT_TRUE(view->shows(QStringLiteral("100 GB")));
  view->click(view->get(QStringLiteral("Stop")));
  desktop.settle();
  view->settle();
  ASSERT_TRUE(view->shows(QStringLiteral("Start first scan")));
  desktop.tasks.release(Tasks::Priority::background);
  view->click(view->get(QStringLiteral("Start first scan")));
  desktop.settle();
  view->settle();
  EXPECT_TRUE(view->shows(QStringLiteral("Scan now")));
}

TEST_F(PanelViewTest, tabsAreChosenByMouseAndKeyboard) {
  storeScan(morning);
  const auto view = show();
  view->click(view->get(QStringLiteral("Large files")));
  EXPECT_EQ(model->tab(), Tab::files);
  view->get(QStringLiteral("Pages"))->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Right);
  EXPECT_EQ(model->tab(), Tab::developer);
  EXPECT_TRUE(view->shows(QStringLiteral("Stale Git worktrees")));
  view->press(Qt::Key_Right);
  EXPECT_EQ(model->tab(), Tab::developer);
}

TEST_F(PanelViewTest, questionIsDismissedByCancelEscapeBackdropAndHiding) {
  const auto view = showQuestion();
  const std::array<std::function<void()>, 4> ways{
      [&] { view->click(view->get(QStringLiteral("Cancel"))); },
      [&] { view->press(Qt::Key_Escape); },
      [&] {
        QTest::mouseClick(&view->window(), Qt::LeftButton, {}, {10, 10});
      },
      [&] { model->dismissConfirmation(); },
  };
  for (const auto& dismiss : ways) {
    model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good.");
    view->settle();
    ASSERT_TRUE(view->shows(QStringLiteral("Delete permanently?")));
    dismiss();
    desktop.settle();
    view->settle();
    EXPECT_FALSE(isAsked());
    EXPECT_FALSE(view->shows(QStringLiteral("Delete permanently?")));
    EXPECT_TRUE(exists("old.zip"));
  }
}

TEST_F(PanelViewTest, returnDoesWhatIsAskedUnlessCancelWasReachedByTheKeyboard) {
  const auto view = showQuestion();
  view->press(Qt::Key_Tab);
  view->press(Qt::Key_Tab);
  view->press(Qt::Key_Return);
  desktop.settle();
  EXPECT_FALSE(isAsked());
  EXPECT_TRUE(exists("old.zip"));
  model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good.");
  view->settle();
  view->press(Qt::Key_Return);
  desktop.settle();
  EXPECT_FALSE(exists("old.zip"));
}

TEST_F(PanelViewTest, keyThatIsHeldDoesNotAnswerWhatItAsked) {
  const auto view = showButtonThatAsks();
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
  const auto view = showButtonThatAsks();
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
  const auto view = showButtonThatAsks();
  view->click(view->get(QStringLiteral("Look"), "QQuickAbstractButton"));
  const QQuickItem* cancel = view->get(QStringLiteral("Cancel"));
  EXPECT_EQ(view->window().activeFocusItem(), cancel);
  EXPECT_FALSE(cancel->property("visualFocus").toBool());
  model->clearMessage();
  view->press(Qt::Key_Escape);
  view->press(Qt::Key_Tab);
  const QQuickItem* focused = view->window().activeFocusItem();
  ASSERT_TRUE(focused);
  EXPECT_TRUE(focused->inherits("QQuickControl"));
}

TEST_F(PanelViewTest, nothingRunsWhileThePanelIsHidden) {
  addFile("letter", 30 * MB);
  const auto view = show();
  view->theme().setReducedMotion(false);
  const auto runsOnlyWhileSeen = [&](const char* state, qsizetype count) {
    EXPECT_EQ(running(*view).size(), count) << state;
    view->window().hide();
    EXPECT_TRUE(running(*view).isEmpty()) << state;
    view->window().showMinimized();
    EXPECT_TRUE(running(*view).isEmpty()) << state;
    view->window().showNormal();
    view->settle();
    EXPECT_EQ(running(*view).size(), count) << state;
  };
  runsOnlyWhileSeen("welcome", 0);
  desktop.tasks.hold(Tasks::Priority::background);
  desktop.tasks.hold(Tasks::Priority::utility);
  model->begin();
  desktop.settle();
  view->settle();
  runsOnlyWhileSeen("first scan", 2);  // the logo, the time that is left
  desktop.tasks.release(Tasks::Priority::background);
  desktop.tasks.release(Tasks::Priority::utility);
  desktop.settle();
  view->settle();
  runsOnlyWhileSeen("tabs", 1);  // the age of the scan
}

TEST_F(PanelViewTest, ageOfTheScanIsToldAnewEveryHalfMinute) {
  storeScan(morning);
  desktop.clock.setDate(morning);
  const auto view = show();
  EXPECT_TRUE(view->shows(QStringLiteral("Scanned just now · home folder")));
  const auto timers = running(*view);
  ASSERT_EQ(timers.size(), 1);
  EXPECT_EQ(timers.first()->property("interval").toInt(), 30'000);
  EXPECT_TRUE(timers.first()->property("repeat").toBool());
  desktop.clock.setDate(morning + 61s);
  QMetaObject::invokeMethod(timers.first(), "triggered");
  view->settle();
  EXPECT_TRUE(view->shows(QStringLiteral("Scanned 1 minute ago · home folder")));
}

TEST_F(PanelViewTest, whatLiesBehindAQuestionCannotBeReached) {
  const auto view = showQuestion();
  for (int i = 0; i < 6; ++i) {
    view->press(Qt::Key_Tab);
    const QQuickItem* focused = view->window().activeFocusItem();
    ASSERT_TRUE(focused);
    EXPECT_TRUE(focused->inherits("QQuickAbstractButton"));
    EXPECT_FALSE(focused->property("text").toString() == QStringLiteral("Scan now"));
  }
  EXPECT_FALSE(view->get(QStringLiteral("Scan now"))->isEnabled());
}

TEST_F(PanelViewTest, levelBelowTheThresholdIsSaid) {
  desktop.volume.current->free = 15 * GB;
  storeScan(morning);
  const auto view = show();
  EXPECT_TRUE(
      view->shows(QStringLiteral("You're below your 20 GB warning level. Here's where the space went.")));
  model->prefs().setWarningThresholdGB(50);
  view->settle();
  EXPECT_TRUE(view->shows(QStringLiteral("Your disk is almost full. Free up space soon.")));
  model->prefs().setWarningThresholdGB(5);
  view->settle();
  EXPECT_FALSE(view->shows(QStringLiteral("Your disk is almost full. Free up space soon.")));
}

TEST_F(PanelViewTest, settingsShowAndChangeWhatIsStored) {
  storeScan(morning);
  defaults.set("warningThresholdGB", 25).value();
  const auto view = show();
  view->click(view->get(QStringLiteral("Settings")));
  view->settle();
  QQuickItem* threshold = view->get(QStringLiteral("Warn me below"), "QQuickComboBox");
  EXPECT_EQ(threshold->property("displayText").toString(), QStringLiteral("25 GB free"));
  threshold->forceActiveFocus();
  view->press(Qt::Key_Down);
  EXPECT_EQ(model->prefs().warningThresholdGB(), 30);
  EXPECT_EQ(threshold->property("displayText").toString(), QStringLiteral("30 GB free"));
  EXPECT_EQ(threshold->property("count").toInt(), 10);
  view->click(view->get(QStringLiteral("Dock")));
  EXPECT_EQ(model->prefs().presence(), AppPresence::dock);
  view->click(view->get(QStringLiteral("Show free space in the menu bar")));
  EXPECT_FALSE(model->prefs().showFreeSpaceInMenuBar());
  EXPECT_FALSE(view->shows(QStringLiteral("Updates")));
  view->click(view->get(QStringLiteral("Back")));
  EXPECT_FALSE(model->showingSettings());
}

TEST_F(PanelViewTest, keyboardIsOnThePageThatIsShown) {
  storeScan(morning);
  const auto view = show();
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
  const auto view = show();
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

TEST_F(PanelViewTest, usageSwitchShowsAndStoresTheConsent) {
  storeScan(morning);
  usage = std::make_unique<Usage>(Usage::Host{.info = {.name = "Spacemint", .slug = "spacemint"},
                                              .defaults = defaults,
                                              .web = web,
                                              .today = [] { return "2026-03-02"; },
                                              .systemVersion = ""});
  const auto view = show();
  model->setShowingSettings(true);
  view->settle();
  const auto toggle = [&] { return view->get(QStringLiteral("Share anonymous usage")); };
  EXPECT_FALSE(toggle()->property("checked").toBool());
  view->click(toggle());
  EXPECT_EQ(usage->isAllowed(), true);
  // The question that a notice asks is the same.
  usage->setAllowed(false);
  view->settle();
  EXPECT_FALSE(toggle()->property("checked").toBool());
  toggle()->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Return);
  EXPECT_EQ(usage->isAllowed(), true);
}

TEST_F(PanelViewTest, usageCannotBeSharedWhereNobodyAsksForIt) {
  storeScan(morning);
  const auto view = show();
  model->setShowingSettings(true);
  view->settle();
  EXPECT_FALSE(view->shows(QStringLiteral("Share anonymous usage")));
}

TEST_F(PanelViewTest, updatesAreLookedForOnceAtATimeAndTheAnswerIsShown) {
  storeScan(morning);
  auto server = std::make_unique<support::WebServer>(
      [](const support::WebRequest&) { return support::WebAnswer{.isSilent = true}; });
  updates = std::make_unique<Updates>(
      Updates::Host{.info = {.name = "Spacemint",
                             .version = "1.2",
                             .updateFeed = server->address() + "/feed.xml",
                             .updateKey = QByteArray(32, 'k').toBase64().toStdString()},
                    .defaults = defaults,
                    .web = web,
                    .system = {},
                    .package = "spacemint",
                    .folder = folder / "updates",
                    .today = [] { return "2026-03-02"; },
                    .openUrl = [](const std::string&, const auto&) {}});
  const auto view = show();
  model->setShowingSettings(true);
  view->settle();
  EXPECT_TRUE(view->shows(QStringLiteral("Version 1.2")));
  EXPECT_FALSE(view->shows(QStringLiteral("Install")));
  const auto check = [&] { return view->get(QStringLiteral("Check now")); };
  check()->forceActiveFocus(Qt::TabFocusReason);
  view->press(Qt::Key_Return);
  EXPECT_FALSE(check()->isEnabled());
  EXPECT_TRUE(view->shows(QStringLiteral("Checking for updates…")));
  server.reset();
  EXPECT_TRUE(support::waitUntil([&] { return updates->canCheck(); }));
  view->settle();
  EXPECT_TRUE(check()->isEnabled());
  EXPECT_TRUE(view->shows(QStringLiteral("The list of updates could not be reached.")));
  view->click(view->get(QStringLiteral("Install updates automatically")));
  EXPECT_TRUE(updates->installAutomatically());
}

TEST_F(PanelViewTest, rowsOfTheSettingsFollowWhatIsAllowed) {
  storeScan(morning);
  hasAccess = false;
  desktop.notifier.allowed = false;
  const auto view = show();
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

TEST_F(PanelViewTest, messageHasAButtonOnlyWithAnAction) {
  storeScan(morning);
  const auto view = show();
  EXPECT_FALSE(view->shows(QStringLiteral("Dismiss")));
  int performed = 0;
  tell("It needs access.", MessageAction{.title = "Open Settings", .perform = [&] { ++performed; }});
  view->settle();
  view->click(view->get(QStringLiteral("Open Settings"), "QQuickAbstractButton"));
  EXPECT_EQ(performed, 1);
  tell("Done.");
  EXPECT_EQ(performed, 1);
  view->settle();
  EXPECT_TRUE(view->shows(QStringLiteral("Done.")));
  EXPECT_FALSE(view->shows(QStringLiteral("Open Settings")));
  view->click(view->get(QStringLiteral("Dismiss")));
  EXPECT_EQ(message(), "");
  EXPECT_FALSE(view->shows(QStringLiteral("Done.")));
}

TEST_F(PanelViewTest, sentenceKeepsItsOrderAroundANameThatRunsTheOtherWay) {
  const std::string name = "\u05e9\u05dc\u05d5\u05dd.txt";
  addFile(name, 30 * MB);
  storeScan(morning);
  const auto view = show();
  model->confirmDelete(inHome(name), name, 30 * GB, "This removes it for good.");
  view->settle();
  EXPECT_TRUE(view->shows(QString::fromStdString("\u2068" + name + "\u2069 · 30 GB")));
  EXPECT_TRUE(view->shows(QString::fromStdString("\u2066~/\u2068" + name + "\u2069\u2069")));
  confirm();
  desktop.advance(2s);
  EXPECT_THAT(message(), testing::StartsWith("Deleted \u2068" + name + "\u2069"));
}

TEST_F(PanelViewTest, whatTheKeyboardReachesHasARoleANameAndARing) {
  hasAccess = false;
  const auto view = show();
  // Goes once around with the tabulator; every round has at least so many stations.
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
      // What has no role of its own is some client area.
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
  model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good.");
  goAround("question", 2);
}

TEST_F(PanelViewTest, namesOfFilesAreNeverReadAsMarkup) {
  const auto view = showQuestion();
  model->dismissConfirmation();
  model->confirmDelete(inHome("<b>old</b>.zip"), "<b>old</b>.zip", 30 * MB, "This removes it for good.");
  view->settle();
  const auto texts = view->find({}, "QQuickText");
  const bool isPlain = std::ranges::any_of(texts, [](const QQuickItem* text) {
    return text->property("text").toString().contains(QStringLiteral("<b>old</b>.zip")) &&
           text->property("textFormat").toInt() == Qt::PlainText;
  });
  EXPECT_TRUE(isPlain);
}

}  // namespace
}  // namespace spacemint
