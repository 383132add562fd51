#pragma once

#include <string>

namespace spacemint {

/// The paths of the application's files in the installed folder. Any thread.
namespace InstalledFiles {

/// The property list with the product's name and version. The environment variable SPACEMINT_INFO overrides
/// it.
std::string information();

/// The application's desktop entry. It exists only in an installation.
std::string desktopEntry();

/// The page that explains how to give and take rights by hand.
std::string permissionsHelp();

}  // namespace InstalledFiles

}  // namespace spacemint
