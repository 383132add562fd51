#include "spacemintctl/ScanRoot.h"

#include "core/host/UserFolders.h"
#include "core/tree/Paths.h"

#include <filesystem>

namespace spacemint::ctl {

std::expected<std::string, Error> scanRoot(const std::string& path) {
  if (path.empty()) return UserFolders::home();
  if (path.starts_with('/')) return std::string{Paths::withoutTrailingSlash(path)};
  std::error_code failure;
  const std::string absolute = std::filesystem::canonical(path, failure);
  if (failure) return std::unexpected(systemError(path, failure.value()));
  return absolute;
}

}  // namespace spacemint::ctl
