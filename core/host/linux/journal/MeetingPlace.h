#pragma once

#include "core/base/Error.h"
#include "core/host/FileHandle.h"
#include "core/host/FileLock.h"

#include <expected>
#include <string>

namespace spacemint {

/// Where a recorder and those who ask it find each other: a socket and a lock in a folder that is closed to
/// other users, named after the root that is recorded.
class MeetingPlace {
 public:
  /// `folder` empty for "spacemint" in `UserFolders::runtime`.
  static std::expected<MeetingPlace, Error> forRoot(const std::string& root, std::string folder = {});

  /// The right to record the root, for one process at a time; makes the folder where it is missing. Fails
  /// with EBUSY where somebody else has it, and with EPERM where others may change the folder.
  std::expected<FileLock, Error> lock() const;
  /// A socket that takes connections, in the place of one left by a recorder that died. Only for whoever
  /// holds the lock.
  std::expected<FileHandle, Error> listen() const;
  /// A connection to the recorder of the root (ENOENT, ECONNREFUSED where there is none).
  std::expected<FileHandle, Error> connect() const;
  /// Takes the socket away; the lock's file stays.
  void leave() const;

 private:
  MeetingPlace(std::string folder, std::string name) : folder_(std::move(folder)), name_(std::move(name)) {}

  std::string folder_;
  std::string name_;
};

/// Whether the process at the other end of a connection is this user's (`SO_PEERCRED`).
bool isOwnPeer(const FileHandle& connection);

}  // namespace spacemint
