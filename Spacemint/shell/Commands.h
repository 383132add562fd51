#pragma once

#include "Spacemint/desktop/StatusItem.h"

#include <QKeyCombination>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QKeyEvent;

namespace spacemint {

/// A command to the application as a whole. The user gives it by the status item's menu, by a key in the
/// application's windows, or by both.
struct Command {
  std::string title;
  std::optional<QKeyCombination> key;
  std::function<void()> run;
  /// Whether the menu shows a check mark; empty for a command that is not a switch.
  std::function<bool()> isOn = {};
  bool isInMenu = true;
};

/// The commands in groups. The menu draws a line between groups.
using Commands = std::vector<std::vector<Command>>;

// Main thread only.

std::vector<StatusMenuEntry> menuOf(const Commands& commands);

/// Runs the command of that key. Returns whether there is one.
bool runKey(const Commands& commands, const QKeyEvent& event);

/// The keys for the help: "Ctrl+Q", "Quit Spacemint", and so on, key and meaning in turn.
QStringList keyHelp(const Commands& commands);

}  // namespace spacemint
