#include "Spacemint/desktop/linux/InstalledFiles.h"

#include "core/host/InstalledFolder.h"
#include "core/host/UserFolders.h"

namespace spacemint {

std::string InstalledFiles::desktopEntry() {
  return InstalledFolder::shared("applications/app.spacemint.Spacemint.desktop");
}

std::string InstalledFiles::information() {
  const auto other = UserFolders::environment("SPACEMINT_INFO");
  return other && !other->empty() ? *other : InstalledFolder::shared("spacemint/Info.plist");
}

std::string InstalledFiles::permissionsHelp() {
  return InstalledFolder::shared("doc/spacemint/permissions.html");
}

}  // namespace spacemint
