#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"

#include <expected>
#include <string>

namespace spacemint {

/// An exclusive lock between processes of one user, held until the object is destroyed or the process dies.
/// The lock is advisory: processes that do not take the lock are not stopped.
class FileLock {
 public:
  /// Locks the file at `path`; waits while another process holds the lock. Creates the file (0600) if it is
  /// missing and never removes it.
  static std::expected<FileLock, Error> take(const std::string& path);
  /// Locks the file at `path`, or fails with EWOULDBLOCK if another process holds the lock.
  static std::expected<FileLock, Error> takeAtOnce(const std::string& path);

 private:
  static std::expected<FileLock, Error> takeAs(const std::string& path, int operation);
  explicit FileLock(FileHandle file) : file_(std::move(file)) {}

  FileHandle file_;
};

}  // namespace spacemint
