#include "Spacemint/desktop/linux/LinuxDesktop.h"

namespace spacemint {

LinuxDesktop::LinuxDesktop()
    : notifier_(QDBusConnection::sessionBus()),
      opener_(QDBusConnection::sessionBus(), XdgOpener::Places::current()) {}

Desktop LinuxDesktop::desktop() {
  return {.clock = clock_,
          .tasks = tasks_,
          .notifier = notifier_,
          .trash = trash_,
          .opener = opener_,
          .scheduler = scheduler_,
          .volume = volume_};
}

}  // namespace spacemint
