#include "Spacemint/desktop/linux/LinuxDesktop.h"

#include "core/host/UserFolders.h"

#include <QDBusMessage>

namespace spacemint {

std::optional<VolumeStatus> HostVolume::status() {
  return VolumeStatus::current(startupVolume());
}

// Asks about the home folder, not about its mount point: to find the mount point, the volume would have to
// answer.
bool HostVolume::mayHang() {
  return spacemint::mayHang(UserFolders::home());
}

std::vector<VolumeReading> HostVolume::all() {
  return readVolumes();
}

void LauncherBadge::show(Bytes free) {
  constexpr Bytes gigabyte = 1'000'000'000;
  send(free / gigabyte, true);
}

void LauncherBadge::clear() {
  send(0, false);
}

void LauncherBadge::send(qlonglong count, bool isVisible) {
  QDBusMessage update = QDBusMessage::createSignal(QStringLiteral("/app/spacemint/Spacemint"),
                                                   QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                   QStringLiteral("Update"));
  bus_.send(
      update << QStringLiteral("application://app.spacemint.Spacemint.desktop")
             << QVariantMap{{QStringLiteral("count"), count}, {QStringLiteral("count-visible"), isVisible}});
}

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
          .loginItem = loginItem_,
          .outsideClicks = outsideClicks_};
}

}  // namespace spacemint
