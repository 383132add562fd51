#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/desktop/linux/AutostartEntry.h"
#include "Spacemint/desktop/linux/CoarseScheduler.h"
#include "Spacemint/desktop/linux/DBusNotifier.h"
#include "Spacemint/desktop/linux/HostVolume.h"
#include "Spacemint/desktop/linux/LauncherBadge.h"
#include "Spacemint/desktop/linux/LinuxClock.h"
#include "Spacemint/desktop/linux/PortalAppearance.h"
#include "Spacemint/desktop/linux/StatusNotifierItem.h"
#include "Spacemint/desktop/linux/ThreadTasks.h"
#include "Spacemint/desktop/linux/XdgOpener.h"

namespace spacemint {

/// The desktop of the session that this process runs in. Made on the main thread once the graphical
/// application is there, and destroyed before it.
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
};

}  // namespace spacemint
