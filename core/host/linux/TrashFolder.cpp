#include "core/host/linux/TrashFolder.h"

#include "core/host/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace spacemint {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Opens a folder in `parent` that belongs to the user; creates the folder if it is missing.
FileHandle ownFolder(const FileHandle& parent, const std::string& name) {
  mkdirat(parent.get(), name.c_str(), 0700);
  FileHandle folder{openat(parent.get(), name.c_str(), folderFlags)};
  struct stat status {};
  if (!folder || fstat(folder.get(), &status) != 0) return {};
  if (status.st_uid != geteuid()) {
    errno = EPERM;
    return {};
  }
  return folder;
}

std::expected<TrashFolder, Error> open(const FileHandle& trash, const std::string& path) {
  if (!trash) return std::unexpected(systemError(path, errno));
  TrashFolder folder{.path = path};
  folder.files = ownFolder(trash, "files");
  if (!folder.files) return std::unexpected(systemError(path + "/files", errno));
  folder.info = ownFolder(trash, "info");
  if (!folder.info) return std::unexpected(systemError(path + "/info", errno));
  const auto facts = factsOf(folder.files);
  if (!facts) return std::unexpected(systemError(path, facts.error()));
  folder.mounted = facts->mounted;
  return folder;
}

// The Trash shared by all users. It must have the sticky bit, so that a user cannot replace another user's
// folder.
FileHandle sharedTrash(const FileHandle& top) {
  FileHandle folder{openat(top.get(), ".Trash", folderFlags)};
  struct stat status {};
  if (!folder || fstat(folder.get(), &status) != 0 || (status.st_mode & S_ISVTX) == 0) return {};
  return folder;
}

}  // namespace

std::expected<TrashFolder, Error> TrashFolder::home(const std::string& path) {
  if (auto made = createPrivateFolders(path); !made) return std::unexpected(made.error());
  // Follow a link here: the user may have replaced the Trash by a link.
  return open(FileHandle{::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}, path);
}

std::expected<TrashFolder, Error> TrashFolder::onVolume(const std::string& top) {
  const FileHandle volume{::open(top.c_str(), folderFlags)};
  if (!volume) return std::unexpected(systemError(top, errno));
  const std::string prefix = top.ends_with('/') ? top : top + "/";
  const std::string user = std::to_string(geteuid());

  std::expected<TrashFolder, Error> trash = std::unexpected(systemError(top, ENOENT));
  if (const FileHandle shared = sharedTrash(volume)) {
    trash = open(ownFolder(shared, user), prefix + ".Trash/" + user);
  }
  if (!trash) trash = open(ownFolder(volume, ".Trash-" + user), prefix + ".Trash-" + user);
  if (trash) trash->top = prefix;
  return trash;
}

}  // namespace spacemint
