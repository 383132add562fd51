// The shell over the real model, on a desktop that a test moves, with windows that nobody sees.

#include "Spacemint/shell/AppDelegate.h"

#include "support/ModelFixture.h"
#include "support/Waiting.h"

#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QTest>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ShellPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using support::GB;
using support::waitUntil;

class AppDelegateTest : public support::ModelFixture {
 protected:
  AppDelegate& launch() {
    makeModel();
    services = std::make_unique<AppServices>(AppServicesHost{
        .info = {}, .defaults = defaults, .package = {}, .updatesFolder = {}, .today = {}, .openUrl = {}});
    delegate = std::make_unique<AppDelegate>(ShellHost{.model = *model,
                                                       .desktop = desktop.desktop(),
                                                       .services = *services,
                                                       .defaults = defaults,
                                                       .home = home,
                                                       .locale = "en_US",
                                                       .hasBundleIdentifier = isApplication,
                                                       .quit = [this] { hasQuit = true; }});
    delegate->applicationDidFinishLaunching();
    settle();
    return *delegate;
  }
  // The shell hears of settings by the event loop.
  void settle() {
    QCoreApplication::processEvents();
    desktop.settle();
  }
  void advance(std::chrono::milliseconds time) {
    desktop.advance(time);
    settle();
  }
  void store(std::string_view key, const DefaultsValue& value) { ASSERT_TRUE(defaults.set(key, value)); }
  void click() {
    desktop.statusItem.click({700, 10});
    settle();
  }
  bool isPanelShown() const { return delegate->interface() && delegate->interface()->isPanelShown(); }
  bool isWindowShown() const { return delegate->interface() && delegate->interface()->isWindowShown(); }
  void press(QWindow& window, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&window, key, modifiers);
    settle();
  }

  std::unique_ptr<AppServices> services;
  std::unique_ptr<AppDelegate> delegate;
  bool hasQuit = false;
};

TEST_F(AppDelegateTest, opensByItselfOnlyAtTheFirstLaunchAndInTheDock) {
  struct Case {
    bool hasStarted;
    const char* presence;
    bool opensPanel;
    bool opensWindow;
  };
  for (const auto& c : std::array{Case{false, "menuBar", true, false}, Case{true, "menuBar", false, false},
                                  Case{true, "dock", false, true}, Case{false, "dock", false, true}}) {
    store("hasStarted", c.hasStarted);
    store("presence", c.presence);
    launch();
    EXPECT_EQ(delegate->interface(), nullptr);
    advance(500ms);
    EXPECT_EQ(isPanelShown(), c.opensPanel);
    EXPECT_EQ(isWindowShown(), c.opensWindow);
    EXPECT_EQ(desktop.statusItem.installed, c.presence == std::string{"menuBar"});
    delegate.reset();
    desktop.statusItem.installed = false;
  }
}

TEST_F(AppDelegateTest, oneClickOpensTheNextClosesAndDoesNotOpenAgain) {
  store("hasStarted", true);
  launch();
  advance(1s);
  click();
  ASSERT_TRUE(isPanelShown());
  click();
  EXPECT_FALSE(isPanelShown());
  // As where the panel loses the focus before the click on the item is told.
  advance(250ms);
  click();
  EXPECT_FALSE(isPanelShown());
  advance(1ms);
  click();
  EXPECT_TRUE(isPanelShown());
}

TEST_F(AppDelegateTest, hidingThePanelClearsWhatWasOnIt) {
  store("hasStarted", true);
  launch();
  advance(1s);
  click();
  model->showMessage("Done.");
  model->confirmEmptyTrash();
  model->setShowingSettings(true);
  click();
  EXPECT_EQ(model->messages().message(), std::nullopt);
  EXPECT_EQ(model->cleanups().confirmation(), std::nullopt);
  EXPECT_FALSE(model->showingSettings());
}

TEST_F(AppDelegateTest, escapeClosesTheUppermost) {
  addFile("old.zip", 30 * support::MB);
  storeScan(support::morning);
  for (const char* presence : {"menuBar", "dock"}) {
    store("hasStarted", true);
    store("presence", presence);
    launch();
    advance(1s);
    if (!isWindowShown()) click();
    InterfaceWindow& window = isWindowShown() ? static_cast<InterfaceWindow&>(delegate->interface()->window())
                                              : delegate->interface()->panel();
    model->setShowingSettings(true);
    model->confirm(DeleteRequest{inHome("old.zip"), "old.zip", 30 * support::MB, ""});
    ASSERT_TRUE(model->cleanups().confirmation());
    settle();
    press(window, Qt::Key_Escape);
    EXPECT_FALSE(model->cleanups().confirmation());
    EXPECT_TRUE(model->showingSettings());
    press(window, Qt::Key_Escape);
    EXPECT_FALSE(model->showingSettings());
    EXPECT_TRUE(window.isVisible());
    press(window, Qt::Key_Escape);
    EXPECT_EQ(window.isVisible(), &window != &delegate->interface()->panel());
    delegate.reset();
  }
}

TEST_F(AppDelegateTest, itemTellsTheLevelByTitleColourAndBadge) {
  store("hasStarted", true);
  store("warningThresholdGB", std::int64_t{20});
  store("showFreeSpaceInMenuBar", false);
  desktop.volume.current->free = 100 * GB;
  launch();
  EXPECT_EQ(desktop.statusItem.look.title, "");
  const QImage calm = desktop.statusItem.look.titledIcons.last();
  desktop.volume.current->free = 12 * GB;
  advance(80s);
  EXPECT_EQ(desktop.statusItem.look.title, " 12 GB");
  EXPECT_EQ(desktop.statusItem.look.toolTip, "12 GB free of 500 GB");
  EXPECT_NE(desktop.statusItem.look.titledIcons.last(), calm);
  EXPECT_EQ(desktop.badge.shown, std::nullopt);
  model->prefs().setPresence(AppPresence::dock);
  settle();
  EXPECT_EQ(desktop.badge.shown, 12 * GB);
  model->prefs().setPresence(AppPresence::menuBar);
  settle();
  EXPECT_EQ(desktop.badge.shown, std::nullopt);
}

