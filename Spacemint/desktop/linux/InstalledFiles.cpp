#include "Spacemint/desktop/linux/InstalledFiles.h"

#include "core/host/UserFolders.h"

#include <filesystem>

namespace spacemint {

namespace {

std::string shared(const char* relative) {
  const std::filesystem::path program = InstalledFiles::program();
  return (program.parent_path().parent_path() / "share" / relative).string();
}

}  // namespace

std::string InstalledFiles::program() {
  std::error_code failed;
  return std::filesystem::read_symlink("/proc/self/exe", failed).string();
}

std::string InstalledFiles::desktopEntry() {
  return shared("applications/app.spacemint.Spacemint.desktop");
}

std::string InstalledFiles::information() {
  const auto other = UserFolders::environment("SPACEMINT_INFO");
  return other && !other->empty() ? *other : shared("spacemint/Info.plist");
}

std::string InstalledFiles::permissionsHelp() {
  return shared("doc/spacemint/permissions.html");
}

}  // namespace spacemint
