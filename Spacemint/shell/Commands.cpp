#include "Spacemint/shell/Commands.h"

#include <QKeyEvent>
#include <QKeySequence>

namespace spacemint {

namespace {

// Keys that the views handle themselves: key and meaning in turn.
const QStringList keysOfViews{
    QStringLiteral("Tab, arrows"), QStringLiteral("Move through buttons and lists"),
    QStringLiteral("Return"),      QStringLiteral("Open the folder, press the button"),
    QStringLiteral("Backspace"),   QStringLiteral("Back to the folder above"),
    QStringLiteral("Shift+F10"),   QStringLiteral("Show the menu of a row"),
    QStringLiteral("Escape"),      QStringLiteral("Close the question, the settings, the panel"),
};

}  // namespace

std::vector<StatusMenuEntry> menuOf(const Commands& commands) {
  std::vector<StatusMenuEntry> menu;
  for (const auto& group : commands) {
    std::vector<StatusMenuEntry> entries;
    for (const auto& command : group) {
      if (command.isInMenu)
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

QStringList keyHelp(const Commands& commands) {
  QStringList help = keysOfViews;
  for (const auto& group : commands) {
    for (const auto& command : group) {
      if (!command.key) continue;
      help << QKeySequence{*command.key}.toString(QKeySequence::NativeText)
           << QString::fromStdString(command.title).remove(u'…');
    }
  }
  return help;
}

}  // namespace spacemint
