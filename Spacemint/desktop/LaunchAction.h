#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace spacemint {

/// What a launcher, or another process of this program, asks the running application to do. Each shows the
/// interface.
enum class LaunchAction : std::uint8_t { open, scan, settings };

/// The names of the actions: in the desktop entry, on the command line ("--scan") and on the bus. In the
/// order of `LaunchAction`.
inline constexpr std::array<std::string_view, 3> launchActionNames{"open", "scan", "settings"};

constexpr std::string_view nameOf(LaunchAction action) {
  return launchActionNames.at(std::to_underlying(action));
}

/// The action with this name; `open` for any other text.
constexpr LaunchAction launchActionNamed(std::string_view name) {
  for (const LaunchAction action : {LaunchAction::scan, LaunchAction::settings}) {
    if (name == nameOf(action)) return action;
  }
  return LaunchAction::open;
}

}  // namespace spacemint
