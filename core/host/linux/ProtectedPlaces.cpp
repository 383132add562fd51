#include "core/host/ProtectedPlaces.h"

#include "core/host/FileHandle.h"
#include "core/host/UserFolders.h"

#include <fcntl.h>

namespace spacemint {

// A sandbox hides the system's log folder and gives the program a home without the user's settings.
std::vector<std::string> protectedPlaces() {
  return {"/var/log", UserFolders::home() + "/.config"};
}

bool canOpen(const std::string& path) {
  return static_cast<bool>(FileHandle{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)});
}

}  // namespace spacemint
