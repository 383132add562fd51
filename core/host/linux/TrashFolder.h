#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"
#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <string>

namespace spacemint {

/// A Trash folder in the layout of freedesktop.org, held open. `files` contains the items, `info` a file for
/// each item with its original path.
struct TrashFolder {
  std::string path;
  FileHandle files;
  FileHandle info;
  Mounted mounted;
  /// The folder that original paths are relative to; empty if they are absolute.
  std::string top;

  /// Opens the user's Trash at `path`; creates it and missing folders above it (0700). Blocks; any thread.
  static std::expected<TrashFolder, Error> home(const std::string& path);

  /// Opens the user's Trash on the volume mounted at `top`: a folder in `.Trash` if the administrator created
  /// that with the sticky bit; otherwise `.Trash-UID`. Creates missing folders. Does not follow links and
  /// does not use folders of other users. Blocks; any thread.
  static std::expected<TrashFolder, Error> onVolume(const std::string& top);
};

}  // namespace spacemint
