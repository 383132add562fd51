#pragma once

#include "Spacemint/desktop/LoginItem.h"

#include <string>

namespace spacemint {

/// The start at login by an entry in the folder that the desktop starts programs from.
class AutostartEntry final : public LoginItem {
 public:
  struct Places {
    /// The entry's file.
    std::string entry;
    /// What the entry starts.
    std::string program;
    /// The application's desktop entry, which is there where the program is installed.
    std::string desktopEntry;

    /// Those of this process.
    static Places current();
  };

  explicit AutostartEntry(Places places) : places_(std::move(places)) {}

  /// The user may have switched the entry off in the desktop's own settings.
  bool isEnabled() const override;
  std::expected<void, Error> enable() override;
  std::expected<void, Error> disable() override;

 private:
  Places places_;
};

}  // namespace spacemint
