#include "core/host/linux/ItemPlace.h"

#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/host/linux/RemovalReason.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace spacemint {

namespace {

constexpr int wayFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

std::vector<std::string> namesOf(std::string_view path) {
  std::vector<std::string> names;
  for (const std::string_view name : pieces(path, '/')) {
    if (name != ".") names.emplace_back(name);
  }
  return names;
}

bool isPlain(const std::string& path, const std::vector<std::string>& names) {
  return path.starts_with('/') && !names.empty() && std::ranges::find(names, "..") == names.end() &&
         path.find('\0') == std::string::npos;
}

// The number of leading names that spell `start`, the folder up to which links are followed; 0 if the target
// is not below `start`.
std::size_t lengthOfStart(const std::vector<std::string>& names, const std::string& start) {
  const auto startNames = namesOf(start);
  const bool leads = start.starts_with('/') && startNames.size() < names.size() &&
                     std::equal(startNames.begin(), startNames.end(), names.begin());
  return leads ? startNames.size() : 0;
}

std::unexpected<RemovalFailure> notOpened(const std::string& path, const FileHandle& folder,
                                          const std::string& name, int errorNumber) {
  const auto facts = factsOf(folder, name.c_str());
  if (!facts || !S_ISLNK(facts->mode)) return removalFailure(path, errorNumber, folder, name);
  auto failure = removalFailure(path, ELOOP);
  failure.error().error.message = i18n("{item} has a symbolic link on the way to it");
  return failure;
}

// Opens the folder that contains the target. `names` are the components of the target's path.
std::expected<FileHandle, RemovalFailure> parentOf(const RemovalTarget& target,
                                                   const std::vector<std::string>& names) {
  const std::size_t first = lengthOfStart(names, target.linksAllowedUpTo);
  const std::string& start = first == 0 ? "/" : target.linksAllowedUpTo;
  FileHandle folder{open(start.c_str(), wayFlags)};
  if (!folder) return removalFailure(start, errno);
  for (std::size_t i = first; i + 1 < names.size(); ++i) {
    FileHandle next{openat(folder.get(), names[i].c_str(), wayFlags | O_NOFOLLOW)};
    if (!next) return notOpened(target.path, folder, names[i], errno);
    folder = std::move(next);
  }
  return folder;
}

}  // namespace

std::expected<HeldItem, RemovalFailure> holdEntry(const FileHandle& folder, const std::string& name,
                                                  const std::string& path) {
  FileHandle handle{openat(folder.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)};
  if (!handle) return removalFailure(path, errno, folder, name);
  const auto facts = factsOf(handle);
  const auto folderFacts = factsOf(folder);
  if (!facts || !folderFacts) return removalFailure(path, facts ? folderFacts.error() : facts.error());
  if (facts->mounted != folderFacts->mounted) return removalFailure(path, EXDEV);
  return HeldItem{std::move(handle), *facts};
}

std::expected<HeldTarget, RemovalFailure> holdTarget(const RemovalTarget& target) {
  const auto names = namesOf(target.path);
  if (!isPlain(target.path, names)) return removalFailure(target.path, EINVAL);
  auto parent = parentOf(target, names);
  if (!parent) return std::unexpected(parent.error());
  auto item = holdEntry(*parent, names.back(), target.path);
  if (!item) return std::unexpected(item.error());
  if (target.identity && *target.identity != item->facts.identity()) {
    return removalFailure(target.path, ESTALE);
  }
  return HeldTarget{std::move(*parent), names.back(), std::move(*item)};
}

}  // namespace spacemint
