#pragma once

#include "core/base/Error.h"

#include <expected>
#include <functional>
#include <string>

namespace spacemint {

/// Operations on whole files and folders, as functions, so that callers can pass their own.
struct FileManager {
  /// True if there is a file, a folder or a symbolic link (also a broken link) at the path, or an item that
  /// this user may not access.
  std::function<bool(const std::string& path)> exists;

  /// Renames a file or a folder atomically. Never replaces an item: fails with EEXIST if `to` exists. Never
  /// copies: fails with EXDEV between file systems.
  std::function<std::expected<void, Error>(const std::string& from, const std::string& to)> move;

  /// The operations of the operating system.
  static FileManager host();
};

}  // namespace spacemint
