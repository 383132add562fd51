#pragma once

#include <string>

namespace spacemint {

/// Opens things in other programs of the desktop. Main thread only; nothing is said where that fails.
class Opener {
 public:
  /// Pages of the system's settings.
  enum class SettingsPage { fullDiskAccess, automation, notifications };

  Opener() = default;
  Opener(const Opener&) = delete;
  Opener& operator=(const Opener&) = delete;
  virtual ~Opener() = default;

  virtual void openUrl(const std::string& url) = 0;
  virtual void openSettings(SettingsPage page) = 0;

  /// Shows the item in the file manager, selected.
  virtual void reveal(const std::string& path) = 0;
};

}  // namespace spacemint
