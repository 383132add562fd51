#include "Spacemint/shell/Commands.h"

#include <QKeyEvent>

namespace spacemint {

std::vector<StatusMenuEntry> menuOf(const Commands& commands) {
  std::vector<StatusMenuEntry> menu;
  for (const auto& group : commands) {
    std::vector<StatusMenuEntry> entries;
    for (const auto& command : group) {
      if (!command.title.empty())
        entries.push_back({.title = command.title, .choose = command.run, .isOn = command.isOn});
    }
    if (entries.empty()) continue;
    if (!menu.empty()) menu.emplace_back();
    menu.insert(menu.end(), entries.begin(), entries.end());
  }
  return menu;
}

bool runKey(const Commands& commands, const QKeyEvent& event) {
  if (event.isAutoRepeat()) return false;
  for (const auto& group : commands) {
    for (const auto& command : group) {
      if (command.key && *command.key == event.keyCombination()) {
        command.run();
        return true;
      }
    }
  }
  return false;
}

}  // namespace spacemint
