#pragma once

#include "AppServices/AppInfo.h"
#include "Spacemint/desktop/LaunchAction.h"
#include "Spacemint/desktop/linux/LinuxDesktop.h"
#include "Spacemint/model/AppModel.h"
#include "core/scan/ProcessJournal.h"

#include <memory>
#include <string>

namespace spacemint {

/// Everything that the application's process has besides its windows, put together once. Main thread only.
class Process {
 public:
  Process();

  /// Ends the model, waits up to 1.5 s for running tasks, and answers `code`; when tasks still run then, ends
  /// the process with `code`.
  int end(int code);

  // Running tasks use these members, so the members live until the tasks have ended: longer than the model
  // and its desktop, or to the end of the process.
  AppInfo info;
  DefaultsStore defaults;
  ProcessJournal journal;
  LinuxDesktop desktop;
  std::unique_ptr<AppModel> model;
};

/// Writes one line on standard error.
void complain(const std::string& message);

/// Why the program was started.
struct Launch {
  LaunchAction action = LaunchAction::open;
  /// The absolute path of a folder, or of a file with a scan, to show; empty for none.
  std::string path = {};
  /// The desktop started the program with the session, so no window opens.
  bool isLogin = false;
};

/// Runs until the application quits; answers the exit code.
int runWithWindows(char* program, Launch launch);

}  // namespace spacemint
