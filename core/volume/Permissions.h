#pragma once

#include <span>
#include <string>

namespace spacemint {

/// What the system lets this program see.
namespace Permissions {

/// True when the program may see all of the user's files: one of the host's protected places can be opened.
/// Computed afresh at every call and cheap.
bool hasFullDiskAccess();

/// True when one of `places` can be opened.
bool canOpenOne(std::span<const std::string> places);

}  // namespace Permissions

}  // namespace spacemint
