#pragma once

#include "Spacemint/desktop/StatusItem.h"

#include <QKeyCombination>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QKeyEvent;

namespace spacemint {

/// Something that the user can tell the application from everywhere: by the status item's menu, by a key in
/// its windows, or by both.
struct Command {
  /// Empty for a command that no menu offers.
  std::string title;
  std::optional<QKeyCombination> key;
  std::function<void()> run;
  /// Whether a menu marks it; empty for a command that is no switch.
  std::function<bool()> isOn = {};
};

/// The commands in groups, between which a menu has a line.
using Commands = std::vector<std::vector<Command>>;

std::vector<StatusMenuEntry> menuOf(const Commands& commands);

/// Runs the command of that key; whether there is one.
bool runKey(const Commands& commands, const QKeyEvent& event);

}  // namespace spacemint
