#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/desktop/linux/AutostartEntry.h"
#include "Spacemint/desktop/linux/CoarseScheduler.h"
#include "Spacemint/desktop/linux/DBusNotifier.h"
#include "Spacemint/desktop/linux/LinuxClock.h"
#include "Spacemint/desktop/linux/PortalAppearance.h"
#include "Spacemint/desktop/linux/StatusNotifierItem.h"
#include "Spacemint/desktop/linux/ThreadTasks.h"
#include "Spacemint/desktop/linux/X11.h"
#include "Spacemint/desktop/linux/XdgOpener.h"

#include <QDBusConnection>
#include <QVariantMap>

namespace spacemint {

/// The volume of this machine with the home folder.
class HostVolume final : public StartupVolume {
 public:
  std::optional<VolumeStatus> status() override;
  bool mayHang() override;
  std::vector<VolumeReading> all() override;
};

/// The badge by the D-Bus signal com.canonical.Unity.LauncherEntry, which several docks and task bars read.
/// The signal carries a whole number: free gigabytes (1,000,000,000 bytes), rounded down.
class LauncherBadge final : public Badge {
 public:
  explicit LauncherBadge(QDBusConnection bus) : bus_(std::move(bus)) {}

  void show(Bytes free) override;
  void clear() override;

 private:
  void send(qlonglong count, bool isVisible);

  QDBusConnection bus_;
};

/// The desktop of the session that this process runs in. Create it on the main thread after the application
/// object, and destroy it before.
class LinuxDesktop {
 public:
  LinuxDesktop();

  /// Refers to this object.
  Desktop desktop();

  /// See `ThreadTasks::finish`.
  bool finishTasks(std::chrono::milliseconds timeout) { return tasks_.finish(timeout); }

 private:
  LinuxClock clock_;
  ThreadTasks tasks_;
  DBusNotifier notifier_;
  std::unique_ptr<TrashCan> trash_ = hostTrash();
  XdgOpener opener_;
  CoarseScheduler scheduler_;
  HostVolume volume_;
  StatusNotifierItem statusItem_;
  LauncherBadge badge_;
  PortalAppearance appearance_;
  AutostartEntry loginItem_;
  X11OutsideClicks outsideClicks_;
};

}  // namespace spacemint
