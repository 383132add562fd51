#include "Spacemint/desktop/linux/LinuxDesktop.h"

namespace spacemint {

LinuxDesktop::LinuxDesktop()
    : notifier_(QDBusConnection::sessionBus()),
      opener_(QDBusConnection::sessionBus(), XdgOpener::Places::current()),
      statusItem_(QDBusConnection::sessionBus(), qEnvironmentVariable("XDG_CURRENT_DESKTOP")),
      badge_(QDBusConnection::sessionBus()),
      appearance_(QDBusConnection::sessionBus(), qEnvironmentVariable("XDG_CURRENT_DESKTOP")),
      loginItem_(AutostartEntry::Places::current()) {}

Desktop LinuxDesktop::desktop() {
  return {.clock = clock_,
          .tasks = tasks_,
          .notifier = notifier_,
          .trash = *trash_,
          .opener = opener_,
          .scheduler = scheduler_,
          .volume = volume_,
          .statusItem = statusItem_,
          .badge = badge_,
          .appearance = appearance_,
          .loginItem = loginItem_};
}

}  // namespace spacemint
