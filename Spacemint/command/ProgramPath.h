#pragma once

#include <string>
#include <vector>

namespace spacemint {

/// Where programs may be installed: the home folder, and the root folder for paths outside the home folder
/// (empty for the real root; tests use another folder).
struct ProgramPlaces {
  std::string home;
  std::string systemRoot = {};
};

/// The folders in which to look for programs, in this order: the usual folders of development tools, the
/// versions of Node in the home folder (newest first), and the system's folders. The folders need not exist.
/// Reads files below /etc; any thread.
std::vector<std::string> programPath(const ProgramPlaces& places);

}  // namespace spacemint
