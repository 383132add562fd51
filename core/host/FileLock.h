#pragma once

#include "core/base/Error.h"

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

  FileLock(FileLock&& other) noexcept;
  FileLock& operator=(FileLock&& other) noexcept;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

 private:
  static std::expected<FileLock, Error> takeAs(const std::string& path, int operation);
  explicit FileLock(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
};

}  // namespace spacemint
