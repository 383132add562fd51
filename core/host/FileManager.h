#pragma once

#include "core/base/Error.h"

#include <expected>
#include <functional>
#include <string>

namespace spacemint {

/// The operations on whole files and folders that a caller hands to what needs them.
struct FileManager {
  /// Whether something stands at the path: a file, a folder, a link wherever it leads, or what this user may
  /// not look at.
  std::function<bool(const std::string& path)> exists;

  /// Renames a file or a folder with all that is in it, in one step. Never replaces: fails with EEXIST where
  /// something stands at `to` already. Fails with EXDEV across file systems; nothing is copied.
  std::function<std::expected<void, Error>(const std::string& from, const std::string& to)> move;

  /// The operations of this system.
  static FileManager host();
};

}  // namespace spacemint
