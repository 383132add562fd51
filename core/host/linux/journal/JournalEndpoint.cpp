#include "core/host/linux/journal/JournalEndpoint.h"

#include "core/host/AtomicFile.h"
#include "core/host/UserFolders.h"
#include "core/host/linux/FolderOpening.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

namespace spacemint {

namespace {

// A short name for a root of any length: its FNV-1a hash. If two roots had the same hash, only one of them
// could be recorded at a time; the request names the root, so no answer would be wrong.
std::string shortName(const std::string& root) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : root) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  std::string name(16, '0');
  for (char& digit : name) {
    digit = "0123456789abcdef"[hash >> 60U];
    hash <<= 4U;
  }
  return "journal-" + name;
}

FileHandle newSocket() {
  return FileHandle{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
}

// The path leads through the open folder, because an address holds only about a hundred bytes.
sockaddr_un addressIn(const FileHandle& folder, const std::string& name) {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  (pathThroughHandle(folder) + "/" + name).copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

FileHandle openEndpointFolder(const std::string& folder) {
  return FileHandle{open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
}

}  // namespace

std::expected<JournalEndpoint, Error> JournalEndpoint::forRoot(const std::string& root, std::string folder) {
  if (folder.empty()) {
    const std::string runtime = UserFolders::runtime();
    if (runtime.empty()) return std::unexpected(systemError("XDG_RUNTIME_DIR", ENOENT));
    folder = runtime + "/spacemint";
  }
  return JournalEndpoint{std::move(folder), shortName(root)};
}

std::expected<FileLock, Error> JournalEndpoint::lock() const {
  if (auto made = createPrivateFolders(folder_); !made) return std::unexpected(std::move(made).error());
  struct stat status {};
  if (stat(folder_.c_str(), &status) != 0) return std::unexpected(systemError(folder_, errno));
  if (status.st_uid != geteuid() || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return std::unexpected(systemError(folder_, EPERM));
  }
  auto lock = FileLock::takeAtOnce(folder_ + "/" + name_ + ".lock");
  if (!lock && lock.error().isSystem(EWOULDBLOCK)) return std::unexpected(systemError(folder_, EBUSY));
  return lock;
}

std::expected<FileHandle, Error> JournalEndpoint::listen() const {
  remove();
  const FileHandle folder = openEndpointFolder(folder_);
  FileHandle listener = newSocket();
  const sockaddr_un address = addressIn(folder, name_ + ".sock");
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (!folder || !listener || bind(listener.get(), generic, sizeof address) != 0 ||
      ::listen(listener.get(), SOMAXCONN) != 0) {
    return std::unexpected(systemError(folder_, errno));
  }
  return listener;
}

std::expected<FileHandle, Error> JournalEndpoint::connect() const {
  const FileHandle folder = openEndpointFolder(folder_);
  FileHandle connection = newSocket();
  const sockaddr_un address = addressIn(folder, name_ + ".sock");
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (!folder || !connection || ::connect(connection.get(), generic, sizeof address) != 0) {
    return std::unexpected(systemError(folder_, errno));
  }
  if (!isOwnPeer(connection)) return std::unexpected(systemError(folder_, EPERM));
  return connection;
}

void JournalEndpoint::remove() const {
  unlink((folder_ + "/" + name_ + ".sock").c_str());
}

bool isOwnPeer(const FileHandle& connection) {
  ucred peer{};
  socklen_t length = sizeof peer;
  return getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == geteuid();
}

}  // namespace spacemint
