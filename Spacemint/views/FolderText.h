#pragma once

#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>

namespace spacemint {

/// What folders are called in the tab that lists them.
namespace FolderText {

inline constexpr std::string_view empty = "Nothing is in here.";

/// A folder of a scan of `root`.
std::string title(std::string_view path, std::string_view root, std::string_view home);

/// What takes the rest of a folder beside its listed children, if it has some.
std::string smallItems(bool hasChildren, const std::string& locale);

/// "No files over 20 MB."
std::string noLargeFiles(const std::string& locale);

}  // namespace FolderText

}  // namespace spacemint
