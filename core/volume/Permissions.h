#pragma once

#include <span>
#include <string>

namespace spacemint {

/// Which files this program may read.
namespace Permissions {

/// True if the program may read all of the user's files, that is, if it can open one of the host's protected
/// places. Not cached; cheap. Any thread.
bool hasFullDiskAccess();

/// True if the program can open at least one of `places`.
bool canOpenOne(std::span<const std::string> places);

}  // namespace Permissions

}  // namespace spacemint
