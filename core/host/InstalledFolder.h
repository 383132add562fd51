#pragma once

#include <string>

namespace spacemint {

/// Where the files are that are installed with the program: PREFIX/share beside PREFIX/bin, where the running
/// program is. A build tree has the same folders, so that a program that is not installed finds the files of
/// its build. Any thread.
namespace InstalledFolder {

/// The path of the running program.
std::string program();

/// The path of a file or folder in PREFIX/share.
std::string shared(const char* relative);

/// The folder of the catalogues of translations. The environment variable SPACEMINT_LOCALE_DIR overrides it.
std::string translations();

}  // namespace InstalledFolder

}  // namespace spacemint
