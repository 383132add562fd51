#include "Spacemint/shell/AppDelegate.h"

#include "Spacemint/shell/PanelPlacement.h"
#include "Spacemint/shell/StatusIcon.h"
#include "core/host/FreedMemory.h"
#include "ui_kit/Colours.h"

#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace spacemint {

namespace {

using namespace std::chrono_literals;

// The click that takes the focus from the panel, and so hides it, must not open it again.
constexpr auto sameClick = 250ms;
constexpr auto launchDelay = 500ms;
constexpr auto switchDelay = 300ms;
// A login starts the status area and its items in no particular order.
constexpr auto statusAreaDelay = 3s;

constexpr std::string_view toldOfNoStatusAreaKey = "toldOfNoStatusArea";

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

PanelScreen screenOf(const std::optional<QPoint>& item) {
  const QScreen* screen = item ? QGuiApplication::screenAt(*item) : nullptr;
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  return {.whole = screen->geometry(), .usable = screen->availableGeometry()};
}

}  // namespace

AppDelegate::AppDelegate(ShellHost host) : host_(std::move(host)) {}

// What the windows tell while they go finds all else in place.
AppDelegate::~AppDelegate() {
  const auto going = std::move(interface_);
}

void AppDelegate::applicationDidFinishLaunching() {
  connect(&host_.desktop.statusItem, &StatusItem::activated, this, &AppDelegate::togglePanel);
  connect(&host_.desktop.statusItem, &StatusItem::areaChanged, this, &AppDelegate::followStatusArea);
  connect(&host_.desktop.appearance, &Appearance::changed, this, &AppDelegate::updateStatusItem);
  connect(&host_.model, &AppModel::statusChanged, this, &AppDelegate::updateStatusItem);
  if (host_.hasBundleIdentifier) {
    connect(&host_.desktop.notifier, &Notifier::activated, this, [this] {
      host_.model.setTab(Tab::overview);
      showUI();
    });
  }
  host_.desktop.appearance.follow();
  observePreferences();
  host_.model.start();
  if (host_.hasBundleIdentifier) host_.services.start(true);
  commands_ = makeMainMenu();
  applyPresence();
  updateStatusItem();
  const auto& prefs = host_.model.prefs();
  if (!prefs.hasStarted() || prefs.presence() == AppPresence::dock) {
    host_.desktop.clock.after(launchDelay, this, [this] { showUI(); });
  }
}

// Presence

bool AppDelegate::hasNoStatusArea() const {
  return host_.desktop.statusItem.area() == StatusItem::Area::absent;
}

bool AppDelegate::isWindowed() const {
  return presence_ == AppPresence::dock || hasNoStatusArea();
}

void AppDelegate::applyPresence() {
  const AppPresence wanted = host_.model.prefs().presence();
  if (presence_ == wanted) return;
  const bool isSwitch = std::exchange(presence_, wanted).has_value();
  if (wanted == AppPresence::dock) {
    showInDock(isSwitch);
  } else {
    showInMenuBar(isSwitch);
  }
}

void AppDelegate::showInMenuBar(bool isSwitch) {
  if (interface_ && interface_->isWindowShown()) interface_->window().hide();
  host_.desktop.badge.clear();
  installStatusItem();
  // The user sees where the interface went.
  if (isSwitch) host_.desktop.clock.after(switchDelay, this, [this] { showUI(); });
}

void AppDelegate::showInDock(bool isSwitch) {
  hidePanel();
  host_.desktop.statusItem.remove();
  if (isSwitch) showWindow();
}

