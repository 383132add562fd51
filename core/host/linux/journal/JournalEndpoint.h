#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"
#include "core/host/FileLock.h"

#include <expected>
#include <string>

namespace spacemint {

/// The socket and the lock file of the recorder of one root. They lie in a folder that other users cannot
/// enter. Any thread; nothing blocks.
class JournalEndpoint {
 public:
  /// An empty `folder` means "spacemint" in `UserFolders::runtime`; fails with ENOENT when there is none.
  static std::expected<JournalEndpoint, Error> forRoot(const std::string& root, std::string folder = {});

  /// Takes the right to record the root, which one process at a time can have. Creates the folder. Fails with
  /// EBUSY when another process records the root, and with EPERM when other users can access the folder.
  std::expected<FileLock, Error> lock() const;
  /// A listening socket. Replaces the socket of a recorder that was killed. Call it only with the lock held.
  std::expected<FileHandle, Error> listen() const;
  /// A non-blocking connection to the recorder of the root. Fails with ENOENT or ECONNREFUSED when there is
  /// no recorder, and with EPERM when it belongs to another user.
  std::expected<FileHandle, Error> connect() const;
  /// Removes the socket. The lock file stays.
  void remove() const;

 private:
  JournalEndpoint(std::string folder, std::string name)
      : folder_(std::move(folder)),
        name_(std::move(name)) {}

  std::string folder_;
  std::string name_;
};

/// Whether the process at the other end of the connection belongs to this user (`SO_PEERCRED`).
bool isOwnPeer(const FileHandle& connection);

}  // namespace spacemint
