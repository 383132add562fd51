#pragma once

#include "core/host/FileHandle.h"

#include <string>

namespace spacemint {

/// Opens a folder for listing, if possible without changing its access time. Follows symbolic links. `parent`
/// may be AT_FDCWD. On failure the handle is empty and errno is set (`openat`). Any thread.
FileHandle openFolder(int parent, const char* name);
/// Like `openFolder`, but fails if `name` is a symbolic link.
FileHandle openFolderItself(int parent, const char* name);

/// Starts the listing of an open folder again. Some file systems list what existed when the folder was
/// opened, which was before it was watched.
void rewindFolder(const FileHandle& folder);

/// A path under /proc that leads to the open folder itself, whatever its own path is now.
std::string pathThroughHandle(const FileHandle& folder);

}  // namespace spacemint
