#pragma once

#include <string>
#include <vector>

namespace spacemint {

/// Places that only a program with the right to see all of the user's files can open, in the order in which
/// they are tried.
std::vector<std::string> protectedPlaces();

/// True when `path` can be opened for reading; it is closed at once and nothing is read.
bool canOpen(const std::string& path);

}  // namespace spacemint
