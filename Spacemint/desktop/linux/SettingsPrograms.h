#pragma once

#include "Spacemint/desktop/Opener.h"

#include <string>
#include <vector>

namespace spacemint {

/// A program of the desktop and what it is told.
struct SettingsProgram {
  std::string program;
  std::vector<std::string> arguments;

  bool operator==(const SettingsProgram&) const = default;
};

/// Where a session's settings are.
struct SettingsSurroundings {
  /// The names of the desktop as XDG_CURRENT_DESKTOP has them, separated by ":".
  std::string desktop;
  /// Whether this program runs in a Flatpak sandbox, which is what takes rights away on Linux.
  bool isSandboxed = false;

  /// Those of this process.
  static SettingsSurroundings current();
};

/// What shows a page of the settings, in the order in which to try; empty where no program of the desktop
/// does. Starting one from inside the sandbox takes a right that the user has to give.
std::vector<SettingsProgram> settingsPrograms(Opener::SettingsPage page,
                                              const SettingsSurroundings& surroundings);

}  // namespace spacemint
