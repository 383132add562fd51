#include "core/host/linux/ItemPlace.h"

#include "core/base/AsciiText.h"
#include "core/host/linux/HandleFacts.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace spacemint {

namespace {

constexpr int folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

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

// How many of the leading names are those of the folder up to which links may lead; 0 when it is not above.
std::size_t lengthOfStart(const std::vector<std::string>& names, const std::string& start) {
  const auto startNames = namesOf(start);
  const bool leads = start.starts_with('/') && startNames.size() < names.size() &&
                     std::equal(startNames.begin(), startNames.end(), names.begin());
  return leads ? startNames.size() : 0;
}

Error notOpened(const std::string& path, const FileHandle& folder, const std::string& name, int errorNumber) {
  const auto facts = factsOf(folder, name.c_str());
  if (!facts || !S_ISLNK(facts->mode)) return systemError(path, errorNumber);
  Error error = systemError(path, ELOOP);
  error.message = path + ": a symbolic link is on the way to it";
  return error;
}

}  // namespace

std::expected<ItemPlace, Error> placeOf(const RemovalTarget& target) {
  const auto names = namesOf(target.path);
  if (!isPlain(target.path, names)) return std::unexpected(systemError(target.path, EINVAL));
  const std::size_t first = lengthOfStart(names, target.linksAllowedUpTo);
  const std::string& start = first == 0 ? "/" : target.linksAllowedUpTo;
  FileHandle folder{open(start.c_str(), folderFlags)};
  if (!folder) return std::unexpected(systemError(start, errno));
  for (std::size_t i = first; i + 1 < names.size(); ++i) {
    FileHandle next{openat(folder.get(), names[i].c_str(), folderFlags | O_NOFOLLOW)};
    if (!next) return std::unexpected(notOpened(target.path, folder, names[i], errno));
    folder = std::move(next);
  }
  return ItemPlace{std::move(folder), names.back()};
}

}  // namespace spacemint
