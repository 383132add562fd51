#include "core/host/ProtectedPlaces.h"

#include "core/host/FileHandle.h"
#include "core/host/UserFolders.h"

#include <fcntl.h>

namespace spacemint {

// In a sandbox, the system's log folder is hidden and the home folder lacks the user's settings.
std::vector<std::string> protectedPlaces() {
  return {"/var/log", UserFolders::home() + "/.config"};
}

bool canOpen(const std::string& path) {
  return static_cast<bool>(FileHandle{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)});
}

}  // namespace spacemint
