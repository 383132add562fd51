#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"
#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <string>

namespace spacemint {

/// One trash of the freedesktop.org kind, held open: what lies in it is in `files`, and where each thing came
/// from is in `info`.
struct TrashFolder {
  std::string path;
  FileHandle files;
  FileHandle info;
  Mounted mounted;
  /// The folder from which the noted paths count; empty where they are absolute.
  std::string top;

  /// The user's own at `path`, made with all above it (0700) where it is missing.
  static std::expected<TrashFolder, Error> home(const std::string& path);

  /// The user's on the volume that is mounted at `top`: in a `.Trash` that the administrator made for all,
  /// where that is safe, else one beside it, made where it is missing. Links are not followed, and what
  /// belongs to somebody else is not used.
  static std::expected<TrashFolder, Error> onVolume(const std::string& top);
};

}  // namespace spacemint
