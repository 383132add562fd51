#include "Spacemint/desktop/linux/XdgTrash.h"

#include "Spacemint/desktop/linux/PercentEncoding.h"
#include "Spacemint/desktop/linux/TrashFolder.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"

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

// What is to be moved: a name in an open folder.
struct Item {
  FileHandle parent;
  std::string name;
  /// The folder's absolute path without links.
  std::string parentPath;
  HandleFacts facts;
  Mounted parentMount;

  std::string path() const { return (parentPath == "/" ? "" : parentPath) + "/" + name; }
};

std::expected<Item, Error> find(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  const std::size_t slash = path.rfind('/');
  const std::string name{path.substr(slash + 1)};
  if (!path.starts_with('/') || name.empty() || name == "." || name == "..") {
    return std::unexpected(systemError(path, EINVAL));
  }
  Item item{.name = name};
  const std::string parent{path.substr(0, slash + 1)};
  item.parent = FileHandle{open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  if (!item.parent) return std::unexpected(systemError(parent, errno));
  const auto facts = factsOf(item.parent, name.c_str());
  const auto parentFacts = factsOf(item.parent);
  if (!facts) return std::unexpected(systemError(path, facts.error()));
  if (!parentFacts) return std::unexpected(systemError(parent, parentFacts.error()));
  if (facts->mounted.mountId != parentFacts->mounted.mountId) {
    return std::unexpected(systemError(path, EBUSY));
  }
  item.facts = *facts;
  item.parentMount = parentFacts->mounted;
  item.parentPath = realPathOf(item.parent);
  return item;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

// Without making anything: whether the trash at `path` is, or would be, on a mount.
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
  if (isOn(home, item.parentMount)) {
    auto trash = TrashFolder::home(home);
    if (!trash || trash->mounted == item.parentMount) return trash;
  }
  const auto top = mountPointOf(item.parentPath);
  if (!top) return std::unexpected(systemError(item.path(), EXDEV));
  auto trash = TrashFolder::onVolume(*top);
  if (trash && trash->mounted != item.parentMount) return std::unexpected(systemError(item.path(), EXDEV));
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

// The name for the nth try, cut at the end of a character so that the name of the information fits too.
std::string nameInTrash(std::string name, int attempt) {
  const std::string number = attempt == 1 ? "" : " " + std::to_string(attempt);
  std::size_t length = std::min(name.size(), NAME_MAX - infoSuffix.size() - number.size());
  if (length < name.size()) {
    while (length > 1 && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80U) --length;
  }
  return name.substr(0, length) + number;
}

// Creates the information of a thing in the trash; 0 or an errno, EEXIST where the name is taken.
int writeInfo(const TrashFolder& trash, const std::string& name, const std::string& text) {
  const FileHandle file{
      openat(trash.info.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
  if (!file) return errno;
  int failure = 0;
  const ssize_t count = write(file.get(), text.data(), text.size());
  if (count < 0) failure = errno;
  if (failure == 0 && static_cast<std::size_t>(count) != text.size()) failure = ENOSPC;
  // A thing whose place nobody knows any more would be lost.
  if (failure == 0 && fsync(file.get()) != 0) failure = errno;
  if (failure != 0) unlinkat(trash.info.get(), name.c_str(), 0);
  return failure;
}

// Never replaces what lies in the trash already.
int rename(const Item& item, const TrashFolder& trash, const std::string& name) {
  const int to = trash.files.get();
  if (renameat2(item.parent.get(), item.name.c_str(), to, name.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // Network file systems know no such flag. The information is ours alone, so nobody else takes this name.
  if (factsOf(trash.files, name.c_str())) return EEXIST;
  return renameat(item.parent.get(), item.name.c_str(), to, name.c_str()) == 0 ? 0 : errno;
}

bool hasArrived(const Item& item, const TrashFolder& trash, const std::string& name) {
  const auto facts = factsOf(trash.files, name.c_str());
  return facts && facts->identity() == item.facts.identity();
}

int moveAs(const std::string& name, const Item& item, const TrashFolder& trash) {
  const std::string info = name + std::string{infoSuffix};
  if (const int failure = writeInfo(trash, info, infoOf(item, trash)); failure != 0) return failure;
  if (const int failure = rename(item, trash, name); failure != 0) {
    unlinkat(trash.info.get(), info.c_str(), 0);
    return failure;
  }
  return hasArrived(item, trash, name) ? 0 : ESTALE;
}

}  // namespace

std::expected<std::string, Error> XdgTrash::move(const std::string& path) {
  const auto item = find(path);
  if (!item) return std::unexpected(item.error());
  const auto trash = trashFor(*item);
  if (!trash) return std::unexpected(trash.error());
  const std::string files = realPathOf(trash->files);
  const std::string trashPath = files.substr(0, files.rfind('/'));
  if (isAtOrBelow(trashPath, item->path()) || isAtOrBelow(item->path(), trashPath)) {
    return std::unexpected(systemError(path, EINVAL));
  }
  for (int attempt = 1;; ++attempt) {
    const std::string name = nameInTrash(item->name, attempt);
    const int failure = moveAs(name, *item, *trash);
    if (failure == 0) return trash->path + "/files/" + name;
    if (failure != EEXIST || attempt == INT_MAX) return std::unexpected(systemError(path, failure));
  }
}

}  // namespace spacemint
