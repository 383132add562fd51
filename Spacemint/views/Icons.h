#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// The symbols of files and folders.
namespace Icons {

/// The symbol for a folder or a file with this name. Reads the system's registry of file types, but not the
/// item itself.
std::string_view symbol(std::string_view name, bool isDirectory);

}  // namespace Icons

}  // namespace spacemint
