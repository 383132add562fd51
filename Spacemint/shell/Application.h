#pragma once

#include "Spacemint/desktop/LaunchAction.h"
#include "Spacemint/shell/Commands.h"
#include "Spacemint/shell/Interface.h"
#include "Spacemint/shell/ItemLook.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace spacemint {

/// What the application is made of. The referenced objects outlive it.
struct ApplicationHost {
  AppModel& model;
  Desktop desktop;
  AppServices& services;
  DefaultsStore& defaults;
  std::string home;
  /// A locale name of ICU.
  std::string locale;
  /// True in an installed build. Without it there are no services, and clicks on notifications are ignored.
  bool hasBundleIdentifier = false;
  /// Wayland: whether the compositor lets this program place a panel.
  bool hasLayerShell = false;
  /// Ends the application.
  std::function<void()> quit;
};

/// The application around its model: the status item, the panel that the item opens, the window that replaces
/// both, and the rules for when each is shown. It has no data of its own. Main thread only.
class Application : public QObject {
  Q_OBJECT
 public:
  /// The interface is destroyed, to give its memory back, when it was hidden for this long.
  static constexpr std::chrono::seconds releaseAfter{30};

  explicit Application(ApplicationHost host);
  ~Application() override;

  /// Call it once.
  void start();

  /// Shows the interface: the window where it replaces the panel, else the panel.
  void showUI();
  void showPanel();
  void hidePanel();
  void togglePanel();
  void openSettings();
  void perform(LaunchAction action);
  /// Shows a folder in the list of folders, or the scan in a file. Takes an absolute path.
  void open(const std::string& path);
  void showAbout();
  /// Closes the topmost of question and settings. Calls `closing` if neither is open.
  void handleEscape(const std::function<void()>& closing = {});

  /// Null until something is shown, and after it was hidden for `releaseAfter`.
  Interface* interface() { return interface_.get(); }

 private:
  bool isWindowed() const;
  bool canPlacePanel() const;
  bool showPanelOnLayer(const std::optional<QPoint>& item);
  bool hasNoStatusArea() const;
  void applyPresence();
  void showInMenuBar(bool isSwitch);
  void showInDock(bool isSwitch);
  void chooseScan();
  void observePreferences();
  void observePage();
  void followStatusArea();
  void explainWindow();
  Commands makeCommands();
  std::vector<Command> serviceCommands();
  void installStatusItem();
  void updateStatusItem();
  bool isItemForDarkPanel() const;
  StatusFacts statusFacts() const;

  Interface& neededInterface();
  void setUp(DropdownPanel& panel);
  void setUp(MainWindow& window);
  InterfaceWindow* shownWindow();
  void showWindow();
  void openAsLeft();
  void bringForward();
  void hideShown();
  void releaseLater();

  ApplicationHost host_;
  Commands commands_;
  std::unique_ptr<Interface> interface_;
  /// Exists while the panel is shown.
  std::unique_ptr<OutsideClicks::Watch> outsideClicks_;
  std::optional<std::chrono::steady_clock::time_point> panelClosedAt_;
  /// The presence applied last; absent before the start.
  std::optional<AppPresence> presence_;
  Preferences::Subscription subscription_;
  /// Until the first window of this run, or until something else was asked for.
  bool opensAsLeft_ = true;
  /// What the status item shows, and whether for a dark ground. It is drawn only if one of these changes.
  std::optional<std::pair<StatusFacts, bool>> drawn_;
  /// How often the interface was hidden. A release that was planned at an earlier hiding is cancelled.
  int hidings_ = 0;
};

}  // namespace spacemint
