#pragma once

#include "Spacemint/shell/Commands.h"
#include "Spacemint/shell/Interface.h"
#include "Spacemint/shell/StatusText.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace spacemint {

/// What the shell stands on. What is given by reference outlives it.
struct ShellHost {
  AppModel& model;
  Desktop desktop;
  AppServices& services;
  DefaultsStore& defaults;
  std::string home;
  std::string locale;
  /// Whether this is the product, and no program that tries it out.
  bool hasBundleIdentifier = false;
  /// Ends the application.
  std::function<void()> quit;
};

/// The application's shell: the item in the status area, the panel that it opens, the window that stands in
/// for both, and when each of them is there. It owns no data of its own. Main thread only.
class AppDelegate : public QObject {
  Q_OBJECT
 public:
  /// The interface gives its memory back when it was hidden for so long.
  static constexpr std::chrono::seconds releaseAfter{30};

  explicit AppDelegate(ShellHost host);
  ~AppDelegate() override;

  void applicationDidFinishLaunching();

  /// Brings the interface forward: the window where it stands in for the panel, else the panel.
  void showUI();
  void showPanel();
  void hidePanel();
  void togglePanel();
  void openSettings();
  void showAbout();
  /// Closes the uppermost thing that can be closed; when there is none, does `closing`.
  void handleEscape(const std::function<void()>& closing = {});

  /// Null while nothing was shown, or has been hidden for long.
  Interface* interface() { return interface_.get(); }

 private:
  bool isWindowed() const;
  bool hasNoStatusArea() const;
  void applyPresence();
  void showInMenuBar(bool isSwitch);
  void showInDock(bool isSwitch);
  void observePreferences();
  void followStatusArea();
  void tellOfNoStatusArea();
  Commands makeMainMenu();
  std::vector<Command> serviceCommands();
  void installStatusItem();
  void updateStatusItem();
  StatusFacts statusFacts() const;

  Interface& neededInterface();
  void setUp(DropdownPanel& panel);
  void setUp(MainWindow& window);
  InterfaceWindow* shownWindow();
  void showWindow();
  void hideShown();
  void releaseLater();

  ShellHost host_;
  Commands commands_;
  std::unique_ptr<Interface> interface_;
  Date panelClosedAt_{};
  /// The one applied last; absent before the launch.
  std::optional<AppPresence> presence_;
  Preferences::Subscription subscription_;
  /// What the status item shows, and whether on a dark ground; drawing it again would take its time.
  std::optional<std::pair<StatusFacts, bool>> drawn_;
  /// How often the interface was hidden: a release that was planned before the last time is off.
  int hidings_ = 0;
};

}  // namespace spacemint
