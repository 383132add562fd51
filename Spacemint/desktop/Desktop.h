#pragma once

#include "Spacemint/desktop/ActivityScheduler.h"
#include "Spacemint/desktop/Appearance.h"
#include "Spacemint/desktop/Badge.h"
#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/LoginItem.h"
#include "Spacemint/desktop/Notifier.h"
#include "Spacemint/desktop/Opener.h"
#include "Spacemint/desktop/StartupVolume.h"
#include "Spacemint/desktop/StatusItem.h"
#include "Spacemint/desktop/Tasks.h"
#include "core/host/TrashCan.h"

namespace spacemint {

/// All that the application needs of the desktop it runs on. Outlives what uses it.
struct Desktop {
  Clock& clock;
  Tasks& tasks;
  Notifier& notifier;
  TrashCan& trash;
  Opener& opener;
  ActivityScheduler& scheduler;
  StartupVolume& volume;
  StatusItem& statusItem;
  Badge& badge;
  Appearance& appearance;
  LoginItem& loginItem;
};

}  // namespace spacemint
