// The shell over the real model, on a desktop that a test moves, with windows that nobody sees.

#include "Spacemint/shell/Application.h"

#include "support/Files.h"
#include "support/ModelFixture.h"
#include "support/Waiting.h"
#include "ui_kit/Colours.h"

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

class ApplicationTest : public support::ModelFixture {
 protected:
  Application& launch() {
    makeModel();
    services = std::make_unique<AppServices>(AppServicesHost{
        .info = {}, .defaults = defaults, .package = {}, .updatesFolder = {}, .today = {}, .openUrl = {}});
    application = std::make_unique<Application>(ApplicationHost{.model = *model,
                                                                .desktop = desktop.desktop(),
                                                                .services = *services,
                                                                .defaults = defaults,
                                                                .home = home,
                                                                .locale = "en_US",
                                                                .hasBundleIdentifier = isApplication,
                                                                .quit = [this] { hasQuit = true; }});
    application->start();
    settle();
    return *application;
  }
  // As at every launch but the first.
  void launchAgain() {
    store("hasStarted", true);
    launch();
    advance(1s);
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
  bool isPanelShown() const { return application->interface() && application->interface()->isPanelShown(); }
  bool isWindowShown() const { return application->interface() && application->interface()->isWindowShown(); }

  std::unique_ptr<AppServices> services;
  std::unique_ptr<Application> application;
  bool hasQuit = false;
};

TEST_F(ApplicationTest, oneClickOpensTheNextClosesAndDoesNotOpenAgain) {
  launchAgain();
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

// The 250 milliseconds are of a clock that nobody sets.
TEST_F(ApplicationTest, aClockThatIsSetDoesNotMatterForClicks) {
  for (const auto jump : {-8760h, 8760h}) {
    launchAgain();
    click();
    click();
    ASSERT_FALSE(isPanelShown());
    desktop.clock.setDate(desktop.clock.now() + jump);
    advance(100ms);
    click();
    EXPECT_FALSE(isPanelShown()) << "still the click that closed it";
    advance(200ms);
    click();
    EXPECT_TRUE(isPanelShown());
    application.reset();
  }
}

TEST_F(ApplicationTest, opensTheScanThatTheUserChooses) {
  const std::string stored = folder / "scan.json";
  support::writeText(stored, R"([1,2,{"host":"db1"},[{"name":"/srv"},{"name":"a","dsize":1}]])");
  launchAgain();
  desktop.opener.chosenFile = stored;
  const auto choose = [this] {
    for (const StatusMenuEntry& entry : desktop.statusItem.menu)
      if (entry.title == "Open a Scan…") entry.choose();
    settle();
  };
  choose();
  ASSERT_TRUE(isPanelShown());
  EXPECT_FALSE(model->shown().isOfHere());
  // Who opens the panel later sees this computer.
  click();
  advance(Application::releaseAfter + 1s);
  EXPECT_TRUE(model->shown().isOfHere());
  desktop.opener.hasDialog = false;
  choose();
  EXPECT_TRUE(isPanelShown());
  EXPECT_EQ(message(),
            "This desktop has no dialog for choosing a file. Drop the file onto this window instead.");
}

TEST_F(ApplicationTest, aClickBesideThePanelClosesItAlsoWithoutTheFocus) {
  launchAgain();
  click();
  ASSERT_TRUE(isPanelShown());
  desktop.outsideClicks.click();
  EXPECT_FALSE(isPanelShown());
  // The same click may have been on the item.
  click();
  EXPECT_FALSE(isPanelShown());
  advance(1s);
  click();
  EXPECT_TRUE(isPanelShown());
  click();
  desktop.outsideClicks.click();  // nobody watches a hidden panel
}

TEST_F(ApplicationTest, hidingThePanelClearsWhatWasOnIt) {
  launchAgain();
  click();
  model->messages().show("Done.");
  model->confirmEmptyTrash();
  model->setShowingSettings(true);
  click();
  EXPECT_EQ(model->messages().message(), std::nullopt);
  EXPECT_EQ(model->cleanups().confirmation(), std::nullopt);
  EXPECT_FALSE(model->showingSettings());
}

TEST_F(ApplicationTest, itemTellsTheLevelByTitleColourAndBadge) {
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

TEST_F(ApplicationTest, itemIsDrawnForThePanelOrAsTheUserSays) {
  launchAgain();
  const auto ink = [&](ItemColour colour, bool isDark) {
    model->prefs().setItemColour(colour);
    desktop.appearance.dark = isDark;
    Q_EMIT desktop.appearance.changed();
    settle();
    const QImage icon = desktop.statusItem.look.icons.last();
    const QRgb light = QColor::fromRgb(colourNamed("ink").dark).rgb();
    for (int i = 0; i < icon.width(); ++i) {
      if (icon.pixel(i, i) == light) return true;
    }
    return false;
  };
  for (const bool isDark : {false, true}) {
    EXPECT_EQ(ink(ItemColour::automatic, isDark), isDark);
    EXPECT_TRUE(ink(ItemColour::light, isDark));
    EXPECT_FALSE(ink(ItemColour::dark, isDark));
  }
}

TEST_F(ApplicationTest, aLauncherAsksForTheSettingsOrAScan) {
  launch();
  application->perform(LaunchAction::scan);
  EXPECT_TRUE(isPanelShown());
  EXPECT_FALSE(model->scans().isScanning()) << "the user has not begun";
  application.reset();
  launchAgain();
  while (model->scans().isScanning()) model->scans().cancel();
  application->perform(LaunchAction::settings);
  EXPECT_TRUE(model->showingSettings());
  application->perform(LaunchAction::scan);
  EXPECT_TRUE(model->scans().isScanning());
}

// The pages of the welcome and of the settings show no message.
TEST_F(ApplicationTest, explainsTheWindowWhereTheUserSeesIt) {
  desktop.statusItem.current = StatusItem::Area::absent;
  desktop.statusItem.opensMenu = true;
  launch();
  advance(1s);
  ASSERT_TRUE(isWindowShown()) << "the first start";
  EXPECT_EQ(message(), "") << "the welcome would hide it";
  application->interface()->window().close();
  settle();
  application->showUI();
  model->setShowingSettings(true);
  model->begin();
  settle();
  EXPECT_EQ(message(), "") << "so would the settings";
  model->setShowingSettings(false);
  EXPECT_THAT(message(),
              testing::AllOf(testing::HasSubstr("no status area"), testing::HasSubstr("AppIndicator")));
  model->messages().clear();
  application->interface()->window().close();
  application->showUI();
  settle();
  EXPECT_EQ(message(), "") << "it is told once";
}

TEST_F(ApplicationTest, canEndWhileItIsSeen) {
  for (const char* presence : {"menuBar", "dock"}) {
    store("presence", presence);
    launchAgain();
    application->showUI();
    ASSERT_TRUE(isPanelShown() || isWindowShown());
    const QRect place{120, 90, 600, 540};
    if (isWindowShown()) application->interface()->window().setGeometry(place);
    application.reset();
    const bool isKept = defaults.string("SpacemintMainWindow") == "120 90 600 540";
    EXPECT_EQ(isKept, presence == std::string{"dock"});
  }
}

TEST_F(ApplicationTest, theWindowOpensAsItWasLeftUnlessSomethingElseIsAskedFor) {
  store("presence", "dock");
  launchAgain();
  EXPECT_GE(application->interface()->window().width(), 720 * 0.9) << "the first size has room for a map";
  model->setTab(Tab::folders);
  model->setFolderPath(inHome("Videos"));
  const auto explorer = [&] {
    return application->interface()->window().rootObject()->property("ui").value<Ui*>()->explorer();
  };
  explorer()->setColouring(Explorer::Colouring::Age);
  explorer()->setListWidth(300);
  application->interface()->window().close();
  advance(60s);
  application->showUI();
  EXPECT_EQ(explorer()->chosenColouring(), Explorer::Colouring::Age) << "the interface was released";
  application.reset();
  launchAgain();
  EXPECT_EQ(model->tab(), Tab::folders);
  EXPECT_EQ(model->folderPath(), inHome("Videos"));
  EXPECT_EQ(explorer()->listWidth(), 300);
  application.reset();
  launch();
  Q_EMIT desktop.notifier.activated();
  settle();
  EXPECT_EQ(model->tab(), Tab::overview) << "what the warning was about";
}

TEST_F(ApplicationTest, statusAreaThatStartsAgainChangesNothing) {
  store("hasStarted", true);
  launch();
  desktop.statusItem.setArea(StatusItem::Area::absent);
  advance(1s);
  desktop.statusItem.setArea(StatusItem::Area::present);
  advance(10s);
  EXPECT_EQ(application->interface(), nullptr);
}

TEST_F(ApplicationTest, hiddenInterfaceIsReleasedAfterAWhile) {
  launchAgain();
  click();
  click();
  advance(20s);
  click();
  ASSERT_TRUE(isPanelShown());
  advance(20s);
  EXPECT_TRUE(isPanelShown());
  click();
  advance(29s);
  EXPECT_NE(application->interface(), nullptr);
  advance(1s);
  EXPECT_EQ(application->interface(), nullptr);
  click();
  EXPECT_TRUE(isPanelShown());
}

}  // namespace
}  // namespace spacemint
