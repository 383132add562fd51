#pragma once

#include <string>

namespace spacemint {

/// The paths of files that are installed with the program: PREFIX/share beside PREFIX/bin, where the running
/// program is. A build tree has the same folders, so that a program that is not installed finds the files of
/// its build. Any thread.
namespace InstalledFiles {

/// The property list with the product's name and version. The environment variable SPACEMINT_INFO overrides
/// it.
std::string information();

/// The running program itself.
std::string program();

/// The application's desktop entry. It exists only in an installation.
std::string desktopEntry();

/// The page that explains how to give and take rights by hand.
std::string permissionsHelp();

}  // namespace InstalledFiles

}  // namespace spacemint
