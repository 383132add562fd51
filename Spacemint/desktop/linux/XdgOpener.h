#pragma once

#include "Spacemint/desktop/Opener.h"
#include "Spacemint/desktop/linux/SettingsPrograms.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace spacemint {

/// Opens things over the desktop's services, and by its programs where there is no such service. Never waits
/// for either.
class XdgOpener final : public Opener {
 public:
  struct Places {
    /// The page that tells how to give and take rights by hand: a file.
    std::string help;
    SettingsSurroundings surroundings;
    /// Opens a URL by the desktop's programs.
    std::function<void(const std::string& url)> openByProgram;
    /// Starts a program, whose name is searched for; whether that was possible.
    std::function<bool(const SettingsProgram& program)> start;

    /// Those of this process, which needs a graphical application for `openByProgram`.
    static Places current();
  };

  XdgOpener(const QDBusConnection& bus, Places places);

  void openUrl(const std::string& url) override;
  /// The desktop's own page where it has one, else the help page.
  void openSettings(SettingsPage page) override;
  /// Shows the folder around the item where the file manager cannot be asked.
  void reveal(const std::string& path) override;

 private:
  QDBusConnection bus_;
  Places places_;
  /// Answers that come after this are dropped.
  QObject context_;
};

}  // namespace spacemint
