#pragma once

#include "Spacemint/desktop/BundleInfo.h"
#include "Spacemint/desktop/linux/LinuxDesktop.h"
#include "Spacemint/model/AppModel.h"
#include "core/scan/ProcessJournal.h"

#include <memory>
#include <string>

namespace spacemint {

/// All that the application's process has besides its windows, put together once. Main thread only.
class Process {
 public:
  Process();

  /// Ends the model, waits a little for what still runs, and answers `code`; where that takes too long it
  /// ends the process with it.
  int end(int code);

  // What tasks use lives until they have ended: after the model and its desktop, or to the end of the
  // process.
  BundleInfo info;
  DefaultsStore defaults;
  ProcessJournal journal;
  LinuxDesktop desktop;
  std::unique_ptr<AppModel> model;
};

/// Tells who started the program.
void complain(const std::string& message);

/// Until it is told to end; answers the exit code. `isLogin`: the desktop starts it, and nobody waits for it.
int runWithWindows(int argc, char** argv, bool isLogin);

}  // namespace spacemint
