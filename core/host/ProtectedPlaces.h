#pragma once

#include <string>
#include <vector>

namespace spacemint {

/// Paths that a program can open only if it may read all of the user's files, in the order in which to try
/// them.
std::vector<std::string> protectedPlaces();

/// True if `path` can be opened for reading. Reads nothing and does not wait for pipes. Any thread.
bool canOpen(const std::string& path);

}  // namespace spacemint