void AppDelegate::observePreferences() {
  subscription_ = host_.model.prefs().observe(Preferences::followedAtOnce, [this](Setting) {
    // Later, for the control that changed it is in the window that this may hide.
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

void AppDelegate::followStatusArea() {
  if (!hasNoStatusArea()) {
    // The item says it all now.
    if (presence_ == AppPresence::menuBar) host_.desktop.badge.clear();
    return;
  }
  host_.desktop.clock.after(statusAreaDelay, this, [this] {
    if (presence_ == AppPresence::menuBar && hasNoStatusArea()) showUI();
  });
}

void AppDelegate::tellOfNoStatusArea() {
  if (presence_ != AppPresence::menuBar || !hasNoStatusArea()) return;
  if (host_.defaults.boolean(toldOfNoStatusAreaKey) == true) return;
  host_.model.showMessage("This desktop has no status area, so Spacemint lives in this window.");
  static_cast<void>(host_.defaults.set(toldOfNoStatusAreaKey, true));
}

// The status item

void AppDelegate::installStatusItem() {
  host_.desktop.statusItem.setMenu(menuOf(commands_));
  host_.desktop.statusItem.install();
}

StatusFacts AppDelegate::statusFacts() const {
  return {.level = host_.model.level(),
          .volume = host_.model.volume().status(),
          .showsFreeSpace = host_.model.prefs().showFreeSpaceInMenuBar(),
          .locale = host_.locale};
}

void AppDelegate::updateStatusItem() {
  const StatusFacts facts = statusFacts();
  if (isWindowed()) {
    const auto marked = badgeOf(facts);
    marked ? host_.desktop.badge.show(*marked) : host_.desktop.badge.clear();
  }
  const bool isDark = host_.desktop.appearance.isStatusAreaDark();
  if (presence_ != AppPresence::menuBar || drawn_ == std::pair{facts, isDark}) return;
  drawn_ = {facts, isDark};
  const StatusText text = statusText(facts);
  const QColor colour = colourOf(facts.level, isDark);
  const auto logo = StatusIcon::logo(colour);
  host_.desktop.statusItem.setLook(
      {.title = text.title,
       .toolTip = text.toolTip,
       .icons = logo,
       .titledIcons =
           text.title.empty() ? logo : StatusIcon::figure(QString::fromStdString(text.title), colour)});
}

std::vector<Command> AppDelegate::serviceCommands() {
  std::vector<Command> commands;
  for (const auto& item : host_.services.menuItems()) {
    // What is no switch has its answer on the page of the settings.
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

Commands AppDelegate::makeMainMenu() {
  return {
      {{.title = "Open Spacemint", .key = {}, .run = [this] { showUI(); }}},
      {{.title = "About Spacemint", .key = {}, .run = [this] { showAbout(); }},
       {.title = "Settings…", .key = Qt::CTRL | Qt::Key_Comma, .run = [this] { openSettings(); }}},
      serviceCommands(),
      {{.title = "Quit Spacemint", .key = Qt::CTRL | Qt::Key_Q, .run = host_.quit}},
      {{.title = {}, .key = Qt::CTRL | Qt::Key_H, .run = [this] { hideShown(); }},
       {.title = {}, .key = Qt::CTRL | Qt::Key_W, .run = [this] { hideShown(); }},
       {.title = {},
        .key = Qt::CTRL | Qt::Key_M,
        .run =
            [this] {
              if (interface_ && interface_->isWindowShown()) interface_->window().showMinimized();
            }}},
  };
}

// The panel and the window

void AppDelegate::showUI() {
  tellOfNoStatusArea();
  if (isWindowed()) {
    showWindow();
  } else {
    showPanel();
  }
}

void AppDelegate::showPanel() {
  host_.model.panelWillShow();
  const auto item = host_.desktop.statusItem.position();
  const Appearance& appearance = host_.desktop.appearance;
  neededInterface().panel().open(
      panelPlacement(item, screenOf(item)),
      {.fades = !appearance.reducedMotion(), .isRounded = appearance.hasTransparency()});
}

void AppDelegate::hidePanel() {
  if (!interface_ || !interface_->isPanelShown()) return;
  panelClosedAt_ = host_.desktop.clock.now();
  interface_->panel().hide();
  host_.model.clearMessage();
  host_.model.cleanups().dismiss();
  host_.model.setShowingSettings(false);
}

void AppDelegate::togglePanel() {
  if (interface_ && interface_->isPanelShown()) {
    hidePanel();
  } else if (host_.desktop.clock.now() - panelClosedAt_ > sameClick) {
    showPanel();
  }
}

void AppDelegate::showWindow() {
  host_.model.panelWillShow();
  neededInterface().window().open();
}

void AppDelegate::openSettings() {
  host_.model.setShowingSettings(true);
  showUI();
}

void AppDelegate::showAbout() {
  showUI();
  if (auto* window = shownWindow()) window->showAbout();
}

void AppDelegate::handleEscape(const std::function<void()>& closing) {
  if (host_.model.cleanups().confirmation()) {
    host_.model.cleanups().dismiss();
  } else if (host_.model.showingSettings()) {
    host_.model.setShowingSettings(false);
  } else if (closing) {
    closing();
  }
}

InterfaceWindow* AppDelegate::shownWindow() {
  if (!interface_) return nullptr;
  if (interface_->isPanelShown()) return &interface_->panel();
  return interface_->isWindowShown() ? &interface_->window() : nullptr;
}

void AppDelegate::hideShown() {
  hidePanel();
  if (interface_ && interface_->isWindowShown()) interface_->window().close();
}

Interface& AppDelegate::neededInterface() {
  if (interface_) return *interface_;
  interface_ = std::make_unique<Interface>(InterfaceHost{.ui = {.model = host_.model,
                                                                .desktop = host_.desktop,
                                                                .home = host_.home,
                                                                .locale = host_.locale,
                                                                .quit = host_.quit,
                                                                .loginItem = &host_.desktop.loginItem,
                                                                .usage = host_.services.usage(),
                                                                .updates = host_.services.updates()},
                                                         .services = host_.services,
                                                         .defaults = host_.defaults});
  connect(interface_.get(), &Interface::panelMade, this, qOverload<DropdownPanel&>(&AppDelegate::setUp));
  connect(interface_.get(), &Interface::windowMade, this, qOverload<MainWindow&>(&AppDelegate::setUp));
  return *interface_;
}

void AppDelegate::setUp(DropdownPanel& panel) {
  panel.onCancel = [this] { handleEscape([this] { hidePanel(); }); };
  panel.onKey = [this](const QKeyEvent& key) { return runKey(commands_, key); };
  connect(&panel, &DropdownPanel::left, this, &AppDelegate::hidePanel);
  connect(&panel, &QWindow::visibleChanged, this, &AppDelegate::releaseLater);
}

void AppDelegate::setUp(MainWindow& window) {
  window.onCancel = [this] { handleEscape(); };
  window.onKey = [this](const QKeyEvent& key) { return runKey(commands_, key); };
  connect(&window, &MainWindow::activated, &host_.model, &AppModel::panelWillShow);
  connect(&window, &MainWindow::closed, this, [this] {
    host_.model.clearMessage();
    host_.model.cleanups().dismiss();
  });
  connect(&window, &QWindow::visibleChanged, this, &AppDelegate::releaseLater);
}

void AppDelegate::releaseLater() {
  const int hiding = ++hidings_;
  if (!interface_ || interface_->isShown()) return;
  host_.desktop.clock.after(releaseAfter, this, [this, hiding] {
    if (hiding != hidings_) return;
    interface_.reset();
    giveBackFreedMemory();
  });
}

}  // namespace spacemint
