#pragma once

#include "AppServices/AppInfo.h"
#include "Spacemint/desktop/linux/LinuxDesktop.h"
#include "Spacemint/model/AppModel.h"
#include "core/scan/ScanJournal.h"

#include <memory>
#include <string>

namespace spacemint {

/// Everything in the application's process except its windows. Main thread only; one object in a process.
class Process {
 public:
  Process();

  /// Destroys the model, waits up to 1.5 seconds for background work, and returns `code`. If the work takes
  /// longer, it ends the process with `code`.
  int end(int code);

  // Background work uses these. So they are destroyed after the model and after the desktop, which waits for
  // it.
  AppInfo info;
  DefaultsStore defaults;
  OwnScanJournal journal;
  LinuxDesktop desktop;
  std::unique_ptr<AppModel> model;
};

/// Writes a line about a failure to standard error.
void complain(const std::string& message);

/// Runs the application until it ends, and returns the exit code. `isLogin`: the desktop started it at login,
/// so that it does not show an instance that runs already.
int runWithWindows(int argc, char** argv, bool isLogin);

}  // namespace spacemint
