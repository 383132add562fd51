#include "core/base/AsciiText.h"
#include "core/base/PercentEncoding.h"
#include "core/host/TrashCan.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/host/linux/ItemPlace.h"
#include "core/host/linux/MountTable.h"
#include "core/host/linux/RemovalReason.h"
#include "core/host/linux/TrashFolder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <ctime>
#include <string_view>

namespace spacemint {

namespace {

constexpr std::string_view infoSuffix = ".trashinfo";

// The item to move, held open.
struct Item {
  HeldTarget held;
  /// The absolute path of the item's folder, without symbolic links.
  std::string parentPath;

  const Mounted& mount() const { return held.item.facts.mounted; }
  std::string path() const { return (parentPath == "/" ? "" : parentPath) + "/" + held.name; }
};

// True if the Trash at `path` is on this mount, or would be if it were created. Creates nothing.
bool isOn(std::string path, const Mounted& mount) {
  while (true) {
    const FileHandle folder{open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
    if (folder || path.size() <= 1) {
      const auto facts = factsOf(folder);
      return facts && facts->mounted == mount;
    }
    path.resize(std::max<std::size_t>(path.rfind('/'), 1));
  }
}

std::expected<TrashFolder, Error> trashFor(const Item& item) {
  const std::string home = UserFolders::data() + "/Trash";
  if (isOn(home, item.mount())) {
    auto trash = TrashFolder::home(home);
    if (!trash || trash->mounted == item.mount()) return trash;
  }
  const auto top = mountPointOf(item.parentPath);
  if (!top) return std::unexpected(systemError(item.path(), EXDEV));
  auto trash = TrashFolder::onVolume(*top);
  if (trash && trash->mounted != item.mount()) return std::unexpected(systemError(item.path(), EXDEV));
  return trash;
}

std::string localTime() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
  return {text.data(), length};
}

std::string infoOf(const Item& item, const TrashFolder& trash) {
  std::string path = item.path();
  if (!trash.top.empty() && path.starts_with(trash.top)) path.erase(0, trash.top.size());
  return "[Trash Info]\nPath=" + percentEncoded(path) + "\nDeletionDate=" + localTime() + "\n";
}

// The name for the given attempt, shortened at a character boundary so that the name with `infoSuffix` also
// fits.
std::string nameInTrash(std::string name, int attempt) {
  const std::string number = attempt == 1 ? "" : " " + std::to_string(attempt);
  std::size_t length = std::min(name.size(), NAME_MAX - infoSuffix.size() - number.size());
  if (length < name.size()) {
    while (length > 1 && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80U) --length;
  }
  return name.substr(0, length) + number;
}

// Creates the info file of an item. Returns 0 or an errno; EEXIST if the name is taken.
int writeInfo(const TrashFolder& trash, const std::string& name, const std::string& text) {
  const FileHandle file{
      openat(trash.info.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
  if (!file) return errno;
  int failure = 0;
  const ssize_t count = write(file.get(), text.data(), text.size());
  if (count < 0) failure = errno;
  if (failure == 0 && static_cast<std::size_t>(count) != text.size()) failure = ENOSPC;
  // Flush: an item without its info file could not be restored.
  if (failure == 0 && fsync(file.get()) != 0) failure = errno;
  if (failure != 0) unlinkat(trash.info.get(), name.c_str(), 0);
  return failure;
}

// Moves the item into the Trash. Never replaces an item in the Trash: returns EEXIST.
int moveInto(const Item& item, const TrashFolder& trash, const std::string& name) {
  const int to = trash.files.get();
  if (renameat2(item.held.parent.get(), item.held.name.c_str(), to, name.c_str(), RENAME_NOREPLACE) == 0)
    return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // Network file systems do not support RENAME_NOREPLACE. Checking first is safe: we created the info file of
  // this name, so no other program uses the name.
  if (factsOf(trash.files, name.c_str())) return EEXIST;
  return renameat(item.held.parent.get(), item.held.name.c_str(), to, name.c_str()) == 0 ? 0 : errno;
}

bool hasArrived(const Item& item, const TrashFolder& trash, const std::string& name) {
  const auto facts = factsOf(trash.files, name.c_str());
  return facts && facts->identity() == item.held.item.facts.identity();
}

int moveAs(const std::string& name, const Item& item, const TrashFolder& trash) {
  const std::string info = name + std::string{infoSuffix};
  if (const int failure = writeInfo(trash, info, infoOf(item, trash)); failure != 0) return failure;
  int failure = moveInto(item, trash, name);
  if (failure == 0 && !hasArrived(item, trash, name)) {
    // The item was replaced just before the rename, so another item was moved: move that item back. If it
    // must stay in the Trash, it keeps its info file, so that the user can restore it.
    failure = ESTALE;
    if (renameat2(trash.files.get(), name.c_str(), item.held.parent.get(), item.held.name.c_str(),
                  RENAME_NOREPLACE) != 0) {
      return failure;
    }
  }
  if (failure != 0) unlinkat(trash.info.get(), info.c_str(), 0);
  return failure;
}

// The Trash of freedesktop.org, which all file managers use: the Trash in the user's data
// folder for items on the same mount, otherwise a Trash in the top folder of the item's volume.
//
// Renames and never copies: fails with EXDEV if the item's volume can have no Trash. Fails with EINVAL for a
// Trash itself, an item in a Trash, and a folder that contains a Trash.
class XdgTrash final : public TrashCan {
 public:
  std::expected<std::string, RemovalFailure> move(const RemovalTarget& target) override {
    auto held = holdTarget(target);
    if (!held) return std::unexpected(held.error());
    std::string parentPath = realPathOf(held->parent);
    const Item item{std::move(*held), std::move(parentPath)};
    const auto trash = trashFor(item);
    if (!trash) return std::unexpected(RemovalFailure{trash.error(), target.path});
    const std::string files = realPathOf(trash->files);
    const std::string trashPath = files.substr(0, files.rfind('/'));
    if (isAtOrBelow(trashPath, item.path()) || isAtOrBelow(item.path(), trashPath)) {
      return removalFailure(target.path, EINVAL);
    }
    for (int attempt = 1;; ++attempt) {
      const std::string name = nameInTrash(item.held.name, attempt);
      const int failure = moveAs(name, item, *trash);
      if (failure == 0) return trash->path + "/files/" + name;
      if (failure != EEXIST || attempt == INT_MAX) {
        return removalFailure(target.path, failure, item.held.parent, item.held.name);
      }
    }
  }
};

}  // namespace

std::unique_ptr<TrashCan> hostTrash() {
  return std::make_unique<XdgTrash>();
}

}  // namespace spacemint
