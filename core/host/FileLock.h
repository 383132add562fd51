#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"

#include <expected>
#include <string>

namespace spacemint {

/// The right to change what several processes of one user change together, held until it is destroyed or its
/// process dies. Advisory: it binds only those that take it.
class FileLock {
 public:
  /// Waits for the lock on the file at `path`, which is made (0600) where it is missing and never removed.
  static std::expected<FileLock, Error> take(const std::string& path);
  /// Takes the lock or fails with EWOULDBLOCK where somebody else has it.
  static std::expected<FileLock, Error> takeAtOnce(const std::string& path);

 private:
  static std::expected<FileLock, Error> takeAs(const std::string& path, int operation);
  explicit FileLock(FileHandle file) : file_(std::move(file)) {}

  FileHandle file_;
};

}  // namespace spacemint
