#include "Spacemint/shell/Commands.h"

#include "core/base/Translation.h"

#include <QKeyEvent>
#include <QKeySequence>

namespace spacemint {

namespace {

// Keys that the views handle themselves: key and meaning in turn.
QStringList keysOfViews() {
  QStringList help;
  for (const std::string& text :
       {i18nc("keys", "Tab, arrows"), i18n("Move through buttons and lists"), i18nc("a key", "Return"),
        i18n("Open the folder, press the button"), i18nc("a key", "Backspace"),
        i18n("Back to the folder above"), i18nc("keys", "Shift+F10"), i18n("Show the menu of a row"),
        i18nc("a key", "Escape"), i18n("Close the question, the settings, the panel")}) {
    help << QString::fromStdString(text);
  }
  return help;
}

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
  QStringList help = keysOfViews();
  const QString control = QString::fromStdString(i18nc("a key", "Ctrl"));
  for (const auto& group : commands) {
    for (const auto& command : group) {
      if (!command.key) continue;
      help << QKeySequence{*command.key}.toString().replace(QStringLiteral("Ctrl"), control)
           << QString::fromStdString(command.title).remove(u'…');
    }
  }
  return help;
}

}  // namespace spacemint
