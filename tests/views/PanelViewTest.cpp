// The page around the tabs, in a window that nobody sees, over the real model.

#include "Spacemint/views/Ui.h"
#include "support/ModelFixture.h"
#include "support/ShownView.h"

#include <QTest>

namespace spacemint {
namespace {

using support::GB;
using support::MB;
using support::morning;
using support::ShownView;

class PanelViewTest : public support::ModelFixture {
 protected:
  std::unique_ptr<ShownView> show() {
    startModel();
    ui = std::make_unique<Ui>(UiHost{.model = *model,
                                     .desktop = desktop.desktop(),
                                     .home = home,
                                     .locale = "en_US",
                                     .quit = [this] { hasQuit = true; },
                                     .loginItem = &desktop.loginItem});
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
  bool isAsked() const { return model->confirmations().current().has_value(); }

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
