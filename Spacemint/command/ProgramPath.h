#pragma once

#include <string>
#include <vector>

namespace spacemint {

/// Where programs may be installed: the home folder, and the root of the file system that holds everything
/// that is not in it (empty for the real one).
struct ProgramPlaces {
  std::string home;
  std::string systemRoot = {};
};

/// The folders that are searched for programs, in order: where developer tools are usually installed, then
/// the versions of Node under the home folder, newest first, then the system's own. Folders need not exist.
std::vector<std::string> programPath(const ProgramPlaces& places);

}  // namespace spacemint
