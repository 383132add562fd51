#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/desktop/linux/PortalFileChooser.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace spacemint {

/// A program and its arguments.
struct SettingsProgram {
  std::string program;
  std::vector<std::string> arguments;

  bool operator==(const SettingsProgram&) const = default;
};

/// What decides which programs show the settings.
struct SettingsSurroundings {
  /// The value of XDG_CURRENT_DESKTOP: names separated by ":".
  std::string desktop;
  /// Whether this program runs in a Flatpak sandbox. Only then there are rights to give in the settings.
  bool isSandboxed = false;

  /// The values for this process.
  static SettingsSurroundings current();
};

/// The programs that show a page of the settings; try them in this order. Empty where the desktop has none.
/// To start one from inside a Flatpak sandbox the user must have given the right to.
std::vector<SettingsProgram> settingsPrograms(Opener::SettingsPage page,
                                              const SettingsSurroundings& surroundings);

/// Opens things by the desktop's D-Bus services, and by its programs where there is no such service. Main
/// thread only; never blocks.
class XdgOpener final : public Opener {
 public:
  struct Places {
    /// The path of the page that explains how to give and take rights by hand.
    std::string help;
    SettingsSurroundings surroundings;
    /// Opens a URL by the desktop's programs; calls `failed`, which may be empty, if none opens it.
    std::function<void(const std::string& url, std::function<void()> failed)> openByProgram;
    /// Starts a program found in PATH; false if that fails.
    std::function<bool(const SettingsProgram& program)> start;

    /// The values for this process.
    static Places current();
  };

  XdgOpener(QDBusConnection bus, Places places);

  /// Asks the portal to open web pages. Files are opened by programs: the portal takes no paths of files.
  void openUrl(const std::string& url, std::function<void()> failed) override;
  /// Opens the desktop's page, or the help page where the desktop has none.
  void openSettings(SettingsPage page) override;
  void chooseFile(const std::string& title, Chosen chosen, std::function<void()> failed) override {
    chooser_.choose(title, std::move(chosen), std::move(failed));
  }
  /// Opens the item's folder where no file manager answers on the bus.
  void reveal(const std::string& path) override;
  void findFileManager(std::function<void(const std::string& name)> found) override;

 private:
  QDBusConnection bus_;
  Places places_;
  PortalFileChooser chooser_{bus_};
  /// Answers that arrive after its destruction are dropped.
  QObject context_;
};

}  // namespace spacemint
