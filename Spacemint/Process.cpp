#include "Spacemint/Process.h"

#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "core/history/Migration.h"
#include "core/host/FolderListing.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"
#include "core/volume/Permissions.h"

#include <cstdio>
#include <cstdlib>

namespace spacemint {

namespace {

// The session's end may kill the process after a few seconds.
constexpr std::chrono::milliseconds patience{1'500};

AppContext contextOf(DefaultsStore& defaults, EventJournal& journal, const AppInfo& info) {
  return {.defaults = defaults,
          .store = SnapshotStore::standard(),
          .journal = journal,
          .tools = ToolRuns{Shell{}},
          .home = UserFolders::home(),
          .personal = UserFolders::personal(),
          .data = UserFolders::data(),
          .state = UserFolders::state(),
          .environment = UserFolders::environment,
          .disk = std::string{wholeDisk},
          .homeVolume = startupVolume(),
          .locale = userLocale(),
          .timeZone = userTimeZone(),
          .mayNotify = info.identifier.has_value(),
          .hasFullDiskAccess = Permissions::hasFullDiskAccess,
          .volumeFacts = [] { return readVolumeFacts(UserFolders::home()); }};
}

}  // namespace

Process::Process() : info(AppInfo::load(InstalledFiles::information())), defaults(DefaultsStore::standard()) {
  if (const auto migrated = Migration::ofThisUser(defaults); migrated.error) complain(*migrated.error);
  model = std::make_unique<AppModel>(contextOf(defaults, journal, info), desktop.desktop());
}

int Process::end(int code) {
  model.reset();
  if (!desktop.finishTasks(patience)) std::_Exit(code);
  return code;
}

void complain(const std::string& message) {
  std::fprintf(stderr, "spacemint: %s\n", message.c_str());
}

}  // namespace spacemint
