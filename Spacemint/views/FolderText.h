#pragma once

#include "Spacemint/views/UiHost.h"

#include <string>
#include <string_view>

namespace spacemint {

/// The names of folders and the texts about small items, for several tabs.
namespace FolderText {

/// The name of a folder in a scan of `root`: "Home folder", "Entire disk", or its last component; the path of
/// `root` itself in a scan of another computer, whose home is not known (empty).
std::string title(std::string_view path, std::string_view root, std::string_view home);

/// Where the item is: "~/Videos", or "In the Trash".
std::string place(const std::string& path, const UiHost& host);

/// The title of the row for what is too small to be listed by itself, below `minimum`.
std::string smallItems(bool hasChildren, Bytes minimum, const std::string& locale);

}  // namespace FolderText

}  // namespace spacemint