TEST_F(AppDelegateTest, switchingThePresenceMovesTheInterface) {
  store("hasStarted", true);
  launch();
  advance(1s);
  click();
  model->prefs().setPresence(AppPresence::dock);
  settle();
  EXPECT_FALSE(desktop.statusItem.installed);
  EXPECT_FALSE(isPanelShown());
  EXPECT_TRUE(isWindowShown());
  model->prefs().setPresence(AppPresence::menuBar);
  settle();
  EXPECT_TRUE(desktop.statusItem.installed);
  EXPECT_FALSE(isWindowShown());
  EXPECT_FALSE(isPanelShown());
  advance(300ms);
  EXPECT_TRUE(isPanelShown());
}

TEST_F(AppDelegateTest, windowStandsInWhereThereIsNoStatusAreaAndSaysSoOnce) {
  store("hasStarted", true);
  desktop.statusItem.current = StatusItem::Area::unknown;
  launch();
  desktop.statusItem.setArea(StatusItem::Area::absent);
  advance(2s);
  EXPECT_FALSE(isWindowShown()) << "the status area may still be starting";
  advance(1s);
  EXPECT_TRUE(isWindowShown());
  EXPECT_THAT(message(), testing::HasSubstr("no status area"));
  EXPECT_TRUE(desktop.statusItem.installed) << "so that one that comes later shows it";
  model->clearMessage();
  delegate->showUI();
  EXPECT_EQ(message(), "");
  desktop.badge.show(GB);
  desktop.statusItem.setArea(StatusItem::Area::present);
  EXPECT_EQ(desktop.badge.shown, std::nullopt);
  click();
  EXPECT_TRUE(isPanelShown());
}

TEST_F(AppDelegateTest, canEndWhileItIsSeen) {
  for (const char* presence : {"menuBar", "dock"}) {
    store("hasStarted", true);
    store("presence", presence);
    launch();
    advance(1s);
    delegate->showUI();
    ASSERT_TRUE(isPanelShown() || isWindowShown());
    const QPoint place{120, 90};
    if (isWindowShown()) delegate->interface()->window().setPosition(place);
    delegate.reset();
    const bool isKept = defaults.string("SpacemintMainWindow") == "120 90";
    EXPECT_EQ(isKept, presence == std::string{"dock"});
  }
}

TEST_F(AppDelegateTest, statusAreaThatStartsAgainChangesNothing) {
  store("hasStarted", true);
  launch();
  desktop.statusItem.setArea(StatusItem::Area::absent);
  advance(1s);
  desktop.statusItem.setArea(StatusItem::Area::present);
  advance(10s);
  EXPECT_EQ(delegate->interface(), nullptr);
}

TEST_F(AppDelegateTest, hiddenInterfaceIsReleasedAfterAWhile) {
  store("hasStarted", true);
  launch();
  advance(1s);
  click();
  click();
  advance(20s);
  click();
  ASSERT_TRUE(isPanelShown());
  advance(20s);
  EXPECT_TRUE(isPanelShown());
  click();
  advance(29s);
  EXPECT_NE(delegate->interface(), nullptr);
  advance(1s);
  EXPECT_EQ(delegate->interface(), nullptr);
  click();
  EXPECT_TRUE(isPanelShown());
}

TEST_F(AppDelegateTest, clickOnANotificationOpensTheOverview) {
  store("hasStarted", true);
  launch();
  advance(1s);
  model->setTab(Tab::developer);
  Q_EMIT desktop.notifier.activated();
  EXPECT_EQ(model->tab(), Tab::overview);
  EXPECT_TRUE(isPanelShown());
}

TEST_F(AppDelegateTest, menuAndKeysReachWhatHasNoButton) {
  store("hasStarted", true);
  launch();
  advance(1s);
  const auto choose = [this](std::string_view title) {
    for (const auto& entry : desktop.statusItem.menu) {
      if (entry.title == title) entry.choose();
    }
    settle();
  };
  choose("Settings…");
  EXPECT_TRUE(isPanelShown());
  EXPECT_TRUE(model->showingSettings());
  DropdownPanel& panel = delegate->interface()->panel();
  choose("About Spacemint");
  EXPECT_TRUE(panel.rootObject()->property("showingAbout").toBool());
  press(panel, Qt::Key_Escape);
  EXPECT_FALSE(panel.rootObject()->property("showingAbout").toBool());
  EXPECT_TRUE(model->showingSettings());
  press(panel, Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(isPanelShown());
  choose("Open Spacemint");
  EXPECT_TRUE(isPanelShown());
  press(panel, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_TRUE(hasQuit);
}

TEST_F(AppDelegateTest, interfaceFollowsTheAppearance) {
  store("hasStarted", true);
  launch();
  advance(1s);
  click();
  const auto canvas = [this] {
    return delegate->interface()
        ->panel()
        .rootObject()
        ->childItems()
        .first()
        ->property("color")
        .value<QColor>();
  };
  const QColor light = canvas();
  desktop.appearance.dark = true;
  Q_EMIT desktop.appearance.changed();
  EXPECT_LT(canvas().lightness(), light.lightness());
}

}  // namespace
}  // namespace spacemint
