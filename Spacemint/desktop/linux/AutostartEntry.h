#pragma once

#include "Spacemint/desktop/Desktop.h"

#include <string>

namespace spacemint {

/// Starts the application at login by a desktop entry in the user's autostart folder, where every
/// freedesktop.org desktop looks. Main thread only; blocks for the file.
class AutostartEntry final : public LoginItem {
 public:
  struct Places {
    /// The path of the autostart entry.
    std::string entry;
    /// The path of the program that the entry starts.
    std::string program;
    /// The path of the application's desktop entry, which exists only if the program is installed.
    std::string desktopEntry;

    /// The values for this process.
    static Places current();
  };

  explicit AutostartEntry(Places places) : places_(std::move(places)) {}

  /// False also where the user has switched the entry off in the desktop's settings.
  bool isEnabled() const override;
  std::expected<void, Error> enable() override;
  std::expected<void, Error> disable() override;

 private:
  Places places_;
};

}  // namespace spacemint
