#pragma once

#include "core/host/FileHandle.h"

#include <string>

namespace spacemint {

/// Opens a folder for listing, where it may without setting its access time; `parent` may be AT_FDCWD. On
/// failure the handle is empty and errno says why (`openat`).
FileHandle openFolder(int parent, const char* name);
/// The same for a name that must not be a symbolic link.
FileHandle openFolderItself(int parent, const char* name);

/// Lists the folder from its beginning. Some file systems list only what was there when it was opened, which
/// was before it was watched.
void rewindFolder(const FileHandle& folder);

/// The way to an open handle through /proc, which leads to that very folder whatever its path is by now.
std::string pathThroughHandle(const FileHandle& folder);

}  // namespace spacemint
