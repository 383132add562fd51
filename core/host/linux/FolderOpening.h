#pragma once

#include "core/host/FileHandle.h"

#include <string>

namespace spacemint {

/// Opens a folder for listing, if possible without changing its access time. Follows symbolic links. `parent`
/// may be AT_FDCWD. On failure the handle is empty and errno is set (`openat`). Any thread.
FileHandle openFolder(int parent, const char* name);
/// Like `openFolder`, but fails if `name` is a symbolic link.
FileHandle openFolderItself(int parent, const char* name);

/// Restarts the listing of an open folder. Call it after starting to watch the folder: some file systems list
/// the entries that existed when the folder was opened.
void rewindFolder(const FileHandle& folder);

/// A path below /proc that refers to the open folder itself, also if the folder was moved.
std::string pathThroughHandle(const FileHandle& folder);

}  // namespace spacemint
