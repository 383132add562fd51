#pragma once

#include <string>

namespace spacemint {

/// Files that are installed with the program, found from where the running program is: PREFIX/share beside
/// PREFIX/bin. A build tree has the same shape, so a program that is not installed finds those of its build.
namespace InstalledFiles {

/// The property list with the product's name and version. SPACEMINT_INFO in the environment names another.
std::string information();

/// The running program itself.
std::string program();

/// The application's entry for menus, which only an installation has.
std::string desktopEntry();

/// The page that tells how to give and take rights by hand.
std::string permissionsHelp();

}  // namespace InstalledFiles

}  // namespace spacemint
