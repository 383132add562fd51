#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// Which symbol stands for what.
namespace Icons {

/// The symbol of a folder or file by its name alone; nothing is read of the disk but the system's registry of
/// file types.
std::string_view symbol(std::string_view name, bool isDirectory);

}  // namespace Icons

}  // namespace spacemint
