#include "Spacemint/shell/Application.h"

#include "Spacemint/shell/Placement.h"
#include "Spacemint/shell/WindowMemory.h"
#include "core/base/Translation.h"
#include "core/host/FreedMemory.h"
#include "ui_kit/Colours.h"

#include <QGuiApplication>
#include <QScreen>

#include <tuple>
#include <utility>

namespace spacemint {

namespace {

using namespace std::chrono_literals;

// A click on the status item takes the focus from the panel, which hides it, and then arrives as a click on
// the item. Such a click must not open the panel again.
constexpr auto sameClick = 250ms;
constexpr auto launchDelay = 500ms;
constexpr auto switchDelay = 300ms;
// At login the status area may start after this application.
constexpr auto statusAreaDelay = 3s;

// Set once the user has seen why there is a window.
constexpr std::string_view explainedWindowKey = "toldOfNoStatusArea";

QColor colourOf(SpaceLevel level, bool isDark) {
  const auto resolved = [isDark](const Colour& colour) {
    return QColor::fromRgb(isDark ? colour.dark : colour.light);
  };
  switch (level) {
    case SpaceLevel::low:
      return resolved(colourNamed("warning"));
    case SpaceLevel::critical:
      return resolved(colourNamed("critical"));
    case SpaceLevel::ok:
      break;
  }
  return resolved(colourNamed("ink"));
}

bool isOnWayland() {
  return QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

PanelScreen screenOf(const std::optional<QPoint>& item) {
  const QScreen* screen = item ? QGuiApplication::screenAt(*item) : nullptr;
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  return {.whole = screen->geometry(), .usable = screen->availableGeometry()};
}

}  // namespace

Application::Application(ApplicationHost host) : host_(std::move(host)) {}

// Destroys the windows first: their signals use the other members.
Application::~Application() {
  outsideClicks_.reset();
  const auto going = std::move(interface_);
}

void Application::start() {
  connect(&host_.desktop.statusItem, &StatusItem::activated, this, &Application::togglePanel);
  connect(&host_.desktop.statusItem, &StatusItem::areaChanged, this, &Application::followStatusArea);
  connect(&host_.desktop.appearance, &Appearance::changed, this, &Application::updateStatusItem);
  connect(&host_.model, &AppModel::statusChanged, this, &Application::updateStatusItem);
  connect(&host_.model.volume(), &VolumeWatch::volumesWereRead, this, &Application::updateStatusItem);
  if (host_.hasBundleIdentifier) {
    connect(&host_.desktop.notifier, &Notifier::activated, this, [this] {
      opensAsLeft_ = false;
      host_.model.followWarning();
      showUI();
    });
  }
  host_.desktop.appearance.follow();
  observePreferences();
  observePage();
  host_.model.start();
  if (host_.hasBundleIdentifier) host_.services.start(true);
  commands_ = makeCommands();
  applyPresence();
  updateStatusItem();
  const auto& prefs = host_.model.prefs();
  if (!prefs.hasStarted() || prefs.presence() == AppPresence::dock) {
    host_.desktop.clock.after(launchDelay, this, [this] { showUI(); });
  }
}

// Presence

bool Application::hasNoStatusArea() const {
  return host_.desktop.statusItem.area() == StatusItem::Area::absent;
}

bool Application::isWindowed() const {
  return presence_ == AppPresence::dock || hasNoStatusArea();
}

void Application::applyPresence() {
  const AppPresence wanted = host_.model.prefs().presence();
  if (presence_ == wanted) return;
  const bool isSwitch = std::exchange(presence_, wanted).has_value();
  if (wanted == AppPresence::dock) {
    showInDock(isSwitch);
  } else {
    showInMenuBar(isSwitch);
  }
}

void Application::showInMenuBar(bool isSwitch) {
  if (interface_ && interface_->isWindowShown()) interface_->window().hide();
  host_.desktop.badge.clear();
  installStatusItem();
  // The panel shows the user where the interface is now.
  if (isSwitch) host_.desktop.clock.after(switchDelay, this, [this] { showUI(); });
}

void Application::showInDock(bool isSwitch) {
  hidePanel();
  host_.desktop.statusItem.remove();
  if (isSwitch) showWindow();
}

void Application::observePreferences() {
  subscription_ = host_.model.prefs().observe(Preferences::followedAtOnce, [this](Setting) {
    // Later: the control that changed the setting is in the window that this may hide.
    QMetaObject::invokeMethod(
        this,
        [this] {
          host_.model.preferencesChanged();
          applyPresence();
          updateStatusItem();
        },
        Qt::QueuedConnection);
  });
}

void Application::followStatusArea() {
  if (!hasNoStatusArea()) {
    // The item shows the level now.
    if (presence_ == AppPresence::menuBar) host_.desktop.badge.clear();
    return;
  }
  host_.desktop.clock.after(statusAreaDelay, this, [this] {
    if (presence_ == AppPresence::menuBar && hasNoStatusArea()) showUI();
  });
}

// Why there is a window is said once something is scanned, on a page that shows messages: not in the
// settings.
void Application::observePage() {
  const auto explain = [this] { explainWindow(); };
  connect(&host_.model.shown(), &ShownScan::snapshotChanged, this, explain);
  connect(&host_.model.scans(), &ScanLifecycle::progressChanged, this, explain);
  connect(&host_.model, &AppModel::showingSettingsChanged, this, explain);
}

// Tells the user once why there is a window. It counts as told only when the user can see it.
void Application::explainWindow() {
  if (presence_ != AppPresence::menuBar || !hasNoStatusArea()) return;
  if (!interface_ || !interface_->isWindowShown() || host_.model.showingSettings()) return;
  if (!host_.model.shown().snapshot() && !host_.model.scans().isScanning()) return;
  if (host_.model.messages().message() || host_.defaults.boolean(explainedWindowKey) == true) return;
  host_.model.messages().show(
      host_.desktop.statusItem.opensMenuOnClick()
          ? i18n("This desktop has no status area, so Spacemint lives in this window. GNOME's extension "
                 "AppIndicator adds one.")
          : i18n("This desktop has no status area, so Spacemint lives in this window."));
  std::ignore = host_.defaults.set(explainedWindowKey, true);
}

// The status item

void Application::installStatusItem() {
  host_.desktop.statusItem.setMenu(menuOf(commands_));
  host_.desktop.statusItem.install();
}

StatusFacts Application::statusFacts() const {
  return {.level = host_.model.warnings().level(),
          .volume = host_.model.volume().status(),
          .showsFreeSpace = host_.model.prefs().showFreeSpaceInMenuBar(),
          .locale = host_.locale,
          .lowFiles = host_.model.warnings().lowFiles()};
}

bool Application::isItemForDarkPanel() const {
  const ItemColour colour = host_.model.prefs().itemColour();
  if (colour == ItemColour::automatic) return host_.desktop.appearance.isStatusAreaDark();
  return colour == ItemColour::light;
}

void Application::updateStatusItem() {
  const StatusFacts facts = statusFacts();
  if (isWindowed()) {
    const auto marked = badgeOf(facts);
    marked ? host_.desktop.badge.show(*marked) : host_.desktop.badge.clear();
  }
  const bool isDark = isItemForDarkPanel();
  if (presence_ != AppPresence::menuBar || drawn_ == std::pair{facts, isDark}) return;
  drawn_ = {facts, isDark};
  const StatusText text = statusText(facts);
  const QColor colour = colourOf(facts.worstLevel(), isDark);
  const auto logo = StatusIcon::logo(colour);
  host_.desktop.statusItem.setLook(
      {.title = text.title,
       .toolTip = text.toolTip,
       .icons = logo,
       .titledIcons =
           text.title.empty() ? logo : StatusIcon::figure(QString::fromStdString(text.title), colour)});
}

std::vector<Command> Application::serviceCommands() {
  std::vector<Command> commands;
  for (const auto& item : host_.services.menuItems()) {
    // Commands other than switches show their result on the settings page.
    const auto chosenAndShown = [this, choose = item.choose] {
      choose();
      openSettings();
    };
    commands.push_back({.title = item.title.toStdString(),
                        .key = {},
                        .run = item.isOn ? item.choose : chosenAndShown,
                        .isOn = item.isOn});
  }
  return commands;
}

Commands Application::makeCommands() {
  const auto minimize = [this] {
    if (interface_ && interface_->isWindowShown()) interface_->window().showMinimized();
  };
  return {
      {{.title = i18n("Open Spacemint"), .key = {}, .run = [this] { showUI(); }},
       {.title = i18n("Open a Scan…"), .key = Qt::CTRL | Qt::Key_O, .run = [this] { chooseScan(); }}},
      {{.title = i18n("About Spacemint"), .key = QKeyCombination{Qt::Key_F1}, .run = [this] { showAbout(); }},
       {.title = i18n("Settings…"), .key = Qt::CTRL | Qt::Key_Comma, .run = [this] { openSettings(); }}},
      serviceCommands(),
      {{.title = i18n("Quit Spacemint"), .key = Qt::CTRL | Qt::Key_Q, .run = host_.quit}},
      {{.title = i18nc("the window", "Hide"),
        .key = Qt::CTRL | Qt::Key_H,
        .run = [this] { hideShown(); },
        .isInMenu = false},
       {.title = i18nc("the window", "Close"),
        .key = Qt::CTRL | Qt::Key_W,
        .run = [this] { hideShown(); },
        .isInMenu = false},
       {.title = i18nc("the window", "Minimize"),
        .key = Qt::CTRL | Qt::Key_M,
        .run = minimize,
        .isInMenu = false}},
  };
}

// The panel and the window

// Without layer shell, only a Wayland compositor places windows: the panel would be in the middle of the
// screen, without a title, and larger than a small screen.
bool Application::canPlacePanel() const {
  return host_.hasLayerShell || !isOnWayland();
}

void Application::showUI() {
  if (isWindowed() || !canPlacePanel()) {
    showWindow();
  } else {
    showPanel();
  }
}

void Application::showPanel() {
  opensAsLeft_ = false;
  host_.model.panelWillShow();
  const auto item = host_.desktop.statusItem.position();
  if (isOnWayland()) {
    if (!showPanelOnLayer(item)) showWindow();
    return;
  }
  const Appearance& appearance = host_.desktop.appearance;
  DropdownPanel& panel = neededInterface().panel();
  panel.open(panelPlacement(item, screenOf(item)),
             {.fades = !appearance.reducedMotion() && appearance.hasTransparency(),
              .isRounded = appearance.hasTransparency()});
  // Some window managers never give the panel the focus, or do not take it away at a click on the empty
  // desktop.
  outsideClicks_ = host_.desktop.outsideClicks.watch(panel, [this] { hidePanel(); });
}

bool Application::showPanelOnLayer(const std::optional<QPoint>& item) {
  Interface& interface = neededInterface();
  return interface.panel().open(layerPlacement(item, screenOf(item).whole), interface.layers());
}

void Application::hidePanel() {
  if (!interface_ || !interface_->isPanelShown()) return;
  panelClosedAt_ = host_.desktop.clock.steadyNow();
  outsideClicks_.reset();
  interface_->panel().hide();
  host_.model.messages().clear();
  host_.model.cleanups().dismiss();
  host_.model.setShowingSettings(false);
}

void Application::togglePanel() {
  if (!canPlacePanel()) {
    interface_ && interface_->isWindowShown() ? hideShown() : showWindow();
  } else if (interface_ && interface_->isPanelShown()) {
    hidePanel();
  } else if (!panelClosedAt_ || host_.desktop.clock.steadyNow() - *panelClosedAt_ > sameClick) {
    showPanel();
  }
}

// The page and the folder that were open when the window was closed in an earlier run.
void Application::openAsLeft() {
  if (!std::exchange(opensAsLeft_, false)) return;
  const auto memory = storedMemory(host_.defaults);
  if (!memory) return;
  host_.model.setTab(memory->tab);
  host_.model.setFolderPath(memory->folder);
}

void Application::showWindow() {
  openAsLeft();
  host_.model.panelWillShow();
  neededInterface().window().open();
  explainWindow();
}

void Application::openSettings() {
  host_.model.setShowingSettings(true);
  bringForward();
}

void Application::perform(LaunchAction action) {
  if (action == LaunchAction::settings) return openSettings();
  // Before the user has begun, the welcome explains what a scan is.
  if (action == LaunchAction::scan && host_.model.prefs().hasStarted()) host_.model.scans().scan();
  showUI();
}

void Application::open(const std::string& path) {
  opensAsLeft_ = false;
  host_.model.open(path);
  showUI();
}

// Without a dialog there is still the pointer.
void Application::chooseScan() {
  const auto missing = [this] {
    host_.model.messages().show(
        i18n("This desktop has no dialog for choosing a file. Drop the file onto this window instead."));
    bringForward();
  };
  host_.desktop.opener.chooseFile(
      i18n("Open a Scan"), [this](const std::string& path) { open(path); }, missing);
}

void Application::showAbout() {
  bringForward();
  if (auto* window = shownWindow()) window->showAbout();
}

// A panel that is shown already would fade in again.
void Application::bringForward() {
  if (interface_ && interface_->isPanelShown()) return interface_->panel().requestActivate();
  showUI();
}

void Application::handleEscape(const std::function<void()>& closing) {
  if (host_.model.cleanups().confirmation()) {
    host_.model.cleanups().dismiss();
  } else if (host_.model.showingSettings()) {
    host_.model.setShowingSettings(false);
  } else if (closing) {
    closing();
  }
}

InterfaceWindow* Application::shownWindow() {
  if (!interface_) return nullptr;
  if (interface_->isPanelShown()) return &interface_->panel();
  return interface_->isWindowShown() ? &interface_->window() : nullptr;
}

void Application::hideShown() {
  hidePanel();
  if (interface_ && interface_->isWindowShown()) interface_->window().close();
}

Interface& Application::neededInterface() {
  if (interface_) return *interface_;
  Usage* usage = host_.services.usage();
  interface_ = std::make_unique<Interface>(
      InterfaceHost{.ui = {.model = host_.model,
                           .desktop = host_.desktop,
                           .home = host_.home,
                           .locale = host_.locale,
                           .quit = host_.quit,
                           .about = [this] { showAbout(); },
                           .loginItem = &host_.desktop.loginItem,
                           .usage = usage != nullptr && usage->isOffered() ? usage : nullptr,
                           .updates = host_.services.updates()},
                    .services = host_.services,
                    .defaults = host_.defaults,
                    .keyHelp = keyHelp(commands_)});
  connect(interface_.get(), &Interface::panelMade, this, qOverload<DropdownPanel&>(&Application::setUp));
  connect(interface_.get(), &Interface::windowMade, this, qOverload<MainWindow&>(&Application::setUp));
  return *interface_;
}

void Application::setUp(DropdownPanel& panel) {
  panel.onCancel = [this] { handleEscape([this] { hidePanel(); }); };
  panel.onKey = [this](const QKeyEvent& key) { return runKey(commands_, key); };
  connect(&panel, &DropdownPanel::left, this, &Application::hidePanel);
  connect(&panel, &QWindow::visibleChanged, this, &Application::releaseLater);
}

void Application::setUp(MainWindow& window) {
  window.onCancel = [this] { handleEscape(); };
  window.onKey = [this](const QKeyEvent& key) { return runKey(commands_, key); };
  connect(&window, &MainWindow::activated, &host_.model, &AppModel::panelWillShow);
  connect(&window, &MainWindow::closed, this, [this] {
    host_.model.messages().clear();
    host_.model.cleanups().dismiss();
  });
  connect(&window, &QWindow::visibleChanged, this, &Application::releaseLater);
}

void Application::releaseLater() {
  const int hiding = ++hidings_;
  if (!interface_ || interface_->isShown()) return;
  host_.desktop.clock.after(releaseAfter, this, [this, hiding] {
    if (hiding != hidings_) return;
    // Who comes back later expects this computer.
    host_.model.shown().close();
    interface_.reset();
    giveBackFreedMemory();
  });
}

}  // namespace spacemint
