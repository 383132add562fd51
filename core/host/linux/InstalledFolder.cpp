#include "core/host/InstalledFolder.h"

#include "core/host/UserFolders.h"

#include <filesystem>

namespace spacemint {

std::string InstalledFolder::program() {
  std::error_code failed;
  return std::filesystem::read_symlink("/proc/self/exe", failed).string();
}

std::string InstalledFolder::shared(const char* relative) {
  const std::filesystem::path program = InstalledFolder::program();
  return (program.parent_path().parent_path() / "share" / relative).string();
}

std::string InstalledFolder::translations() {
  const auto other = UserFolders::environment("SPACEMINT_LOCALE_DIR");
  return other && !other->empty() ? *other : shared("locale");
}

}  // namespace spacemint
